// Any bytes as what a camera's extension unit answers. Whatever it answers, each operation of each controller ends after a
// bounded number of transfers, with the bytes that were asked for or with an exception of ours. The first byte is the
// controller; then each operation is its number and its arguments, and each transfer a byte for how it ends and a GET's
// bytes.
#include <chrono>
#include <functional>
#include <vector>

#include <zentara/io/chip_clock.h>
#include <zentara/io/ov0570_impl.h>
#include <zentara/io/uvc_command_request.h>
#include <zentara/io/vc0258_impl.h>
#include <zentara/io/vc0345_impl.h>
#include <zentara/plugin/plugin_exceptions.h>

#include "input.h"

namespace Zentara::Fuzz {
namespace {

constexpr unsigned mostTransfers =
    20000; ///< of one operation; a memory read of the most bytes that are asked for here needs 1,400
constexpr unsigned mostBytes = 1023;
constexpr std::uint8_t failing = 0xFF; ///< how a transfer ends that the camera refuses

class NoClock final : public IO::ChipClock {
public:
    void wait(std::chrono::milliseconds) override {}
};

template<typename Chip>
class AnsweredChip final : public Chip {
public:
    AnsweredChip(IO::ChipClock& clock, Input& answers) : Chip(clock), input(answers) {}

    using Chip::setup;
    void setup(const ::GUID&) override {}
    void send(unsigned, unsigned long, unsigned long, void*) override { step(); }
    void recv(unsigned, unsigned long, unsigned long length, void* data, bool) override {
        step();
        input.take(data, length);
    }
    void begin() { transfers = 0; }

private:
    void step() {
        require(++transfers <= mostTransfers);
        if (input.byte() == failing)
            throw Plugin::IOPluginException("refused");
    }

