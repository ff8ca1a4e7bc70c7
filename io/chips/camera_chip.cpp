#include <zentara/io/camera_chip.h>

#include <algorithm>
#include <cctype>
#include <cstdio>

#include <zentara/io/ov0570_impl.h>
#include <zentara/io/vc0258_impl.h>
#include <zentara/io/vc0345_impl.h>

#include "io/chips/bound_chip.h"
#include "io/chips/modulation.h"
#include "io/chips/ov0570_protocol.h"
#include "io/chips/reached_chip.h"
#include "io/chips/transfer_meaning.h"
#include "io/chips/vc0258_protocol.h"
#include "io/chips/vc0345_protocol.h"
#include "io/chips/vc_bridge_protocol.h"

namespace Zentara::IO {

namespace {

using Bytes = std::vector<std::uint8_t>;

/// The one that knows its bus, and a colour sensor on it.
class OV0570Chip final : public BoundChip<OV0570Impl> {
public:
    using BoundChip::BoundChip;

    [[nodiscard]] RegisterLimits limits(Target target) override {
        const OV0570Info info = chip.getInfoLocked();
        if (target == Target::Bridge)
            return limitsOf(info.devices[OV0570::bridgeIndex]);
        const bool isTof = target == Target::Tof;
        const OV0570DeviceID* found = nullptr; // the last one at the address
        for (const OV0570DeviceID& device : info.devices) {
            if (device.busAddress == (isTof ? OV0570::tofBusAddress : OV0570::rgbBusAddress))
                found = &device;
        }
        if (!found)
            refuse(isTof ? "time-of-flight controller" : "colour sensor");
        return isTof ? limitsOf(*found) : RegisterLimits{0xFF, 0xFF};
    }
    void write(Target target, unsigned reg, unsigned value) override {
        if (target != Target::Color)
            return BoundChip::write(target, reg, value);
        // Its registers and values have 8 bits: what is longer is cut.
        chip.setRGBSensorRegisterLocked(static_cast<unsigned char>(reg), static_cast<unsigned char>(value));
    }
    [[nodiscard]] unsigned read(Target target, unsigned reg) override {
        return target == Target::Color ? chip.getRGBSensorRegisterLocked(static_cast<unsigned char>(reg))
                                       : BoundChip::read(target, reg);
    }

    /// Those of the first device at the address. A device that is not there has none: the transfer will say so.
    [[nodiscard]] BusLimits i2cLimits(std::uint8_t device, std::uint8_t) override {
        const auto devices = chip.getInfoLocked().devices;
        const auto found = std::find_if(devices.begin() + 1, devices.end(),
                                        [device](const auto& known) { return known.busAddress == device; });
        return {0xFF, found == devices.end() ? RegisterLimits{0xFFFFFFFF, 0xFFFF} : limitsOf(*found)};
    }

    [[nodiscard]] bool canWriteConfiguration() const noexcept override { return true; }

    /// In ranges that the EEPROM takes at once, each in packets of 32 bytes.
    void writeConfiguration(unsigned start, const Bytes& bytes) override {
        const std::size_t most = chip.getEEPROMWritableSize();
        if (most == 0)
            refuse("writable EEPROM");
        for (std::size_t at = 0; at < bytes.size(); at += most)
            writeRange(static_cast<unsigned>(start + at), bytes.data() + at,
                       std::min(most, bytes.size() - at));
    }

private:
    static RegisterLimits limitsOf(const OV0570DeviceID& device) {
        return {device.addressMask(), device.dataMask()};
    }

    void writeRange(unsigned start, const std::uint8_t* bytes, std::size_t length) {
        chip.setEEPROMWriteAddress(static_cast<unsigned short>(start),
                                   static_cast<unsigned short>(start + length - 1));
        for (std::size_t at = 0; at < length; at += OV0570::eepromPieceBytes)
            chip.setEEPROMData(bytes + at,
                               static_cast<unsigned>(std::min(OV0570::eepromPieceBytes, length - at)));
    }
};

using VC0258Chip = BoundChip<VC0258Impl>;

/// Its ROM takes single bytes.
class VC0345Chip final : public BoundChip<VC0345Impl> {
public:
    using BoundChip::BoundChip;

