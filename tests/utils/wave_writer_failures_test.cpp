#include <zentara/utils/wave_writer.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include <gtest/gtest.h>

#include "utils/platform/files.h"

namespace {

/// Takes the place of the file: a stream whose operations fail when they are told to, or when the disk is full. It
/// keeps what it needs of its content: the header and the length.
struct FailingFile {
    bool writing = false;
    bool seeking = false;
    bool closing = false;
    bool isBuffered = false;
    std::uint64_t room = std::numeric_limits<std::uint64_t>::max();
    int closed = 0;
    std::string header = std::string(44, '\0');
    std::uint64_t position = 0;
    std::uint64_t length = 0;

    std::FILE* open() {
        cookie_io_functions_t operations{};
        operations.write = [](void* file, const char* bytes, std::size_t size) {
            return static_cast<FailingFile*>(file)->write(bytes, size);
        };
        operations.seek = [](void* file, off64_t* position, int) {
            static_cast<FailingFile*>(file)->position = static_cast<std::uint64_t>(*position);
            return static_cast<FailingFile*>(file)->seeking ? -1 : 0;
        };
        operations.close = [](void* file) {
            ++static_cast<FailingFile*>(file)->closed;
            return static_cast<FailingFile*>(file)->closing ? -1 : 0;
        };
        std::FILE* const stream = fopencookie(this, "wb", operations);
        std::setvbuf(stream, nullptr, isBuffered ? _IOFBF : _IONBF, isBuffered ? 4096 : 0);
        return stream;
    }

    ssize_t write(const char* bytes, std::size_t size) {
        const std::size_t taken =
            writing ? 0 : static_cast<std::size_t>(std::min<std::uint64_t>(size, room - position));
        for (std::size_t i = 0; i < taken && position + i < header.size(); ++i)
            header[position + i] = bytes[i];
        position += taken;
        length = std::max(length, position);
        return static_cast<ssize_t>(taken);
    }

    std::uint32_t headerNumber(std::size_t offset) const {
        std::uint32_t number = 0;
        for (std::size_t i = 0; i < 4; ++i)
            number |= static_cast<std::uint32_t>(static_cast<unsigned char>(header[offset + i])) << 8 * i;
        return number;
    }
};

FailingFile* nextFile = nullptr;

struct Fault {
    const char* name;
    bool FailingFile::*when;
    bool FailingFile::*also;
    int code;
};

class WaveWriterFailures : public testing::TestWithParam<Fault> {
protected:
    WaveWriterFailures() { nextFile = &file; }
    ~WaveWriterFailures() override { nextFile = nullptr; }

    FailingFile file;
    WaveWriter writer;
};

TEST_P(WaveWriterFailures, CloseTellsTheFirstAndAlwaysCloses) {
    ASSERT_EQ(writer.open("any"), 0);
    ASSERT_EQ(writer.write("abcd", 4), 0);
    file.*GetParam().when = true;
    file.*GetParam().also = true;
    EXPECT_EQ(writer.close(), GetParam().code);
    EXPECT_FALSE(writer.isOpen());
    EXPECT_EQ(file.closed, 1);
    EXPECT_EQ(writer.close(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Faults, WaveWriterFailures,
    testing::Values(Fault{"rewriting", &FailingFile::writing, &FailingFile::writing, 4},
                    Fault{"rewritingAndClosing", &FailingFile::writing, &FailingFile::closing, 4},
                    Fault{"closing", &FailingFile::closing, &FailingFile::closing, 5},
                    // A file that cannot be rewound keeps its first header, which is no error.
                    Fault{"seeking", &FailingFile::seeking, &FailingFile::seeking, 0},
                    Fault{"seekingAndClosing", &FailingFile::seeking, &FailingFile::closing, 5}),
    [](const auto& row) { return row.param.name; });

TEST_F(WaveWriterFailures, AFileThatTakesNothingStaysOpen) {
    file.writing = true;
    EXPECT_EQ(writer.open("any"), 3);
    EXPECT_TRUE(writer.isOpen());
    EXPECT_EQ(writer.write("abcd", 4), 3);
    EXPECT_EQ(writer.close(), 4);
    EXPECT_EQ(file.closed, 1);
}

// The C library keeps samples back: the disk may turn out to be full in the midst of a write, or at the close.
TEST_F(WaveWriterFailures, TheHeaderCountsWhatAFullDiskTook) {
    const std::string samples(100, 's');
    for (const int writes : {11, 30, 300}) {
        file = FailingFile();
        file.isBuffered = true;
        file.room = 44 + 1000;
        WaveWriter fresh;
        ASSERT_EQ(fresh.open("any"), 0);
        int failed = 0;
        for (int i = 0; i < writes; ++i)
            failed += fresh.write(samples.data(), 100) == 3 ? 1 : 0;
        failed += fresh.close() == 3 ? 1 : 0;
        EXPECT_GE(failed, 1) << writes;
        EXPECT_EQ(file.headerNumber(40), 1000u) << writes;
        EXPECT_EQ(file.headerNumber(4), 1036u) << writes;
        EXPECT_EQ(file.closed, 1) << writes;
    }
}

// The numbers of the header end at 4 GiB, that of the whole file first.
TEST_F(WaveWriterFailures, NoMoreIsTakenThanTheHeaderCanCount) {
    constexpr int piece = 1 << 26;
    const std::unique_ptr<char[]> samples(new char[piece]); // never looked at
    ASSERT_EQ(writer.open("any"), 0);
    for (int i = 0; i < 63; ++i)
        ASSERT_EQ(writer.write(samples.get(), piece), 0);
    EXPECT_EQ(writer.write(samples.get(), piece - 36), 3);
    EXPECT_EQ(writer.write(samples.get(), piece - 37), 0);
    EXPECT_EQ(writer.write(samples.get(), 1), 3);
    EXPECT_EQ(writer.close(), 0);
    EXPECT_EQ(file.headerNumber(4), 0xFFFFFFFFu);
    EXPECT_EQ(file.headerNumber(40), 0xFFFFFFFFu - 36);
    EXPECT_EQ(file.length, (std::uint64_t{1} << 32) - 37 + 44);
}

} // namespace

std::FILE* Zentara::Utils::Platform::openFile(const std::string&, FileMode) { return nextFile->open(); }

std::int64_t Zentara::Utils::Platform::fileLength(std::FILE*) noexcept {
    return static_cast<std::int64_t>(nextFile->length);
}
