#include "plugins/cameras/parameters/tof_registers.h"

#include <array>
#include <cstddef>
#include <optional>

#include "plugins/descriptions/controller.h"

namespace Zentara::Cameras {

namespace {

constexpr std::uint8_t lowByte(std::uint32_t value) { return static_cast<std::uint8_t>(value); }
constexpr std::uint8_t highByte(std::uint32_t value) { return static_cast<std::uint8_t>(value >> 8); }
constexpr std::uint16_t word(std::uint8_t low, std::uint8_t high) {
    return static_cast<std::uint16_t>(low | high << 8);
}

/// One control of an extension unit, with the length that the camera expects.
template<std::size_t Length>
struct Control {
    using Packet = std::array<std::uint8_t, Length>;

    std::uint16_t unit;
    std::uint32_t selector;

    void set(const TransferPair& transfers, Packet packet) const {
        if (transfers.set(transfers.context, unit, selector, packet.data(), Length) != ErrorCode_SUCCESS)
            throw Failure(ErrorCode_IO, describe("setting"));
    }
    [[nodiscard]] Packet get(const TransferPair& transfers, Packet packet) const {
        if (transfers.get(transfers.context, unit, selector, packet.data(), Length) != ErrorCode_SUCCESS)
            throw Failure(ErrorCode_IO, describe("reading"));
        return packet;
    }

private:
    [[nodiscard]] std::string describe(const char* what) const {
        return std::string(what) + " control " + std::to_string(selector) + " of extension unit " +
               std::to_string(unit) + " failed";
    }
};

// --- OV0570: one register packet for all devices on the bus, which the camera describes.

constexpr Control<64> information{6, 1};
constexpr Control<7> registerPacket{6, 2};
constexpr std::size_t deviceCountOffset = 15;
constexpr std::size_t firstDevice = 16;
constexpr std::size_t deviceBytes = 4;
constexpr std::uint8_t readBit = 0x80;
constexpr std::uint8_t wideDataBit = 0x10;

class OV0570Registers final : public TofRegisters {
public:
    OV0570Registers(const TransferPair& way, std::uint8_t deviceHeader)
        : transfers(way), header(deviceHeader) {}

    std::uint16_t read(std::uint8_t address) override {
        const auto reply = registerPacket.get(
            transfers, {static_cast<std::uint8_t>(header | readBit), address, 0, 0, 0, 0, 0});
        return word(reply[3], reply[4]);
    }
    void write(std::uint8_t address, std::uint16_t value) override {
        registerPacket.set(transfers, {header, address, 0, lowByte(value), highByte(value), 0, 0});
    }

private:
    const TransferPair transfers;
    const std::uint8_t header; ///< widths and index of the device, as every packet begins
};

std::unique_ptr<TofRegisters> makeOV0570(const TransferPair& transfers, const Control<64>::Packet& reply) {
    const std::size_t room = (reply.size() - firstDevice) / deviceBytes;
    std::uint8_t header = 0;
    for (std::size_t i = 0; i < reply[deviceCountOffset] && i < room; ++i) {
        const std::uint8_t* const device = reply.data() + firstDevice + deviceBytes * i;
        // High byte first; of several such devices the last counts. The index takes four bits.
        if (word(device[2], device[1]) == 0x0021 && i + 1 <= 15)
            header =
                static_cast<std::uint8_t>((device[0] >> 6) << 5 | ((device[0] & 0x30) ? wideDataBit : 0) |
                                          static_cast<std::uint8_t>(i + 1));
    }
    if (!(header & wideDataBit))
        throw Failure(ErrorCode_NOT_SUPPORTED,
                      "the camera has no time-of-flight controller with 16-bit registers");
    return std::make_unique<OV0570Registers>(transfers, header);
}

// --- VC0258 and VC0345: no description, but bridge registers that must hold the size of the control to come.

constexpr Control<4> bridge{4, 4};
constexpr std::uint16_t sensorControlSize = 0x8102;
constexpr std::uint16_t lastByteOrder = 0xB439;

constexpr Control<9> tunnel{4, 16};

class VC0258Registers final : public TofRegisters {
public:
    explicit VC0258Registers(const TransferPair& way) : transfers(way) {}

