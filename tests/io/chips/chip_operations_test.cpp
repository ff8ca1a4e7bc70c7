// Each public operation of each chip: how many transfers it takes, and what is left when one of them fails.
#include <future>
#include <set>

#include <gmock/gmock.h>

#include <zentara/io/i2c_requests.h>
#include <zentara/utils/files.h>

#include "io/chips/wired_camera.h"
#include "support/stride.h"

namespace Zentara::Test {

namespace {

using Simulated::Transfer;
using FaultKind = Simulated::Fault::Kind;

/// One public operation of a chip, under the name that docs/transfers.md has for it.
template<typename Camera>
struct ChipOperation {
    template<typename Call>
    ChipOperation(std::string title, Call call, bool isToBeWalked = true)
        : name(std::move(title)), run([call](Camera& camera) { static_cast<void>(call(camera.chip)); }),
          isWalked(isToBeWalked) {}

    std::string name;
    std::function<void(Camera&)> run;
    bool isWalked; ///< false when its failure leaves a setting unknown that its successes told before
};

/// Four bytes to a device of the bus, by a request; and from it.
template<typename Camera>
ChipOperation<Camera> arrayWrite(unsigned device) {
    return {"I2C array write of 4 bytes", [=](auto& chip) {
                chip.processCommand(Utils::makeRefcounted<IO::setI2CArrayRequest>(
                    device, std::vector<unsigned char>{1, 2, 3, 4}));
            }};
}
template<typename Camera>
ChipOperation<Camera> arrayRead(unsigned device) {
    return {"I2C array read of 4 bytes", [=](auto& chip) {
                std::vector<unsigned char> out(4);
                chip.processCommand(Utils::makeRefcounted<IO::getI2CArrayRequest>(device, out));
            }};
}

/// A raw command as an operation.
template<typename Camera>
ChipOperation<Camera> commandOperation(std::string name, IO::UVCPrefix prefix, unsigned a, unsigned b) {
    return {std::move(name),
            [=](auto& chip) { chip.processCommand(Utils::makeRefcounted<UVCCommandRequest>(prefix, a, b)); }};
}

/// The operations that every chip has, and those of one.
template<typename Camera>
std::vector<ChipOperation<Camera>> operationsWith(std::initializer_list<ChipOperation<Camera>> own) {
    std::vector<ChipOperation<Camera>> all = {
        {"time-of-flight register write", [](auto& c) { c.setTOFControllerRegisterLocked(29, 4); }},
        {"time-of-flight register read", [](auto& c) { return c.getTOFControllerRegisterLocked(5); }},
        {"bridge register write", [](auto& c) { c.setUSBBackendRegisterLocked(0x1234, 1); }},
        {"bridge register read", [](auto& c) { return c.getUSBBackendRegisterLocked(0x1234); }},
        {"strobe", [](auto& c) { c.setStrobeLocked(26, 5); }},
        {"strobe reset", [](auto& c) { c.resetStrobeLocked(27, 1); }},
        commandOperation<Camera>("meta pair", IO::UVC_TOF_CONTROLLER_REGISTER, 1000, 0x10002),
        {"bridge version", [](auto& c) { return c.getUSBBackendFirmwareVersionLocked(); }},
        {"time-of-flight version", [](auto& c) { return c.getTOFControllerFirmwareVersionLocked(); }},
        {"firmware read of 64 bytes", [](auto& c) { return c.getUSBBackendFirmwareLocked(0, 64); }},
        {"configuration read of 64 bytes", [](auto& c) { return c.getUSBBackendConfigurationLocked(0, 64); }},
    };
    all.insert(all.end(), own);
    return all;
}

std::vector<ChipOperation<OV0570Camera>> operationsOf(const OV0570Camera*) {
    using Camera = OV0570Camera;
    return operationsWith<Camera>({
        {"colour sensor register write", [](auto& c) { c.setRGBSensorRegisterLocked(1, 2); }},
        {"colour sensor register read", [](auto& c) { return c.getRGBSensorRegisterLocked(1); }},
        {"I2C register write", [](auto& c) { c.setI2cLocked(0x21, 29, 1, 1, 2, true); }},
        {"I2C register read", [](auto& c) { return c.getI2cLocked(0x21, 5, 1, 2, true); }},
        arrayWrite<Camera>(0x21),
        arrayRead<Camera>(0x21),
        commandOperation<Camera>("ADC value", IO::UVC_ADC_VALUE, 3, 4),
        commandOperation<Camera>("modulation frequency", IO::UVC_TOF_CONTROLLER_REGISTER, 1005, 7710),
        commandOperation<Camera>("FPGA synchronisation", IO::UVC_SYNC_FPGA, 0, 0),
        commandOperation<Camera>("FPGA reset wait", IO::UVC_RESET_FPGA, 0, 0),
        {"bus description", [](auto& c) { return c.getInfoLocked(); }},
        {"EEPROM write of 32 bytes",
         [](auto& c) {
             const unsigned char data[32] = {};
             c.setEEPROMWriteAddress(0, 31);
             c.setEEPROMData(data, 32);
         }},
        {"EEPROM writable size", [](auto& c) { return c.getEEPROMWritableSize(); }},
    });
}

std::vector<ChipOperation<VC0258Camera>> operationsOf(const VC0258Camera*) {
    using Camera = VC0258Camera;
    return operationsWith<Camera>({
        {"time-of-flight register write and read",
         [](auto& c) {
             c.setTOFControllerRegisterLocked(5, 1);
             return c.getTOFControllerRegisterLocked(5);
         },
         false},
        {"I2C register write, 1 byte", [](auto& c) { c.setI2cLocked(0x30, 1, 1, 1, 1, true); }},
        {"I2C register read, 1 byte", [](auto& c) { return c.getI2cLocked(0x30, 1, 1, 1, true); }},
        {"I2C register write, 2 bytes", [](auto& c) { c.setI2cLocked(0x60, 1, 1, 1, 2, true); }},
        {"I2C register read, 2 bytes", [](auto& c) { return c.getI2cLocked(0x60, 1, 1, 2, true); }},
        arrayWrite<Camera>(0x30),
        arrayRead<Camera>(0x30),
        commandOperation<Camera>("DAC", IO::UVC_CONFIGURE_DAC, 0, 100),
        commandOperation<Camera>("ADC value", IO::UVC_ADC_VALUE, 3, 4),
        commandOperation<Camera>("micro-frames", IO::UVC_TOF_CONTROLLER_REGISTER, 18, 4),
        commandOperation<Camera>("modulation frequency", IO::UVC_TOF_CONTROLLER_REGISTER, 1004, 7710),
        {"DMA read",
         [](auto& c) {
             unsigned char out[32];
             c.getDMADataLocked(0, out, 32);
         }},
    });
}

std::vector<ChipOperation<VC0345Camera>> operationsOf(const VC0345Camera*) {
    using Camera = VC0345Camera;
    return operationsWith<Camera>({
        commandOperation<Camera>("micro-frames", IO::UVC_TOF_CONTROLLER_REGISTER, 39, 4),
        {"ROM byte write", [](auto& c) { c.setROMData8(1, 2); }},
        {"ROM byte read", [](auto& c) { return c.getROMData8(1); }},
    });
}

unsigned pairAt(const Transfer& transfer, std::size_t at) {
    return transfer.sent[at] | static_cast<unsigned>(transfer.sent[at + 1] << 8);
}

template<typename Chip>
void learnStrobe(Chip& chip, unsigned reg, unsigned bits) {
    chip.resetStrobeLocked(static_cast<int>(reg), 0xFFFF);
    chip.setStrobeLocked(static_cast<int>(reg), static_cast<unsigned short>(bits));
}

// What a chip may remember of one successful transfer, told to another by public calls. Raw I2C writes of the
// VC0258 look like the controller's own, but the operations below make none there.

void learn(OV0570Camera& camera, const Transfer& transfer) {
    if (transfer.control == 1) {
        static_cast<void>(camera.chip.getInfoLocked());
    }
    if (transfer.control != 2 || transfer.isGet || transfer.sent[0] != 0x11)
        return;
    const unsigned reg = pairAt(transfer, 1);
    if (reg == 29) {
        camera.chip.setTOFControllerRegisterLocked(reg, 0);
    } else if (reg == 26 || reg == 27) {
        learnStrobe(camera.chip, reg, pairAt(transfer, 3));
    }
}

void learn(VC0258Camera& camera, const Transfer& transfer) {
    if (transfer.isGet)
        return;
    if (transfer.control == 4)
        return camera.chip.setUSBBackendRegisterLocked(pairAt(transfer, 1), transfer.sent[3]);
    if (transfer.sent[0] != 0x43)
        return;
    if (transfer.sent[3] == 29) {
        camera.chip.setTOFControllerRegisterLocked(29, 0);
    } else if (transfer.sent[3] == 26 || transfer.sent[3] == 27) {
        learnStrobe(camera.chip, transfer.sent[3], pairAt(transfer, 6));
    }
}

void learn(VC0345Camera& camera, const Transfer& transfer) {
    if (transfer.control == 4 && !transfer.isGet)
        camera.chip.setUSBBackendRegisterLocked(pairAt(transfer, 1), transfer.sent[3]);
}

template<typename Camera>
Lines transfersOf(Camera& camera, const ChipOperation<Camera>& operation) {
    camera.port.clearLog();
    operation.run(camera);
    return linesOf(camera.port.log());
}

/// Has the chip send all that it remembers: each strobe, the toggle, and its settings by what it leaves out.
template<typename Camera>
ChipOperation<Camera> recital() {
    return {"recital", [](auto& chip) {
                for (const int strobe : {26, 27, 75})
                    chip.resetStrobeLocked(strobe, 0);
                chip.setTOFControllerRegisterLocked(29, 0);
                return chip.getUSBBackendConfigurationLocked(0, 1);
            }};
}

/// Takes the chip's mutex in another thread: every chip takes it for a command that it does not know.
template<typename Camera>
std::future<void> takeMutex(Camera& camera) {
    return std::async(std::launch::async, [&] { camera.run(static_cast<IO::UVCPrefix>(99), 0, 0); });
}

template<typename Camera>
bool mutexIsFree(Camera& camera) {
    return takeMutex(camera).wait_for(std::chrono::seconds(60)) == std::future_status::ready;
}

template<typename Camera>
class ChipFailureTest : public testing::Test {
protected:
    /// A warm camera knows its settings, as a read of a register leaves them.
    static void prepare(Camera& camera, bool warm) {
        if (warm) {
            static_cast<void>(camera.chip.getTOFControllerRegisterLocked(1));
        }
        camera.port.clearLog();
        camera.port.clearFaults();
    }

