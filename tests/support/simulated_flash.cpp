#include "support/simulated_flash.h"

#include <algorithm>

#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::TestSupport {

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
    writes.push_back({address, stored});
    std::copy(stored.begin(), stored.end(), image.begin() + address);
}

void SimulatedFlash::heal() {
    readFaults.clear();
    writeFaults.clear();
}

} // namespace Zentara::TestSupport
