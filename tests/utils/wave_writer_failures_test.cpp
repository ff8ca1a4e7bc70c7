#include <zentara/utils/wave_writer.h>

#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "utils/platform/files.h"

namespace {

/// Takes the place of the file: a stream without a buffer whose operations fail when they are told to.
struct FailingFile {
    bool writing = false;
    bool seeking = false;
    bool closing = false;
    int closed = 0;

    std::FILE* open() {
        cookie_io_functions_t operations{};
        operations.write = [](void* file, const char*, std::size_t size) -> ssize_t {
            return static_cast<FailingFile*>(file)->writing ? 0 : static_cast<ssize_t>(size);
        };
        operations.seek = [](void* file, off64_t* position, int) {
            *position = 0;
            return static_cast<FailingFile*>(file)->seeking ? -1 : 0;
        };
        operations.close = [](void* file) {
            ++static_cast<FailingFile*>(file)->closed;
            return static_cast<FailingFile*>(file)->closing ? -1 : 0;
        };
        std::FILE* const stream = fopencookie(this, "wb", operations);
        std::setvbuf(stream, nullptr, _IONBF, 0);
        return stream;
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
};

TEST_P(WaveWriterFailures, CloseTellsTheFirstAndAlwaysCloses) {
    WaveWriter writer;
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
    WaveWriter writer;
    EXPECT_EQ(writer.open("any"), 3);
    EXPECT_TRUE(writer.isOpen());
    EXPECT_EQ(writer.write("abcd", 4), 3);
    EXPECT_EQ(writer.close(), 4);
    EXPECT_EQ(file.closed, 1);
}

} // namespace

std::FILE* Zentara::Utils::Platform::openFile(const std::string&, FileMode) { return nextFile->open(); }