    void walkAll(const ChipOperation<Camera>& operation, bool warm) {
        Camera whole;
        prepare(whole, warm);
        const std::size_t count = transfersOf(whole, operation).size();
        const std::size_t first = 1 + walked++ % TestSupport::stride;
        for (std::size_t failing = first; failing <= count; failing += TestSupport::stride) {
            for (const FaultKind kind :
                 {FaultKind::Fail, FaultKind::Late, FaultKind::Short, FaultKind::Long}) {
                SCOPED_TRACE(operation.name + (warm ? ", warm" : ", cold") + ", transfer " +
                             std::to_string(failing) + ", fault " + std::to_string(static_cast<int>(kind)));
                const Fault fault{operation, warm, failing, kind};
                expectAsFresh(fault, operation);
                expectAsFresh(fault, recital<Camera>());
            }
        }
    }

    std::size_t walked = 0; ///< operations so far: each begins its walk at another transfer

    /// One transfer of an operation that fails.
    struct Fault {
        const ChipOperation<Camera>& operation;
        bool warm;
        std::size_t transfer;
        FaultKind kind;
    };

    /// After the fault, `next` is sent as a fresh chip sends it that was told only the successes.
    void expectAsFresh(const Fault& fault, const ChipOperation<Camera>& next) {
        SCOPED_TRACE("then " + next.name);
        Camera camera;
        prepare(camera, fault.warm);
        camera.port.addFault(fault.transfer, fault.kind);
        EXPECT_THROW(fault.operation.run(camera), Plugin::PluginException);
        const std::vector<Transfer> done = camera.port.log();
        ASSERT_EQ(done.size(), fault.transfer) << "nothing is sent after a failure";
        ASSERT_TRUE(mutexIsFree(camera));
        camera.port.clearFaults();
        const Lines sent = transfersOf(camera, next);

        Camera fresh;
        prepare(fresh, fault.warm);
        for (const Transfer& transfer : done) {
            if (transfer.failure.empty())
                learn(fresh, transfer);
        }
        EXPECT_EQ(sent, transfersOf(fresh, next));
    }
};

using Cameras = testing::Types<OV0570Camera, VC0258Camera, VC0345Camera>;
TYPED_TEST_SUITE(ChipFailureTest, Cameras);

TYPED_TEST(ChipFailureTest, AFailedTransferLeavesTheChipAsItsSuccessesSay) {
    for (const auto& operation : operationsOf(static_cast<const TypeParam*>(nullptr))) {
        if (operation.isWalked) {
            this->walkAll(operation, false);
            this->walkAll(operation, true);
        }
    }
}

// Each call holds the chip's mutex, so that the transfers of two do not mix. Where one does not, the other thread has
// taken the mutex long before the wait for it ends.
TYPED_TEST(ChipFailureTest, EveryTransferIsMadeUnderTheChipsMutex) {
    for (const auto& operation : operationsOf(static_cast<const TypeParam*>(nullptr))) {
        TypeParam camera;
        std::future<void> other;
        camera.chip.onTransfer = [&] {
            if (other.valid())
                return;
            other = takeMutex(camera);
            EXPECT_EQ(std::future_status::timeout, other.wait_for(std::chrono::milliseconds(10)))
                << operation.name;
        };
        operation.run(camera);
        if (other.valid())
            other.get();
    }
}

// A camera that answers nonsense: any exception or result will do, but nothing beyond the reply is touched,
// and the chip works again after a reset.
TYPED_TEST(ChipFailureTest, ACorruptTransferDoesNoHarm) {
    for (const auto& operation : operationsOf(static_cast<const TypeParam*>(nullptr))) {
        TypeParam whole;
        const std::size_t count = transfersOf(whole, operation).size();
        for (std::size_t corrupt = 1; corrupt <= count; ++corrupt) {
            SCOPED_TRACE(operation.name + ", transfer " + std::to_string(corrupt));
            TypeParam camera;
            camera.port.addFault(corrupt, FaultKind::Corrupt);
            try {
                operation.run(camera);
            } catch (const Plugin::PluginException&) {
            }
            EXPECT_TRUE(mutexIsFree(camera));
            camera.port.clearFaults();
            camera.chip.reset(); // a setting that arrived wrong is believed until then
            EXPECT_NO_THROW(camera.run(IO::UVC_TOF_CONTROLLER_REGISTER, 5, 1));
        }
    }
}

// Every transfer costs a millisecond or more on a real camera: how many an operation takes is a promise, kept in the table
// of docs/transfers.md.

/// "| OPERATION | FIRST | AGAIN |" for each.
using Rows = std::set<std::string>;

Rows documentedRows(const std::string& chip) {
    const std::string text = Utils::readFile(std::string(ZENTARA_DOCS) + "/transfers.md");
    const std::string head = "\n## " + chip + "\n\n| Operation | First | Again |\n| --- | --- | --- |\n";
    std::istringstream section(text.substr(text.find(head) + head.size()));
    Rows rows;
    for (std::string line; std::getline(section, line) && !line.empty();)
        EXPECT_TRUE(rows.insert(line).second) << line;
    return rows;
}

template<typename Camera>
Rows measuredRows() {
    Rows rows;
    for (const auto& operation : operationsOf(static_cast<const Camera*>(nullptr))) {
        Camera camera;
        std::string row = "| " + operation.name + " |";
        for (int time = 0; time < 2; ++time)
            row += " " + std::to_string(transfersOf(camera, operation).size()) + " |";
        rows.insert(row);
    }
    return rows;
}

TEST(TransferCountTest, OperationsTakeAsManyTransfersAsTheirTablesSay) {
    EXPECT_EQ(measuredRows<OV0570Camera>(), documentedRows("OV0570"));
    EXPECT_EQ(measuredRows<VC0258Camera>(), documentedRows("VC0258"));
    EXPECT_EQ(measuredRows<VC0345Camera>(), documentedRows("VC0345"));
}

} // namespace

} // namespace Zentara::Test
