#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
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
        Bytes before;
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

    /// Called with each write before it happens, and with each read after it.
    std::function<void(std::uint32_t address, const Bytes& bytes)> onWrite;
    std::function<void(std::uint32_t address, std::size_t length)> onRead;

private:
    void checkRange(std::uint32_t address, std::size_t length) const;

    std::map<std::size_t, FlashFault> readFaults;
    std::map<std::size_t, FlashFault> writeFaults;
};

/// Watches that nothing is made reachable too early: a link or a management header may only be written when
/// the whole block that it points at stands on flash and was read back since it was last written.
class OrderMonitor {
public:
    OrderMonitor(SimulatedFlash& flash, std::uint32_t headerAddress);

    /// What was written too early, in words.
    std::vector<std::string> violations;
    /// Whether some byte was written and not read back since.
    bool hasUnverifiedBytes() const;

private:
    void checkTarget(std::uint32_t writer, std::uint32_t target);

    SimulatedFlash& flash;
    std::uint32_t headerAddress;
    std::vector<bool> unverified;
};

} // namespace Zentara::TestSupport
