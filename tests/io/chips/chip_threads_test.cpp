// One chip called from several threads: each call holds the chip's lock, so that the transfers of two do not
// mix.
#include <thread>

#include <gmock/gmock.h>

#include <zentara/plugin/plugin_exceptions.h>

#include "io/chips/chip_operations.h"
#include "io/chips/wired_camera.h"

namespace Zentara::Test {

namespace {

/// The clock and the list of flags have no lock of their own: an unlocked call is a race that the sanitizer
/// sees. Without it, the EEPROM that finds its states out of order refuses.
template<typename Camera>
void runAllAtOnce(Camera& camera) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&camera] {
            for (const auto& operation : operationsOf(static_cast<const Camera*>(nullptr))) {
                if (operation.isOneCall) {
                    EXPECT_NO_THROW(operation.run(camera)) << operation.name;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

/// The values that were written to register 29, low bytes, in the order of the wire.
Lines toggledValues(const Lines& lines, const std::string& head) {
    Lines values;
    for (const std::string& line : lines) {
        if (line.rfind(head, 0) == 0) {
            values.push_back(line.substr(head.size(), 2));
        }
    }
    return values;
}

/// Bit 0 alternates, from 1, over all of them. A value that has the bit itself tells nothing.
void expectAlternating(const Lines& values) {
    ASSERT_GE(values.size(), 8U);
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (values[i] != "01") {
            EXPECT_EQ(std::stoul(values[i], nullptr, 16) & 1, i % 2 == 0 ? 1U : 0U) << i;
        }
    }
}

TEST(ChipThreadsTest, CallsOfManyThreadsDoNotMix) {
    OV0570Camera ov0570;
    runAllAtOnce(ov0570);
    expectAlternating(toggledValues(linesOf(ov0570.port.log()), "SET 2  11 1D 00 "));
    VC0258Camera vc0258;
    runAllAtOnce(vc0258);
    expectAlternating(toggledValues(linesOf(vc0258.port.log()), "SET 16  43 01 12 1D 00 00 "));
    VC0345Camera vc0345;
    runAllAtOnce(vc0345);
}

} // namespace

} // namespace Zentara::Test