    Input& input;
    unsigned transfers = 0;
};

template<typename Chip>
using Operations = std::vector<std::function<void(Chip&, Input&)>>;

/// What all three have in common.
template<typename Chip>
Operations<Chip> sharedOperations() {
    return {
        [](Chip& chip, Input&) { chip.setup(); },
        [](Chip& chip, Input& input) {
            const auto prefix = static_cast<IO::UVCPrefix>(input.number<std::int16_t>());
            const unsigned a = input.number<unsigned>();
            chip.processCommand(
                Utils::makeRefcounted<IO::UVCCommandRequest>(prefix, a, input.number<unsigned>()));
        },
        [](Chip& chip, Input& input) {
            const unsigned reg = input.number<unsigned>();
            chip.setTOFControllerRegisterLocked(reg, input.number<unsigned>());
        },
        [](Chip& chip, Input& input) {
            require(chip.getTOFControllerRegisterLocked(input.number<unsigned>()) <= 0xFFFFFFFFU);
        },
        [](Chip& chip, Input& input) {
            const unsigned reg = input.number<unsigned>();
            chip.setUSBBackendRegisterLocked(reg, input.number<unsigned>());
        },
        [](Chip& chip, Input& input) {
            static_cast<void>(chip.getUSBBackendRegisterLocked(input.number<unsigned>()));
        },
        [](Chip& chip, Input&) { static_cast<void>(chip.getUSBBackendFirmwareVersionLocked()); },
        [](Chip& chip, Input&) { static_cast<void>(chip.getTOFControllerFirmwareVersionLocked()); },
        [](Chip& chip, Input& input) {
            const unsigned start = input.number<unsigned>();
            const unsigned length = input.number<std::uint16_t>() & mostBytes;
            require(chip.getUSBBackendFirmwareLocked(start, length).size() == length);
        },
        [](Chip& chip, Input& input) {
            const unsigned start = input.number<unsigned>();
            const unsigned length = input.number<std::uint16_t>() & mostBytes;
            require(chip.getUSBBackendConfigurationLocked(start, length).size() == length);
        },
        [](Chip& chip, Input& input) {
            chip.setStrobeLocked(input.number<int>(), input.number<std::uint16_t>());
        },
        [](Chip& chip, Input& input) {
            chip.resetStrobeLocked(input.number<int>(), input.number<std::uint16_t>());
        },
        [](Chip& chip, Input&) { chip.reset(); },
    };
}

template<typename Chip>
void addI2c(Operations<Chip>& operations) {
    operations.push_back([](Chip& chip, Input& input) {
        const std::uint8_t device = input.byte();
        const unsigned reg = input.number<unsigned>();
        const unsigned value = input.number<unsigned>();
        const std::uint8_t addressBytes = input.byte();
        chip.setI2cLocked(device, reg, value, addressBytes, input.byte(), input.byte() != 0);
    });
    operations.push_back([](Chip& chip, Input& input) {
        const std::uint8_t device = input.byte();
        const unsigned reg = input.number<unsigned>();
        const std::uint8_t addressBytes = input.byte();
        static_cast<void>(chip.getI2cLocked(device, reg, addressBytes, input.byte(), input.byte() != 0));
    });
}

const Operations<IO::OV0570Impl>& operationsOf(const IO::OV0570Impl&) {
    using Chip = IO::OV0570Impl;
    static const auto all = [] {
        auto operations = sharedOperations<Chip>();
        addI2c(operations);
        operations.push_back([](Chip& chip, Input& input) {
            const std::uint8_t reg = input.byte();
            chip.setRGBSensorRegisterLocked(reg, input.byte());
        });
        operations.push_back([](Chip& chip, Input& input) {
            static_cast<void>(chip.getRGBSensorRegisterLocked(input.byte()));
        });
        operations.push_back([](Chip& chip, Input&) {
            require(chip.getInfoLocked().devices.size() <= IO::OV0570Info::maxFurtherDevices + 2);
        });
        operations.push_back([](Chip& chip, Input& input) {
            const auto start = input.number<std::uint16_t>();
            chip.setEEPROMWriteAddress(start, input.number<std::uint16_t>());
        });
        operations.push_back([](Chip& chip, Input& input) {
            const std::string bytes = input.text(input.number<std::uint16_t>() & mostBytes);
            chip.setEEPROMData(reinterpret_cast<const unsigned char*>(bytes.data()),
                               static_cast<unsigned>(bytes.size()));
        });
        operations.push_back([](Chip& chip, Input&) { static_cast<void>(chip.getEEPROMWritableSize()); });
        return operations;
    }();
    return all;
}

const Operations<IO::VC0258Impl>& operationsOf(const IO::VC0258Impl&) {
    using Chip = IO::VC0258Impl;
    static const auto all = [] {
        auto operations = sharedOperations<Chip>();
        addI2c(operations);
        operations.push_back([](Chip& chip, Input& input) {
            const unsigned address = input.number<unsigned>();
            std::vector<unsigned char> bytes(input.number<std::uint16_t>() & mostBytes);
            chip.getDMADataLocked(address, bytes.data(), static_cast<unsigned>(bytes.size()));
        });
        return operations;
    }();
    return all;
}

const Operations<IO::VC0345Impl>& operationsOf(const IO::VC0345Impl&) {
    using Chip = IO::VC0345Impl;
    static const auto all = [] {
        auto operations = sharedOperations<Chip>();
        operations.push_back([](Chip& chip, Input& input) {
            const auto address = input.number<std::uint16_t>();
            chip.setROMData8(address, input.byte());
        });
        operations.push_back([](Chip& chip, Input& input) {
            static_cast<void>(chip.getROMData8(input.number<std::uint16_t>()));
        });
        return operations;
    }();
    return all;
}

template<typename Chip>
void drive(Input& input) {
    NoClock clock;
    AnsweredChip<Chip> chip(clock, input);
    const auto& operations = operationsOf(chip);
    while (!input.isEmpty()) {
        chip.begin();
        try {
            operations[input.byte() % operations.size()](chip, input);
        } catch (const Plugin::PluginException& failure) {
            require(failure.what()[0] != '\0');
        }
    }
}

} // namespace
} // namespace Zentara::Fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Zentara;
    Fuzz::Input input(data, size);
    switch (input.byte() % 3) {
    case 0:
        Fuzz::drive<IO::OV0570Impl>(input);
        break;
    case 1:
        Fuzz::drive<IO::VC0258Impl>(input);
        break;
    default:
        Fuzz::drive<IO::VC0345Impl>(input);
        break;
    }
    return 0;
}
