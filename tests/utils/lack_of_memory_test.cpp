// Each allocation fails once. What is long enough needs memory: shorter things find room in the objects themselves.
#include <zentara/utils/binary_reader.h>
#include <zentara/utils/binary_writer.h>
#include <zentara/utils/crc.h>
#include <zentara/utils/format.h>

#include <gtest/gtest.h>

#include "support/failing_allocation.h"

namespace Zentara::Utils {
namespace {

using TestSupport::walkAllocations;
using Move = std::function<bool(BinaryWriter*, BinaryReader*)>;

/// Writes the value, or reads it and tells whether it is that.
template<typename T>
Move moveOf(T value, T (BinaryReader::*read)()) {
    return [=](BinaryWriter* writer, BinaryReader* reader) {
        if (writer)
            writer->write(value);
        return writer || (reader->*read)() == value;
    };
}

TEST(UtilsLackOfMemory, AWriterHasTheWholeValueOrNothingOfItAndAReaderStaysWhereItIs) {
    const std::string text(20000, 't');
    for (const Move& move : {moveOf(text, &BinaryReader::readString),
                             moveOf(std::vector<int>(20000, 7), &BinaryReader::readInts),
                             moveOf(std::vector<bool>(40000, true), &BinaryReader::readBools),
                             moveOf(std::vector<std::string>(3, text), &BinaryReader::readStrings)})
        walkAllocations([&](const auto& withoutMemory) {
            BinaryWriter writer;
            if (withoutMemory([&] { move(&writer, nullptr); }))
                move(&writer, nullptr);
            const ByteArray bytes = writer.toByteArray();
            BinaryReader reader(bytes.data(), bytes.size());
            bool isRight = false;
            if (withoutMemory([&] { isRight = move(nullptr, &reader); }))
                isRight = move(nullptr, &reader);
            EXPECT_TRUE(isRight);
        });
}

TEST(UtilsLackOfMemory, AMessageIsMadeTheNextTimeAndAChecksumNeedsNone) {
    const std::string text(20000, 't');
    std::string made;
    const auto make = [&] { made = Format("<%> %{:x} %") % std::string(Format("(%)") % text) % 255 % text; };
    walkAllocations([&](const auto& withoutMemory) {
        if (withoutMemory(make))
            make();
        EXPECT_EQ(made, "<(" + text + ")> ff " + text);
    });
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
    const TestSupport::FailingAllocation first(0);
    (void)(Crc8::compute(bytes, 9, 0) + Crc16::compute(bytes, 9, 0) + Crc32::compute(bytes, 9, 0));
    EXPECT_FALSE(first.hit());
}

} // namespace
} // namespace Zentara::Utils
