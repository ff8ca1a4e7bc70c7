#include "support/simulated_flash.h"

#include <algorithm>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/crc.h>

namespace Zentara::TestSupport {

namespace {

constexpr std::size_t BLOCK_HEADER = 10;
constexpr std::size_t MANAGEMENT_HEADER = 17;

std::uint32_t bigEndian(const std::uint8_t* bytes, std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i)
        value = value << 8 | bytes[i];
    return value;
}

} // namespace

void SimulatedFlash::checkRange(std::uint32_t address, std::size_t length) const {
    if (address > image.size() || length > image.size() - address)
        throw Plugin::IOPluginException("past the end of the flash");
}

SimulatedFlash::Bytes SimulatedFlash::read(std::uint32_t address, std::uint32_t length) {
    const auto fault = readFaults.find(readCount++);
    checkRange(address, length);
    bytesRead += length;
    Bytes bytes(image.begin() + address, image.begin() + address + length);
    if (fault != readFaults.end()) {
        if (fault->second == FlashFault::Throws)
            throw Plugin::IOPluginException("read failed");
        if (fault->second == FlashFault::OtherData && length > 0)
            bytes[length / 2] ^= 1;
        else if (length > 0)
            bytes.resize(fault->second == FlashFault::Short ? length - 1 : 0);
    }
    if (onRead)
        onRead(address, bytes.size());
    return bytes;
}

void SimulatedFlash::write(std::uint32_t address, const Bytes& bytes) {
    const auto fault = writeFaults.find(writeCount++);
    checkRange(address, bytes.size());
    bytesWritten += bytes.size();
    Bytes stored = bytes;
    if (fault != writeFaults.end()) {
        if (fault->second == FlashFault::Throws)
            throw Plugin::IOPluginException("write failed");
        if (fault->second == FlashFault::Ignored)
            return;
        if (fault->second == FlashFault::Short)
            stored.pop_back();
        else
            stored[stored.size() / 2] ^= 1;
    }
    if (onWrite)
        onWrite(address, stored);
    const auto begin = image.begin() + address;
    writes.push_back({address, Bytes(begin, begin + static_cast<std::ptrdiff_t>(stored.size())), stored});
    std::copy(stored.begin(), stored.end(), begin);
}

void SimulatedFlash::heal() {
    readFaults.clear();
    writeFaults.clear();
}

OrderMonitor::OrderMonitor(SimulatedFlash& watched, std::uint32_t header)
    : flash(watched), headerAddress(header), unverified(watched.image.size(), false) {
    flash.onWrite = [this](std::uint32_t address, const SimulatedFlash::Bytes& bytes) {
        if (address == headerAddress && bytes.size() == MANAGEMENT_HEADER)
            checkTarget(address, bigEndian(bytes.data() + 11, 4));
        else if (bytes.size() >= BLOCK_HEADER)
            checkTarget(address, bigEndian(bytes.data() + 4, 4));
        std::fill_n(unverified.begin() + address, bytes.size(), true);
    };
    flash.onRead = [this](std::uint32_t address, std::size_t length) {
        std::fill_n(unverified.begin() + address, length, false);
    };
}

bool OrderMonitor::hasUnverifiedBytes() const {
    return std::find(unverified.begin(), unverified.end(), true) != unverified.end();
}

void OrderMonitor::checkTarget(std::uint32_t writer, std::uint32_t target) {
    if (target == 0)
        return;
    const std::string what = std::to_string(writer) + " points at " + std::to_string(target);
    if (target > flash.image.size() || BLOCK_HEADER > flash.image.size() - target) {
        violations.push_back(what + ", outside the flash");
        return;
    }
    const std::uint8_t* header = flash.image.data() + target;
    const std::uint32_t length = bigEndian(header, 4);
    if (Utils::Crc16::compute(header, 8, 0) != bigEndian(header + 8, 2) ||
        length > flash.image.size() - target)
        violations.push_back(what + ", which is no block yet");
    else if (std::find(unverified.begin() + target, unverified.begin() + target + length, true) !=
             unverified.begin() + target + length)
        violations.push_back(what + ", which was not read back yet");
}

} // namespace Zentara::TestSupport
