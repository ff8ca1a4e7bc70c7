// Each public operation of each chip, with each of its transfers failing in each way.
#include <future>

#include <gmock/gmock.h>

#include <zentara/plugin/plugin_exceptions.h>

#include "io/chips/chip_operations.h"
#include "io/chips/wired_camera.h"
#include "support/stride.h"

namespace Zentara::Test {

namespace {

using Simulated::Transfer;
using FaultKind = Simulated::Fault::Kind;

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
    return {"recital", [](Camera& camera) {
                for (const int strobe : {26, 27, 75})
                    camera.chip.resetStrobeLocked(strobe, 0);
                camera.chip.setTOFControllerRegisterLocked(29, 0);
                static_cast<void>(camera.chip.getUSBBackendConfigurationLocked(0, 1));
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

} // namespace

} // namespace Zentara::Test
