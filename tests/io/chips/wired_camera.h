#pragma once

#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include <zentara/io/chip_clock.h>
#include <zentara/io/ov0570_impl.h>
#include <zentara/io/uvc_command_request.h>
#include <zentara/io/vc0258_impl.h>
#include <zentara/io/vc0345_impl.h>

#include "plugins/simulated/firmware/ov0570_firmware.h"
#include "plugins/simulated/firmware/vc0258_firmware.h"
#include "plugins/simulated/firmware/vc0345_firmware.h"
#include "plugins/simulated/port.h"
#include "support/failure.h"

namespace Zentara::Test {

using IO::UVC_ADC_VALUE;
using IO::UVC_CONFIGURE_DAC;
using IO::UVC_RESET_STROBE;
using IO::UVC_SET_STROBE;
using IO::UVC_TOF_CONTROLLER_REGISTER;
using IO::UVCCommandRequest;
using IO::xuRequest;
using Plugin::ArgumentPluginException;
using Plugin::ConfigurationPluginException;
using Plugin::IOPluginException;
using Simulated::Bytes;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using TestSupport::messageOf;
using Utils::makeRefcounted;
using Utils::SmartPtr;
using Lines = std::vector<std::string>;

/// Takes no time and remembers what it was asked for, in milliseconds.
class RecordingClock final : public IO::ChipClock {
public:
    void wait(std::chrono::milliseconds time) override { waits.push_back(static_cast<int>(time.count())); }
    std::vector<int> waits;
};

/// A chip whose extension unit is a simulated controller's, without a proxy between.
template<typename Chip>
class WiredChip final : public Chip {
public:
    WiredChip(IO::ChipClock& clock, Simulated::Port& wire) : Chip(clock), port(wire) { Chip::setup(); }

    using Chip::setup;
    void setup(const ::GUID& unit) override { port.select(unit); }
    void send(unsigned unit, unsigned long control, unsigned long length, void* data) override {
        if (onTransfer)
            onTransfer();
        port.set(unit, static_cast<std::uint32_t>(control), data, length);
    }
    void recv(unsigned unit, unsigned long control, unsigned long length, void* data, bool flag) override {
        if (onTransfer)
            onTransfer();
        flags.emplace_back(control, flag);
        port.get(unit, static_cast<std::uint32_t>(control), data, length);
    }

    std::vector<std::pair<unsigned long, bool>> flags;
    std::function<void()> onTransfer; ///< called before each

private:
    Simulated::Port& port;
};

/// "SET 2  11 1D 00 01 00 00 00" for each transfer: what the host sent, and in a GET what it asked with.
inline Lines linesOf(const std::vector<Simulated::Transfer>& transfers) {
    Lines lines;
    for (const Simulated::Transfer& transfer : transfers)
        lines.push_back((transfer.isGet ? "GET " : "SET ") + std::to_string(transfer.control) + "  " +
                        IO::bytesText(transfer.sent));
    return lines;
}

/// A chip, the controller that it drives, and the wire between them.
template<typename Chip, typename Model>
struct WiredCamera {
    explicit WiredCamera(typename Model::Settings settings = {})
        : port(std::make_unique<Model>(std::move(settings))), model(static_cast<Model&>(port.model())),
          chip(clock, port) {}

    /// The transfers of one operation.
    template<typename Operation>
    Lines sent(Operation operation) {
        port.clearLog();
        operation(chip);
        return linesOf(port.log());
    }

    Lines command(IO::UVCPrefix prefix, unsigned a, unsigned b) {
        return sent([&](auto&) { run(prefix, a, b); });
    }

    void run(IO::UVCPrefix prefix, unsigned a, unsigned b) {
        chip.processCommand(Utils::makeRefcounted<IO::UVCCommandRequest>(prefix, a, b));
    }

    RecordingClock clock;
    Simulated::Port port;
    Model& model;
    WiredChip<Chip> chip;
};

/// Each meta code writes the halves of its value to two registers.
template<typename Camera, typename Write>
void expectPairs(Camera& camera, Write write,
                 const std::vector<std::tuple<unsigned, const char*, const char*>>& codes) {
    for (const auto& [code, low, high] : codes)
        EXPECT_THAT(camera.command(UVC_TOF_CONTROLLER_REGISTER, code, 0x12345678),
                    ElementsAre(write(low, "78 56"), write(high, "34 12")))
            << code;
}

/// What sets the modulation frequency: its code twice, then steps of which the last three are 4, 8 and 12 times the code.
template<typename Write>
Lines modulationWrites(Write write, const std::string& code, const std::array<const char*, 3>& steps) {
    const char* const zero = "00 00";
    return {write("00", code),     write("01", code),     write("2F", steps[1]), write("03", zero),
            write("04", steps[0]), write("05", steps[1]), write("06", steps[2]), write("07", zero),
            write("08", zero),     write("09", zero),     write("0A", zero)};
}

using OV0570Camera = WiredCamera<IO::OV0570Impl, Simulated::OV0570Firmware>;
using VC0258Camera = WiredCamera<IO::VC0258Impl, Simulated::VC0258Firmware>;
using VC0345Camera = WiredCamera<IO::VC0345Impl, Simulated::VC0345Firmware>;

} // namespace Zentara::Test
