#include "host/flash/flash_target.h"

#include <algorithm>
#include <utility>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/rom/chunked_memory_management_header.h>
#include <zentara/utils/format.h>

#include "host/attempt.h"

namespace Zentara::Host {
namespace {

using Utils::Format;

constexpr std::size_t PIECE = 0x400; ///< bytes between two looks at the progress
constexpr int MOST_READINGS = 4;     ///< after the first
constexpr std::uint64_t ADDRESSES = std::uint64_t{1} << 32;

std::string hexText(std::uint32_t value) { return Format("0x%{:X2}") % value; }

} // namespace

FlashArea flashArea(const FlashOptions& options, std::uint64_t start, std::uint64_t size) {
    if (size == 0 || size >= ADDRESSES || start >= ADDRESSES || start + size > ADDRESSES)
        throw Failure(Failure::Usage, Format("there is no flash area of % bytes at %") %
                                          static_cast<unsigned long long>(size) %
                                          static_cast<unsigned long long>(start));
    return {static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(size), options.chunkSize,
            options.header != FlashOptions::Header::End};
}

void Flash::Target::detect() {
    using Header = ROM::ChunkedMemoryManagementHeader;
    if (place.size < Header::SIZE)
        return;
    const auto standsThere = [&](const FlashArea& tried) {
        const std::unique_ptr<Header> header(
            Header::deserialize(readSurely(tried.headerAddress(), Header::SIZE)));
        if (!header)
            return false;
        const std::uint32_t chunkSize = header->getChunkSize();
        place = tried;
        place.chunkSize = chunkSize != 0 ? chunkSize : options.chunkSize;
        return true;
    };
    // A header vouches for itself by its CRC, so that it is enough to look where it may be: at either end.
    attempt("read the management header", [&] {
        if (!standsThere(place) && options.header == FlashOptions::Header::Auto)
            static_cast<void>(standsThere(place.mirrored()));
    });
}

Bytes Flash::Target::readOnce(std::uint32_t address, std::uint32_t length) {
    Bytes bytes = flash().read(address, length);
    if (bytes.size() != length)
        throw Plugin::IOPluginException(Format("% bytes came back") %
                                        static_cast<unsigned long long>(bytes.size()));
    return bytes;
}

/// A wire may garble a reading: what comes twice in a row is believed.
Bytes Flash::Target::readSurely(std::uint32_t address, std::uint32_t length) {
    Bytes bytes = readOnce(address, length);
    for (int tries = 1; mayMisread(); ++tries) {
        Bytes again = readOnce(address, length);
        if (again == bytes)
            break;
        if (tries == MOST_READINGS)
            throw Plugin::IOPluginException(Format("other bytes came each of % times") % (tries + 1));
        bytes = std::move(again);
    }
    return bytes;
}

FlashImage Flash::Target::load(const Progress& progress, const char* whenInterrupted, std::uint64_t done) {
    Bytes bytes;
    const std::uint64_t all = done + place.size;
    const auto goOn = [&] { return !progress || progress(done + bytes.size(), all); };
    while (bytes.size() < place.size) {
        if (!goOn())
            throw Failure(Failure::Interrupted, whenInterrupted);
        const auto at = static_cast<std::uint32_t>(bytes.size());
        const std::uint32_t length = std::min<std::uint32_t>(place.size - at, PIECE);
        attempt(Format("read % bytes at % of %") % length % hexText(place.start + at) % name(), [&] {
            const Bytes piece = readSurely(place.start + at, length);
            bytes.insert(bytes.end(), piece.begin(), piece.end());
        });
    }
    static_cast<void>(goOn()); // it is over
    return {place, std::move(bytes)};
}

void Flash::Target::storePiece(std::uint32_t address, const Bytes& bytes) {
    const auto length = static_cast<std::uint32_t>(bytes.size());
    attempt(Format("write % bytes at % of %") % length % hexText(address) % name(), [&] {
        flash().write(address, bytes);
        // One reading that differs may be the wire's fault.
        if (readOnce(address, length) != bytes && readSurely(address, length) != bytes)
            throw Plugin::IOPluginException("other bytes were read back");
    });
}

void Flash::Target::store(const std::vector<FlashWrite>& writes, const Progress& progress,
                          std::uint64_t all) {
    std::uint64_t done = 0;
    for (const FlashWrite& write : writes)
        for (std::size_t at = 0; at < write.bytes.size(); at += PIECE) {
            const std::size_t length = std::min(PIECE, write.bytes.size() - at);
            const auto from = write.bytes.begin() + static_cast<std::ptrdiff_t>(at);
            storePiece(static_cast<std::uint32_t>(write.address + at),
                       Bytes(from, from + static_cast<std::ptrdiff_t>(length)));
            done += length;
            if (progress)
                static_cast<void>(progress(done, all));
        }
    attempt("save " + name(), [&] { save(); });
}

} // namespace Zentara::Host