    std::uint16_t read(std::uint8_t address) override {
        std::uint16_t value = 0;
        inPresentOrder([&](std::uint8_t order) {
            const auto reply = tunnel.get(transfers, packet(0x46, order, address, 0));
            value = word(reply[6], reply[7]);
        });
        return value;
    }
    void write(std::uint8_t address, std::uint16_t value) override {
        inPresentOrder(
            [&](std::uint8_t order) { tunnel.set(transfers, packet(0x43, order, address, value)); });
    }

private:
    static constexpr int mostAttempts = 16;

    /// Makes a transfer of two data bytes in the order in which the bridge stands: whoever else uses it remembers what
    /// he set. If he sets another one meanwhile, on a thread of his own, the bytes arrive exchanged, and the transfer
    /// is made anew.
    template<typename Transfer>
    void inPresentOrder(Transfer transfer) const {
        std::uint8_t order = presentOrder();
        for (int attempt = 0; attempt < mostAttempts; ++attempt) {
            transfer(order);
            const std::uint8_t after = presentOrder();
            if (after == order)
                return;
            order = after;
        }
        throw Failure(ErrorCode_IO, "the byte order of the bridge changes with every transfer");
    }

    [[nodiscard]] std::uint8_t presentOrder() const {
        return bridge.get(transfers, {0, lowByte(lastByteOrder), highByte(lastByteOrder), 0})[3] & 1;
    }

    static Control<9>::Packet packet(std::uint8_t device, std::uint8_t order, std::uint8_t address,
                                     std::uint16_t value) {
        return {device,          1, static_cast<std::uint8_t>(2 | order << 4), address, 0, 0, lowByte(value),
                highByte(value), 0};
    }

    const TransferPair transfers;
};

constexpr Control<4> tofControl{4, 16};

class VC0345Registers final : public TofRegisters {
public:
    explicit VC0345Registers(const TransferPair& way) : transfers(way) {}

    std::uint16_t read(std::uint8_t address) override {
        const std::uint8_t low = readByte(address);
        return word(low, readByte(address | 0x80));
    }
    void write(std::uint8_t address, std::uint16_t value) override {
        tofControl.set(transfers, {0x41, address, lowByte(value), highByte(value)});
    }

private:
    [[nodiscard]] std::uint8_t readByte(std::uint8_t address) const {
        return tofControl.get(transfers, {0x46, address, 0, 0})[3];
    }

    const TransferPair transfers;
};

/// A tunnel carries as many bytes as this register of its bridge says.
void setTunnelSize(const TransferPair& transfers, std::uint8_t bytes) {
    bridge.set(transfers, {0x20, lowByte(sensorControlSize), highByte(sensorControlSize), bytes});
}

} // namespace

std::unique_ptr<TofRegisters> findTofRegisters(const TransferPair& transfers,
                                               const HardwareVersionInternal& version) {
    const std::optional<ChipKind> controller = listedController(version);
    if (!controller)
        throw Failure(
            ErrorCode_NOT_SUPPORTED,
            "none of the camera's modules is a controller with the product number 0x0570, 0x0258 or 0x0345");
    switch (*controller) {
    case ChipKind::OV0570:
        return makeOV0570(transfers, information.get(transfers, {}));
    case ChipKind::VC0258:
        setTunnelSize(transfers, 9);
        return std::make_unique<VC0258Registers>(transfers);
    case ChipKind::VC0345:
        setTunnelSize(transfers, 4);
        return std::make_unique<VC0345Registers>(transfers);
    }
    throw Failure(ErrorCode_FAILED, "unknown controller");
}

} // namespace Zentara::Cameras
