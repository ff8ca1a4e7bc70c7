// The bytes of headers, records, strings and objects.
#include <zentara/rom/chunked_memory_management_header.h>
#include <zentara/rom/configuration.h>
#include <zentara/rom/diagnostic.h>
#include <zentara/rom/gradient_distortion_correction.h>
#include <zentara/rom/section.h>
#include <zentara/rom/serialized_data_block.h>
#include <zentara/rom/string_serialization.h>
#include <zentara/rom/system_calibration.h>
#include <zentara/rom/system_info.h>
#include <zentara/utils/crc.h>

#include "rom/rom_fixture.h"
#include "support/log_capture.h"

namespace Zentara::TestSupport {
namespace {

struct RecordProbe : ROM::SerializedDataBlock {
    using SerializedDataBlock::deserialize;
};

TEST(RomFormat, BlockHeaderRefusesDamage) {
    for (const char* bytes : {"", "00000020 00000100 57", "00000020 00000100 5781", "00000009 00000000 01DC"})
        EXPECT_EQ(nullptr, BlockProbe::deserialize(hex(bytes))) << bytes;
}

TEST(RomFormat, ManagementHeaderBytes) {
    const auto bytes = hex("01 01 01 00001000 00000100 00000011 0803");
    EXPECT_EQ(bytes, ROM::ChunkedMemoryManagementHeader(1, 1, 256, 4096, 17).serialize());
    for (auto damaged :
         {hex("01 01 01 00001000 00000100 00000011 08"), hex("02 01 01 00001000 00000100 00000011 0803"),
          hex("01 01 01 00001000 00000100 00000012 0803")})
        EXPECT_EQ(nullptr, ROM::ChunkedMemoryManagementHeader::deserialize(damaged));
}

TEST(RomFormat, SectionRefusesDamage) {
    const auto withLength = [](const char* length) { // a header whose checksum is right
        auto bytes = hex(std::string("A5") + length + "03010007");
        const unsigned crc = Utils::Crc16::compute(bytes.data(), 9, 0);
        const auto rest = hex("0000 112233 B008");
        bytes.insert(bytes.end(), rest.begin(), rest.end());
        bytes[9] = static_cast<std::uint8_t>(crc >> 8);
        bytes[10] = static_cast<std::uint8_t>(crc);
        return bytes;
    };
    ASSERT_NE(nullptr, std::unique_ptr<ROM::Section>(ROM::Section::deserialize(withLength("00000010"))));
    for (const char* length : {"00000000", "0000000C", "00000011", "FFFFFFFF"})
        EXPECT_EQ(nullptr, ROM::Section::deserialize(withLength(length))) << length;
    for (const char* bytes :
         {"", "A5 0000000D 03 01 0007 D216", "A4 00000010 03 01 0007 D216 112233 B008",
          "A5 00000010 03 00 0007 D216 112233 B008", "A5 00000010 03 01 0007 D216 112233 B009"})
        EXPECT_EQ(nullptr, ROM::Section::deserialize(hex(bytes))) << bytes;
}

TEST(RomFormat, RecordRefusesImpossibleLengths) {
    for (const char* bytes : {"", "01 01 060000", "01 01 05000000", "01 01 00000000", "01 01 07000000",
                              "01 01 FFFFFFFF 00", "01 01 00000008 AABB"})
        EXPECT_EQ(nullptr, RecordProbe::deserialize(hex(bytes))) << bytes;
    const std::unique_ptr<ROM::SerializedDataBlock> empty(RecordProbe::deserialize(hex("09 02 06000000")));
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->getSerializedData().empty());
}

TEST(RomFormat, Strings) {
    std::uint8_t bytes[4] = {9, 9, 9, 9};
    EXPECT_EQ(bytes + 3, ROM::serialize(bytes, "AB"));
    EXPECT_THAT(bytes, ElementsAre('A', 'B', 0, 9));
    EXPECT_EQ(1u, ROM::serializedLength(""));
    std::string text;
    EXPECT_EQ(bytes + 3, ROM::deserialize(bytes, &text));
    EXPECT_EQ("AB", text);
    EXPECT_EQ(bytes + 3, ROM::deserialize(bytes + 1, bytes + 4, &text));
    EXPECT_EQ("B", text);
    EXPECT_EQ(nullptr, ROM::deserialize(bytes, bytes + 2, &text));
}

/// Opens the reading of objects, which is the facade's alone.
template<class T>
struct Reader : T {
    static std::unique_ptr<T> read(const Bytes& bytes) { return std::unique_ptr<T>(T::deserialize(bytes)); }
};
template<class T>
std::unique_ptr<T> read(const std::string& text) {
    return Reader<T>::read(hex(text));
}
struct ObjectReader : ROM::Object {
    using Object::deserialize;
};

constexpr GUID SOME_GUID = {0x01020304, 0x0506, 0x0708, {9, 10, 11, 12, 13, 14, 15, 16}};

TEST(RomObjects, SystemInfoBytes) {
    const ROM::SystemInfo info(ROM::SystemInfoData(SOME_GUID), ROM::ZT536HardwareInfoData(3, 4));
    const char* bytes = "01 01 16000000 01020304 0506 0708 090A0B0C0D0E0F10  80 01 08000000 03 04";
    EXPECT_EQ(hex(bytes), info.serialize());
    EXPECT_EQ(hex(bytes), read<ROM::SystemInfo>(bytes)->serialize());
    constexpr GUID fallback = {0x1024966D, 0x1634, 0x4756, {0x9A, 0xBC, 0x99, 0x97, 0x91, 0x59, 0x1F, 0x45}};
    const auto half = read<ROM::SystemInfo>("80 01 08000000 03 04");
    EXPECT_TRUE(guidEquals(fallback, half->getSystemInfoData().getGUID()));
    EXPECT_EQ(3, half->getZT536HardwareInfoData().getQvgaDType());
    EXPECT_EQ(0, read<ROM::SystemInfo>("")->getZT536HardwareInfoData().getLensType());
}

TEST(RomObjects, ConfigurationBytes) {
    const ROM::Configuration empty({}, {}, {}, {}, {});
    // Both offsets carry the first marker.
    EXPECT_EQ(hex("22 01 07000000 00  40 01 08000000 0000  40 01 08000000 0000"
                  "42 01 08000000 00 00  43 01 08000000 00 00"),
              empty.serialize());
    const ROM::Configuration full(ROM::TemperatureCalibrationData({1.0f}), {ROM::PhaseOffset::MARKER, -2},
                                  {ROM::PhaseOffset::MARKER2, 259},
                                  {static_cast<ROM::TemperatureAlgorithmID>(3), {1.0f, -2.5f}},
                                  {static_cast<ROM::CyclicErrorAlgorithmID>(200), {}});
    const auto bytes = hex("22 01 0B000000 01 3F800000  40 01 08000000 FFFE  41 01 08000000 0103"
                           "42 01 10000000 03 02 3F800000 C0200000  43 01 08000000 C8 00");
    EXPECT_EQ(bytes, full.serialize());
    EXPECT_EQ(bytes, Reader<ROM::Configuration>::read(bytes)->serialize());
    // An absent second offset replaces the first when it is written.
    const auto once = read<ROM::Configuration>("40 01 08000000 0005");
    EXPECT_EQ(5, once->getPhaseOffset().getPhaseOffset());
    EXPECT_EQ(ROM::PhaseOffset::MARKER, once->getPhaseOffset2().getMarker());
    EXPECT_EQ(0, Reader<ROM::Configuration>::read(once->serialize())->getPhaseOffset().getPhaseOffset());
}

TEST(RomObjects, SystemCalibrationBytes) {
    const ROM::IntrinsicsData depth(ROM::IntrinsicsData::Type::Depth, 320, 240, 1, 2, 3, 4, 5, 6, 7, 8, 9);
    CameraIntrinsics lens;
    lens.width = 160;
    lens.k3 = 1;
    const ROM::IntrinsicsData color(ROM::IntrinsicsData::Type::Color, lens);
    const ROM::SystemCalibration calibration({1, 2, 3}, {1, 0, 0, 0, 1, 0, 0, 0, 1, 10, 20, 30},
                                             {depth, depth}, {color});
    const std::string depthRecord =
        "10 01 2E000000 0140 00F0 3F800000 40000000 40400000 40800000" // size, fx fy cx cy
        "40A00000 40C00000 40E00000 41000000 41100000";                // k1 k2 p1 p2 k3
    const std::string zero = "00000000", one = "3F800000";
    const auto bytes =
        hex(depthRecord + depthRecord + "11 01 2E000000 00A0 0000" + zero + zero + zero + zero + zero + zero +
            zero + zero + one + "12 01 36000000" + one + zero + zero + zero + one + zero + zero + zero + one +
            "41200000 41A00000 41F00000" + "21 01 12000000 3F800000 40000000 40400000");
    EXPECT_EQ(bytes, calibration.serialize());
    const auto back = Reader<ROM::SystemCalibration>::read(bytes);
    ASSERT_EQ(1u, back->getColorIntrinsics().size());
    EXPECT_EQ(ROM::IntrinsicsData::Type::Color, back->getColorIntrinsics()[0].getType());
    EXPECT_EQ(bytes, back->serialize());
}

TEST(RomObjects, CorrectionBytes) {
    const ROM::GradientDistortionCorrection correction({258, 0x01020304, 2, "AB"},
                                                       {{30, {1, 2, 3}}, {60, {}}});
    const auto bytes = hex("44 01 11000000 0102 01020304 02 03 414200  45 01 0F000000 001E 00000003 010203"
                           "45 01 0C000000 003C 00000000");
    EXPECT_EQ(bytes, correction.serialize());
    const auto back = Reader<ROM::GradientDistortionCorrection>::read(bytes);
    ASSERT_EQ(2u, back->getGradientDistortionCorrectionData().size());
    EXPECT_EQ(bytes, back->serialize());
    // The id ends at its zero byte; its stored length is not consulted.
    const auto odd = read<ROM::GradientDistortionCorrection>("44 01 11000000 0102 01020304 02 00 414200");
    EXPECT_EQ("AB", odd->getGradientDistortionCorrectionHeader().getSerialId());
}

/// Each is equal to itself and to what it is assigned to, and to none of the others.
template<class T>
void areDifferent(const std::vector<T>& all) {
    for (const T& one : all) {
        T assigned = all.back();
        assigned = one;
        for (const T& other : all)
            EXPECT_TRUE((assigned == other) == (&one == &other) && (assigned != other) == (&one != &other));
    }
}

TEST(RomObjects, AreEqualInAllThatTheyHold) {
    using Type = ROM::IntrinsicsData::Type;
    areDifferent<ROM::AccelerometerCalibrationData>({{1, 2, 3}, {4, 2, 3}, {1, 4, 3}, {1, 2, 4}});
    areDifferent<ROM::CyclicErrorCorrectionData>(
        {{{}, {1}}, {ROM::CyclicErrorAlgorithmID(3), {1}}, {{}, {2}}});
    areDifferent<ROM::GradientDistortionCorrectionData>({{30, {1}}, {60, {1}}, {30, {2}}, {30, {}}});
    areDifferent<ROM::GradientDistortionCorrectionHeader>(
        {{1, 2, 3, "a"}, {4, 2, 3, "a"}, {1, 4, 3, "a"}, {1, 2, 4, "a"}, {1, 2, 3, "b"}});
    areDifferent<ROM::IntrinsicsData>({{Type::Depth, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11},
                                       {Type::Color, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11},
                                       {Type::Depth, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 12}});
    areDifferent<ROM::OverheatingDiagnosticData>({{1, 2}, {3, 2}, {1, 3}});
    areDifferent<ROM::PhaseOffset>({{ROM::PhaseOffset::MARKER, 1}, {ROM::PhaseOffset::MARKER2, 1}, {}});
    areDifferent<ROM::SystemInfoData>({{}, ROM::SystemInfoData(SOME_GUID)});
    areDifferent<ROM::TemperatureCalibrationData>({{}, ROM::TemperatureCalibrationData({1})});
    areDifferent<ROM::TemperatureCompensationData>({{{}, {1}}, {ROM::TemperatureAlgorithmID(3), {1}}, {}});
    areDifferent<ROM::ZT536HardwareInfoData>({{1, 2}, {3, 2}, {1, 3}});
}

// Each is refused with its warning, and the object that comes out is the one of no records at all.
TEST(RomObjects, DamagedRecordsAreSkippedWithAWarning) {
    using Type = ROM::ContainerSectionType;
    const std::tuple<Type, const char*, const char*> rows[]{
        {Type::SystemInfo, "01 01 15000000 01020304 0506 0708 090A0B0C0D0E0F", "SystemInfoData"},
        {Type::SystemInfo, "80 01 07000000 03", "ZT536HardwareInfoData"},
        {Type::Configuration, "40 00 08000000 0001", "PhaseOffset"}, // another version; a later one
        {Type::Configuration, "40 02 08000000 0001", "PhaseOffset"},
        {Type::Configuration, "41 01 07000000 00", "PhaseOffset"}, // cut
        {Type::Configuration, "22 01 0B000000 02 3F800000", "TemperatureCalibrationData"},
        {Type::Configuration, "42 01 07000000 03", "TemperatureCompensationData"}, // no count
        {Type::Configuration, "43 01 08000000 03 FF", "CyclicErrorCorrectionData"},
        {Type::Diagnostic, "20 01 07000000 05", "OverheatingDiagnosticData"},
        {Type::SystemCalibration, "10 01 0A000000 0140 00F0", "IntrinsicsData"},
        {Type::SystemCalibration, "12 02 06000000", "ExtrinsicsData"},
        {Type::SystemCalibration, "21 01 06000000", "AccelerometerCalibrationData"},
        {Type::GradientDistortionCorrection, "44 01 11000000 0102 01020304 02 03 414243", // no end of the id
         "GradientDistortionCorrectionHeader"},
        {Type::GradientDistortionCorrection, "45 01 0F000000 001E FFFFFFFF 010203",
         "GradientDistortionCorrectionData"},
        {Type::GradientDistortionCorrection, "45 01 0F000000 001E 00000004 010203", // one byte short
         "GradientDistortionCorrectionData"},
    };
    for (const auto& [type, bytes, record] : rows) {
        LogCapture log;
        const std::unique_ptr<ROM::Object> object(ObjectReader::deserialize(type, hex(bytes)));
        const std::unique_ptr<ROM::Object> empty(ObjectReader::deserialize(type, {}));
        ASSERT_TRUE(object) << bytes;
        EXPECT_EQ(empty->serialize(), object->serialize()) << bytes;
        EXPECT_THAT(log.warnings(), ElementsAre(std::string("Failed to deserialized ") + record));
    }
}

// The rest loads around damage, a longer record is accepted, and the later of two counts.
TEST(RomObjects, OtherRecordsLoadAroundDamage) {
    LogCapture log;
    const auto diagnostic = read<ROM::Diagnostic>("63 01 08000000 0102  20 02 08000000 0909"
                                                  "20 01 08000000 0102  20 01 09000000 05 06 FF");
    EXPECT_EQ(5, diagnostic->getOverheatingDiagnosticData().getSoftCounter());
    EXPECT_EQ(6, diagnostic->getOverheatingDiagnosticData().getHardCounter());
    EXPECT_THAT(log.text(), HasSubstr("Failed to deserialize data for 99"));
}

TEST(RomObjects, ReadingStopsWhereNoWholeRecordIs) {
    for (const char* tail : {"20", "20 01 0900 0000 0304", "20 01 05000000 0304", "FF FF FFFFFFFF 0000"}) {
        LogCapture log;
        const auto diagnostic = read<ROM::Diagnostic>(std::string("20 01 08000000 0102") + tail);
        EXPECT_EQ(1, diagnostic->getOverheatingDiagnosticData().getSoftCounter()) << tail;
        EXPECT_THAT(log.text(), testing::Not(HasSubstr("Failed"))) << tail;
    }
}

TEST(RomObjects, WritersRefuseWhatDoesNotFit) {
    const std::vector<float> most(255), tooMany(256);
    const auto with = [](const std::vector<float>& values) {
        return ROM::Configuration(ROM::TemperatureCalibrationData(values), {}, {}, {}, {}).serialize();
    };
    EXPECT_EQ(38u + 1 + 255 * 4, with(most).size());
    EXPECT_THROW(with(tooMany), ArgumentPluginException);
    const auto named = [](const std::string& id) {
        return ROM::GradientDistortionCorrection({1, 1, 1, id}, {}).serialize();
    };
    EXPECT_EQ(6u + 8 + 255, named(std::string(254, 'x')).size());
    EXPECT_THROW(named(std::string(255, 'x')), ArgumentPluginException);
    EXPECT_THROW(named(std::string("A\0B", 3)), ArgumentPluginException);
}

} // namespace
} // namespace Zentara::TestSupport