    [[nodiscard]] bool canWriteConfiguration() const noexcept override { return true; }
    void writeConfiguration(unsigned start, const Bytes& bytes) override {
        for (std::size_t i = 0; i < bytes.size(); ++i)
            chip.setROMData8(static_cast<unsigned short>(start + i), bytes[i]);
    }
};

constexpr unsigned ov0570Megahertz[] = {10, 12, 20, 30, 40};
constexpr unsigned vc0258Megahertz[] = {10, 30};

// One row a controller; of those with one extension unit in common, detection asks from the top.
const CameraChip::Row rows[] = {
    // clang-format off
    {"OV0570", 0x0570, OV0570::unitGuid, OV0570::unit, 0, 0,
     OV0570::modulationCode, ov0570Megahertz, bindChip<OV0570Chip>, reachOV0570, ov0570Meaning},
    {"VC0258", 0x0258, VC::unitGuid, VC::unit, VC0258::tunnelControl, VC0258::tunnelPacketBytes,
     VC0258::modulationCode, vc0258Megahertz, bindChip<VC0258Chip>, reachVC0258, vc0258Meaning},
    {"VC0345", 0x0345, VC::unitGuid, VC::unit, VC0345::tofControl, VC0345::tofPacketBytes,
     0, {}, bindChip<VC0345Chip>, reachRegisters<VC0345Impl>, vc0345Meaning},
    // clang-format on
};

const CameraChip::Row* findRow(const std::string& name) {
    const auto sameLetter = [](unsigned char left, unsigned char right) {
        return std::toupper(left) == std::toupper(right);
    };
    for (const CameraChip::Row& row : rows) {
        const std::string known = row.name;
        if (std::equal(name.begin(), name.end(), known.begin(), known.end(), sameLetter))
            return &row;
    }
    return nullptr;
}

/// The first controller in the list; null when it holds none.
const CameraChip::Row* listedRow(const HardwareVersionInternal& modules) {
    for (const ModuleIdInternal& module : modules.modules) {
        for (const CameraChip::Row& row : rows) {
            if (module.productId == row.product)
                return &row;
        }
    }
    return nullptr;
}

const CameraChip::Row& requireRow(const std::string& name) {
    if (const CameraChip::Row* const row = findRow(name))
        return *row;
    throw Plugin::NotSupportedPluginException(Utils::Format("no controller '%' is known") % name);
}

/// Null when the camera has not the chip's extension unit, or by a control of it another chip. Asks the device which units
/// it has and how long one control is: no register is touched.
std::unique_ptr<CameraChip> tryChip(const CameraChip::Row& row, VideoDeviceProxy& proxy,
                                    const ChipListener& listener) {
    try {
        std::unique_ptr<CameraChip> chip = row.bind(row, proxy, listener);
        const bool isIt =
            row.tellingControl == 0 || proxy.len(row.unit, row.tellingControl) == row.tellingBytes;
        return isIt ? std::move(chip) : nullptr;
    } catch (const Plugin::NotSupportedPluginException&) {
        return nullptr;
    }
}

} // namespace

std::string bytesText(const Bytes& bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, text.empty() ? "%02X" : " %02X", static_cast<unsigned>(byte));
        text += digits;
    }
    return text;
}

CameraChip::~CameraChip() = default;

std::vector<std::string> CameraChip::names() {
    std::vector<std::string> names;
    for (const Row& row : rows)
        names.emplace_back(row.name);
    return names;
}

std::string CameraChip::knownName(const std::string& name) {
    const Row* const row = findRow(name);
    return row ? row->name : std::string();
}

std::uint32_t CameraChip::productOf(const std::string& name) { return requireRow(name).product; }

std::string CameraChip::listedIn(const HardwareVersionInternal& modules) {
    const Row* const row = listedRow(modules);
    return row ? row->name : std::string();
}

std::unique_ptr<CameraChip> CameraChip::create(const std::string& name, VideoDeviceProxy& proxy,
                                               ChipListener listener) {
    const Row& row = requireRow(name);
    return row.bind(row, proxy, std::move(listener));
}

std::unique_ptr<TofRegisters> TofRegisters::find(const HardwareVersionInternal& modules,
                                                 const BackEndWay& way) {
    if (const CameraChip::Row* const row = listedRow(modules))
        return row->reach(way);
    std::string known;
    for (const CameraChip::Row& row : rows)
        known += (known.empty() ? "" : ", ") + std::string(Utils::Format("0x%{:X4}") % row.product);
    throw Plugin::NotSupportedPluginException("none of the camera's modules is a controller; known: " +
                                              known);
}

std::unique_ptr<CameraChip> CameraChip::detect(VideoDeviceProxy& proxy, ChipListener listener) {
    for (const Row& row : rows) {
        if (auto chip = tryChip(row, proxy, listener))
            return chip;
    }
    return nullptr;
}

std::string CameraChip::meaningOf(const std::string& name, const ChipTransfer& transfer) {
    const Row* const row = findRow(name);
    return row ? row->meaning(transfer) : std::string();
}

std::string CameraChip::lineOf(const std::string& name, const ChipTransfer& transfer) {
    std::string line = transfer.isGet ? "GET " : "SET ";
    line += std::to_string(transfer.unit) + '/' + std::to_string(transfer.control) + "  ";
    line += bytesText(transfer.sent);
    if (!transfer.reply.empty())
        line += " -> " + bytesText(transfer.reply);
    line += "  " + meaningOf(name, transfer);
    if (!transfer.failure.empty())
        line += "  FAILED: " + transfer.failure;
    return line;
}

const char* CameraChip::name() const noexcept { return row.name; }
const ::GUID& CameraChip::unitGuid() const noexcept { return row.unitGuid; }
unsigned CameraChip::unit() const noexcept { return row.unit; }

std::vector<unsigned> CameraChip::modulationFrequencies() const {
    return {row.megahertz.begin(), row.megahertz.end()};
}

void CameraChip::setModulationFrequency(unsigned megahertz) {
    if (std::find(row.megahertz.begin(), row.megahertz.end(), megahertz) == row.megahertz.end())
        throw Plugin::ArgumentPluginException(Utils::Format("% MHz is no modulation frequency of the %") %
                                              megahertz % row.name);
    command(UVC_TOF_CONTROLLER_REGISTER, row.modulationMeta, modulationCode(megahertz));
}

void CameraChip::command(UVCPrefix prefix, unsigned a, unsigned b) {
    wire().processCommand(Utils::makeRefcounted<UVCCommandRequest>(prefix, a, b));
}

} // namespace Zentara::IO
