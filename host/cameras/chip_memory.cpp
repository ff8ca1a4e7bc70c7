#include <zentara/host/chip_memory.h>

#include <algorithm>

#include <zentara/host/attempt.h>
#include <zentara/utils/format.h>

namespace Zentara::Host {

using Utils::Format;

namespace {

constexpr std::uint32_t pieceBytes = 0x1000; ///< pieces end at multiples of it

} // namespace

Bytes readMemory(const Camera& camera, ChipMemory memory, std::uint32_t start, std::uint32_t length,
                 const Progress& progress) {
    constexpr std::uint32_t all = IO::CameraChip::memoryBytes;
    if (start >= all || length == 0 || length > all - start)
        throw Failure(Failure::Usage, Format("% bytes from 0x%{:X4} are no part of the memory's % bytes") %
                                          length % start % all);
    const char* const name = memory == ChipMemory::Firmware ? "firmware" : "configuration";
    IO::CameraChip& chip = camera.chip();
    Bytes bytes;
    while (bytes.size() < length) {
        const auto done = static_cast<std::uint32_t>(bytes.size());
        if (progress && !progress(done, length))
            throw Failure(Failure::Interrupted, Format("interrupted after % of % bytes") % done % length);
        const std::uint32_t from = start + done;
        const std::uint32_t count = std::min(length - done, pieceBytes - from % pieceBytes);
        attempt(Format("read % bytes of % at 0x%{:X2}") % count % name % from, [&] {
            const Bytes piece = memory == ChipMemory::Firmware ? chip.readFirmware(from, count)
                                                               : chip.readConfiguration(from, count);
            bytes.insert(bytes.end(), piece.begin(), piece.end());
        });
    }
    if (progress)
        static_cast<void>(progress(length, length));
    return bytes;
}

} // namespace Zentara::Host
