#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include <zentara/rom/accessor.h>

namespace Zentara::TestSupport {

/// What a transfer does in place of its work.
enum class FlashFault {
    Throws,   ///< nothing is transferred, and the caller is told
    Short,    ///< the last byte is missing
    Ignored,  ///< nothing is written; a read answers with nothing
    OtherData ///< the middle byte has one bit flipped
};

/// Flash in memory that records what is written to it, counts its transfers and fails on demand.
class SimulatedFlash : public ROM::Accessor {
public:
    using Bytes = std::vector<std::uint8_t>;

    struct Write {
        std::uint32_t address;
        Bytes after;
    };

    /// Erased flash, addresses 0 to size - 1.
    explicit SimulatedFlash(std::size_t size) : image(size, 0xFF) {}

    /// Also throws for transfers past the end.
    Bytes read(std::uint32_t address, std::uint32_t length) override;
    void write(std::uint32_t address, const Bytes& bytes) override;

    /// The nth transfer from now on, counted from 0, goes wrong.
    void failRead(std::size_t n, FlashFault fault) { readFaults[readCount + n] = fault; }
    void failWrite(std::size_t n, FlashFault fault) { writeFaults[writeCount + n] = fault; }
    void heal();

    Bytes image;
    std::vector<Write> writes; ///< those that changed the image
    std::size_t readCount = 0;
    std::size_t writeCount = 0;
    std::size_t bytesRead = 0;
    std::size_t bytesWritten = 0;

private:
    void checkRange(std::uint32_t address, std::size_t length) const;

    std::map<std::size_t, FlashFault> readFaults;
    std::map<std::size_t, FlashFault> writeFaults;
};

} // namespace Zentara::TestSupport
