#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <utility>

namespace Zentara::Simulated {

/// The registers of one device on a camera's internal bus. Registers never written read as 0.
class RegisterFile {
public:
    RegisterFile() : RegisterFile(1, 1) {}
    /// \param addressWidth, dataWidth bytes, 1 to 4.
    RegisterFile(unsigned addressWidth, unsigned dataWidth)
        : addressBytes(addressWidth), dataBytes(dataWidth) {}

    /// A write by the host.
    void write(std::uint32_t address, std::uint32_t value) {
        change(address, value);
        if (observe)
            observe(address & addressMask(), value & dataMask());
    }

    /// A register that changes by itself.
    void change(std::uint32_t address, std::uint32_t value) {
        values[address & addressMask()] = value & dataMask();
    }

    /// Is told of each write by the host that follows.
    void setObserver(std::function<void(std::uint32_t address, std::uint32_t value)> observer) {
        observe = std::move(observer);
    }

    [[nodiscard]] std::uint32_t peek(std::uint32_t address) const {
        const auto found = values.find(address & addressMask());
        return found == values.end() ? 0 : found->second;
    }

    /// The next value queued for the register, if any, else its content.
    [[nodiscard]] std::uint32_t read(std::uint32_t address) {
        const auto waiting = queued.find(address & addressMask());
        if (waiting == queued.end() || waiting->second.empty())
            return peek(address);
        const std::uint32_t value = waiting->second.front();
        waiting->second.pop_front();
        return value & dataMask();
    }

    /// One future read of the register yields this value instead of its content: a status that changes by
    /// itself.
    void queueRead(std::uint32_t address, std::uint32_t value) {
        queued[address & addressMask()].push_back(value);
    }

    [[nodiscard]] std::uint32_t addressMask() const noexcept { return mask(addressBytes); }
    [[nodiscard]] std::uint32_t dataMask() const noexcept { return mask(dataBytes); }

private:
    static std::uint32_t mask(unsigned bytes) noexcept {
        return bytes >= 4 ? 0xFFFFFFFFU : (1U << (8 * bytes)) - 1;
    }

    unsigned addressBytes;
    unsigned dataBytes;
    std::map<std::uint32_t, std::uint32_t> values;
    std::map<std::uint32_t, std::deque<std::uint32_t>> queued;
    std::function<void(std::uint32_t, std::uint32_t)> observe;
};

} // namespace Zentara::Simulated
