#include <zentara/utils/wave_writer.h>

#include <gmock/gmock.h>

#include <zentara/utils/files.h>

#include "support/temporary_directory.h"

namespace {

using Zentara::TestSupport::TemporaryDirectory;
using Zentara::Utils::readFile;

class WaveWriterTest : public testing::Test {
protected:
    int open() { return writer.open(path.c_str()); }
    int write(const std::string& bytes) { return writer.write(bytes.data(), static_cast<int>(bytes.size())); }

    const TemporaryDirectory directory;
    const std::string path = directory.path("t\xC3\xB6ne.wav");
    WaveWriter writer;
};

/// A text of literal bytes, zeros included.
template<std::size_t size>
std::string bytes(const char (&literal)[size]) {
    return std::string(literal, size - 1);
}

TEST_F(WaveWriterTest, WritesTheHeaderOfItsFormat) {
    ASSERT_EQ(open(), 0);
    EXPECT_TRUE(writer.isOpen());
    EXPECT_EQ(write("abcd"), 0);
    EXPECT_EQ(write("efgh"), 0);
    EXPECT_EQ(writer.close(), 0);
    EXPECT_FALSE(writer.isOpen());
    EXPECT_EQ(readFile(path), bytes("RIFF\x2C\0\0\0WAVE"
                                    "fmt \x10\0\0\0\x01\0\x02\0\x80\xBB\0\0\0\xEE\x02\0\x04\0\x10\0"
                                    "data\x08\0\0\0abcdefgh"));
}

TEST_F(WaveWriterTest, DerivesTheSizesOfItsFormat) {
    writer.setNumChannels(3);
    writer.setSamplingRate(8000);
    writer.setBitsPerChannel(20);
    ASSERT_EQ(open(), 0);
    ASSERT_EQ(writer.close(), 0);
    EXPECT_EQ(readFile(path).substr(22, 14), bytes("\x03\0\x40\x1F\0\0\x40\x19\x01\0\x09\0\x14\0"));
}

TEST_F(WaveWriterTest, AnswersMisuseByCodes) {
    EXPECT_EQ(writer.close(), 0);
    EXPECT_EQ(write("nowhere"), 0);
    EXPECT_EQ(writer.open(directory.path("no/such").c_str()), 2);
    EXPECT_EQ(writer.open(nullptr), 2);
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(open(), 1);
    EXPECT_EQ(writer.write("x", -1), 3);
    EXPECT_EQ(writer.write(nullptr, 4), 3);
    EXPECT_EQ(writer.close(), 0);
    EXPECT_EQ(readFile(path).size(), 44u);
}

// The count of data bytes lives as long as the writer, not as long as the file.
TEST_F(WaveWriterTest, KeepsItsDataCountWhenOpenedAgain) {
    ASSERT_EQ(open(), 0);
    write("abcd");
    writer.close();
    ASSERT_EQ(open(), 0);
    write("ef");
    writer.close();
    EXPECT_EQ(readFile(path).substr(40), bytes("\x06\0\0\0ef"));
}

TEST(WaveWriter, NamesItsErrors) {
    const char* texts[] = {
        "no error",         "file already open", "cannot open file", "cannot write to file",
        "cannot seek file", "cannot close file", "unknown error"};
    for (int code = 0; code < 7; ++code)
        EXPECT_STREQ(WaveWriter::errorString(code), texts[code]);
    EXPECT_STREQ(WaveWriter::errorString(-1), "unknown error");
}

} // namespace
