#include <zentara/utils/wave_writer.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zentara/utils/files.h>

#include "support/temporary_directory.h"

namespace {

using Zentara::TestSupport::TemporaryDirectory;
using Zentara::Utils::readFile;

/// A file and another program that reads it: sox, which the tests need.
class WaveWriterPeerTest : public testing::Test {
protected:
    /// What the command prints about the file, warnings and errors included.
    std::string ask(const std::string& command) {
        const std::string line = command + " '" + wave + "' > '" + answer + "' 2>&1";
        EXPECT_EQ(std::system(line.c_str()), 0) << line;
        return readFile(answer);
    }

    const TemporaryDirectory directory;
    const std::string wave = directory.path("tone.wav");
    const std::string answer = directory.path("answer.txt");
};

TEST_F(WaveWriterPeerTest, AnotherProgramReadsTheSameSound) {
    constexpr int rate = 8000;
    std::vector<std::int16_t> samples;
    for (int i = 0; i < rate; ++i) {
        samples.push_back(static_cast<std::int16_t>(10000 * std::sin(i * 0.3)));
        samples.push_back(static_cast<std::int16_t>(-i));
    }
    const int size = static_cast<int>(samples.size() * sizeof samples[0]);
    WaveWriter writer;
    writer.setSamplingRate(rate);
    ASSERT_EQ(writer.open(wave.c_str()), 0);
    ASSERT_EQ(writer.write(samples.data(), size), 0);
    ASSERT_EQ(writer.close(), 0);

    EXPECT_EQ(ask("soxi -t"), "wav\n");
    EXPECT_EQ(ask("soxi -c"), "2\n");
    EXPECT_EQ(ask("soxi -r"), "8000\n");
    EXPECT_EQ(ask("soxi -b"), "16\n");
    EXPECT_EQ(ask("soxi -s"), "8000\n");
    const std::string raw = directory.path("tone.raw");
    const std::string line = "sox -V2 '" + wave + "' '" + raw + "' 2> '" + answer + "'";
    ASSERT_EQ(std::system(line.c_str()), 0);
    EXPECT_EQ(readFile(answer), "") << "no warning";
    EXPECT_EQ(readFile(raw), std::string(reinterpret_cast<const char*>(samples.data()), samples.size() * 2));
}

TEST(WaveWriter, AFullDiskIsToldWhenTheFileIsClosed) {
    WaveWriter writer;
    ASSERT_EQ(writer.open("/dev/full"), 0);
    EXPECT_EQ(writer.write("abcd", 4), 0);
    EXPECT_EQ(writer.close(), 3);
    EXPECT_FALSE(writer.isOpen());
}

} // namespace
