#include "host/flash/records.h"

#include <algorithm>
#include <cmath>
#include <string>

#include <zentara/rom/serialized_data_block.h>

#include "host/float_text.h"
#include "rom/big_endian_reader.h"
#include "rom/big_endian_writer.h"

namespace Zentara::Host {
namespace {

using Kind = RecordFieldKind;
using Marker = ROM::TypeMarker;
using Section = ROM::ContainerSectionType;
using ROM::BigEndianReader;
using ROM::BigEndianWriter;

constexpr std::size_t RECORD_HEADER_SIZE = ROM::SerializedDataBlock::MIN_SIZE;
constexpr std::size_t MAX_COUNT = 255;
constexpr const char* guidHint = "expected a GUID such as 1024966D-1634-4756-9ABC-999791591F45";

/// The markers, and each record's fields in the order in which they lie there. The names are those of the documents that
/// people edit. The lens has k3 last, after p1 and p2, as it is on cameras.
const std::vector<RecordLayout>& layouts() {
    static const std::vector<RecordField> lens{
        {"width", Kind::U16}, {"height", Kind::U16}, {"fx", Kind::Float}, {"fy", Kind::Float},
        {"cx", Kind::Float},  {"cy", Kind::Float},   {"k1", Kind::Float}, {"k2", Kind::Float},
        {"p1", Kind::Float},  {"p2", Kind::Float},   {"k3", Kind::Float}};
    static const std::vector<RecordField> algorithm{{"algorithm", Kind::U8}, {"values", Kind::CountedFloats}};
    static const std::vector<RecordLayout> all{
        {Marker::SystemInfoData, Section::SystemInfo, "systemInfo", {{"guid", Kind::Guid}}},
        {Marker::ZT536HardwareInfoData,
         Section::SystemInfo,
         "hardwareInfo",
         {{"qvgaDepthType", Kind::U8}, {"lensType", Kind::U8}}},
        {Marker::DepthIntrinsicsData, Section::SystemCalibration, "depthIntrinsics", lens},
        {Marker::ColorIntrinsicsData, Section::SystemCalibration, "colorIntrinsics", lens},
        {Marker::ExtrinsicsData,
         Section::SystemCalibration,
         "extrinsics",
         {{"rotation", Kind::Floats9}, {"translation", Kind::Floats3}}},
        {Marker::AccelerometerCalibrationData,
         Section::SystemCalibration,
         "accelerometer",
         {{"x", Kind::Float}, {"y", Kind::Float}, {"z", Kind::Float}}},
        {Marker::TemperatureCalibrationData,
         Section::Configuration,
         "temperatureCalibration",
         {{"values", Kind::CountedFloats}}},
        {Marker::PhaseOffset, Section::Configuration, "phaseOffset", {{"offset", Kind::I16}}},
        {Marker::PhaseOffset2, Section::Configuration, "phaseOffset2", {{"offset", Kind::I16}}},
        {Marker::TemperatureCompensationData, Section::Configuration, "temperatureCompensation", algorithm},
        {Marker::CyclicErrorCorrectionData, Section::Configuration, "cyclicErrorCorrection", algorithm},
        {Marker::OverheatingDiagnosticData,
         Section::Diagnostic,
         "overheating",
         {{"softCounter", Kind::U8}, {"hardCounter", Kind::U8}}},
        {Marker::GradientDistortionCorrectionHeader,
         Section::GradientDistortionCorrection,
         "correctionHeader",
         {{"versionNumber", Kind::U16},
          {"timeOfLastWrite", Kind::U32},
          {"numberOfSets", Kind::U8},
          {"serialId", Kind::Text}}},
        {Marker::GradientDistortionCorrectionData,
         Section::GradientDistortionCorrection,
         "correctionTable",
         {{"modulationFrequency", Kind::U16}, {"values", Kind::CountedBytes}}},
    };
    return all;
}

/// A whole number too gets its point: whoever reads the document sees that it is a real one.
Json realJson(float value) {
    return std::isfinite(value) ? Json(std::stod(floatText(value))) : floatJson(value);
}

Json floatsJson(BigEndianReader& reader, std::size_t count) {
    Json values = Json::array();
    for (std::size_t i = 0; i < count; ++i)
        values.push_back(realJson(reader.readFloat()));
    return values;
}

std::string guidJson(BigEndianReader& reader) {
    const std::string digits = toHex(reader.readBytes(16));
    return digits.substr(0, 8) + "-" + digits.substr(8, 4) + "-" + digits.substr(12, 4) + "-" +
           digits.substr(16, 4) + "-" + digits.substr(20);
}

void passField(BigEndianReader& reader, Kind kind) {
    const auto pass = [&](std::size_t bytes) { static_cast<void>(reader.readBytes(bytes)); };
    switch (kind) {
    case Kind::U8:
        return pass(1);
    case Kind::U16:
    case Kind::I16:
        return pass(2);
    case Kind::U32:
    case Kind::Float:
        return pass(4);
    case Kind::Guid:
        return pass(16);
    case Kind::Floats3:
        return pass(3 * sizeof(float));
    case Kind::Floats9:
        return pass(9 * sizeof(float));
    case Kind::CountedFloats:
        return pass(reader.readU8() * sizeof(float));
    case Kind::CountedBytes:
        return pass(reader.readU32());
    case Kind::Text:
        pass(1);
        static_cast<void>(reader.readText());
    }
}

Json readField(BigEndianReader& reader, Kind kind) {
    switch (kind) {
    case Kind::U8:
        return reader.readU8();
    case Kind::U16:
        return reader.readU16();
    case Kind::I16:
        return static_cast<std::int16_t>(reader.readU16());
    case Kind::U32:
        return reader.readU32();
    case Kind::Float:
        return realJson(reader.readFloat());
    case Kind::Guid:
        return guidJson(reader);
    case Kind::Floats3:
        return floatsJson(reader, 3);
    case Kind::Floats9:
        return floatsJson(reader, 9);
    case Kind::CountedFloats:
        return floatsJson(reader, reader.readU8());
    case Kind::CountedBytes:
        return toHex(reader.readBytes(reader.readU32()));
    case Kind::Text:
        static_cast<void>(reader.readU8()); // the length; the zero byte says the same
        return reader.readText();
    }
    return nullptr;
}

void writeFloats(BigEndianWriter& writer, const JsonPlace& place, std::size_t least, std::size_t most) {
    const std::vector<JsonPlace> items = place.items();
    if (items.size() < least || items.size() > most)
        place.fail(least == most ? "expected " + std::to_string(most) + " numbers"
                                 : "expected at most " + std::to_string(most) + " numbers");
    if (least != most) // else the number is the format's, and not stored
        writer.writeU8(static_cast<std::uint8_t>(items.size()));
    for (const JsonPlace& item : items)
        writer.writeFloat(item.real());
}

void writeGuid(BigEndianWriter& writer, const JsonPlace& place) {
    std::string digits = place.text();
    if (digits.size() != 36)
        place.fail(guidHint);
    for (const std::size_t dash : {23, 18, 13, 8}) { // from the back: the places before it stay
        if (digits[dash] != '-')
            place.fail(guidHint);
        digits.erase(dash, 1);
    }
    const auto bytes = fromHex(digits);
    if (!bytes)
        place.fail(guidHint);
    writer.writeBytes(*bytes);
}

void writeText(BigEndianWriter& writer, const JsonPlace& place) {
    const std::string text = place.text();
    if (text.size() >= MAX_COUNT || text.find('\0') != std::string::npos)
        place.fail("expected a text of at most 254 bytes without a zero character");
    writer.writeU8(static_cast<std::uint8_t>(text.size() + 1));
    writer.writeBytes({reinterpret_cast<const std::uint8_t*>(text.c_str()), text.size() + 1});
}

void writeField(BigEndianWriter& writer, Kind kind, const JsonPlace& place) {
    switch (kind) {
    case Kind::U8:
        return writer.writeU8(static_cast<std::uint8_t>(place.number(0, 0xFF)));
    case Kind::U16:
        return writer.writeU16(static_cast<std::uint16_t>(place.number(0, 0xFFFF)));
    case Kind::I16:
        return writer.writeU16(static_cast<std::uint16_t>(place.number(-0x8000, 0x7FFF)));
    case Kind::U32:
        return writer.writeU32(static_cast<std::uint32_t>(place.number(0, 0xFFFFFFFF)));
    case Kind::Float:
        return writer.writeFloat(place.real());
    case Kind::Guid:
        return writeGuid(writer, place);
    case Kind::Floats3:
        return writeFloats(writer, place, 3, 3);
    case Kind::Floats9:
        return writeFloats(writer, place, 9, 9);
    case Kind::CountedFloats:
        return writeFloats(writer, place, 0, MAX_COUNT);
    case Kind::CountedBytes: {
        const Bytes bytes = place.hex();
        writer.writeU32(static_cast<std::uint32_t>(bytes.size()));
        return writer.writeBytes(bytes);
    }
    case Kind::Text:
        return writeText(writer, place);
    }
}

} // namespace

const RecordLayout* recordLayout(std::uint8_t sectionType, std::uint8_t marker) {
    const auto found = std::find_if(layouts().begin(), layouts().end(), [&](const RecordLayout& layout) {
        return layout.isIn(sectionType) && static_cast<std::uint8_t>(layout.marker) == marker;
    });
    return found == layouts().end() ? nullptr : &*found;
}

const RecordLayout* recordLayout(std::uint8_t sectionType, const std::string& name) {
    const auto found = std::find_if(layouts().begin(), layouts().end(), [&](const RecordLayout& layout) {
        return layout.isIn(sectionType) && layout.name == name;
    });
    return found == layouts().end() ? nullptr : &*found;
}

SplitData splitRecords(std::span<const std::uint8_t> data) {
    SplitData split;
    while (data.size() >= RECORD_HEADER_SIZE) {
        // The length is the one number of the format that is little-endian.
        const std::uint32_t length = data[2] | std::uint32_t{data[3]} << 8 | std::uint32_t{data[4]} << 16 |
                                     std::uint32_t{data[5]} << 24;
        if (length < RECORD_HEADER_SIZE || length > data.size())
            break;
        const auto content = data.subspan(RECORD_HEADER_SIZE, length - RECORD_HEADER_SIZE);
        split.records.push_back({data[0], data[1], Bytes(content.begin(), content.end())});
        data = data.subspan(length);
    }
    split.trailing.assign(data.begin(), data.end());
    return split;
}

void appendRecord(Bytes& data, const RawRecord& record) {
    const auto length = static_cast<std::uint32_t>(RECORD_HEADER_SIZE + record.data.size());
    data.push_back(record.marker);
    data.push_back(record.version);
    for (unsigned shift = 0; shift < 32; shift += 8)
        data.push_back(static_cast<std::uint8_t>(length >> shift));
    data.insert(data.end(), record.data.begin(), record.data.end());
}

bool holdsFields(const RecordLayout& layout, const Bytes& data) {
    BigEndianReader reader(data);
    for (const RecordField& field : layout.fields)
        passField(reader, field.kind);
    return reader.ok();
}

std::optional<Json> decodeFields(const RecordLayout& layout, const Bytes& data) {
    if (!holdsFields(layout, data))
        return std::nullopt;
    BigEndianReader reader(data);
    Json fields = Json::object();
    for (const RecordField& field : layout.fields)
        fields[field.name] = readField(reader, field.kind);
    return fields;
}

Bytes encodeFields(const RecordLayout& layout, const JsonPlace& fields) {
    BigEndianWriter writer(64);
    for (const RecordField& field : layout.fields)
        writeField(writer, field.kind, fields.at(field.name));
    return writer.take();
}

} // namespace Zentara::Host
