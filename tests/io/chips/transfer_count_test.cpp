// Every transfer costs a millisecond or more on a real camera: how many an operation takes is a promise, kept
// in the table of docs/transfers.md.
#include <fstream>
#include <map>
#include <sstream>

#include <gmock/gmock.h>

#include "io/chips/chip_operations.h"
#include "io/chips/wired_camera.h"

namespace Zentara::Test {

namespace {

/// "first / again" by operation name.
using Counts = std::map<std::string, std::string>;

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// Rows "| operation | first | again |" of the chip's section.
Counts documentedCounts(const std::string& chip) {
    std::ifstream file(std::string(ZENTARA_DOCS) + "/transfers.md");
    EXPECT_TRUE(file.is_open());
    Counts counts;
    std::string section;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("## ", 0) == 0)
            section = trimmed(line.substr(3));
        std::istringstream cells(line);
        std::string empty, name, first, again;
        std::getline(std::getline(std::getline(std::getline(cells, empty, '|'), name, '|'), first, '|'),
                     again, '|');
        if (section == chip && !again.empty() &&
            trimmed(first).find_first_not_of("0123456789") == std::string::npos) {
            counts[trimmed(name)] = trimmed(first) + " / " + trimmed(again);
        }
    }
    return counts;
}

template<typename Camera>
Counts measuredCounts() {
    Counts counts;
    for (const auto& operation : operationsOf(static_cast<const Camera*>(nullptr))) {
        Camera camera;
        operation.run(camera);
        const std::size_t first = camera.port.log().size();
        operation.run(camera);
        counts[operation.name] =
            std::to_string(first) + " / " + std::to_string(camera.port.log().size() - first);
    }
    return counts;
}

TEST(TransferCountTest, OperationsTakeAsManyTransfersAsTheirTablesSay) {
    EXPECT_EQ(measuredCounts<OV0570Camera>(), documentedCounts("OV0570"));
    EXPECT_EQ(measuredCounts<VC0258Camera>(), documentedCounts("VC0258"));
    EXPECT_EQ(measuredCounts<VC0345Camera>(), documentedCounts("VC0345"));
}

} // namespace

} // namespace Zentara::Test
