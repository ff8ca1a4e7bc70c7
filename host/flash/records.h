#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "host/json.h"
#include "host/json_place.h"
#include <zentara/host/hex_bytes.h>
#include <zentara/rom/section.h>
#include <zentara/rom/system_info_data.h>
#include <zentara/rom/type_marker.h>

namespace Zentara::Host {

/// The pieces of a record's data. Numbers are big-endian.
enum class RecordFieldKind {
    U8,
    U16,
    I16,
    U32,
    Float,
    Guid,
    Floats3,       ///< three floats
    Floats9,       ///< nine
    CountedFloats, ///< a count byte, then so many floats
    CountedBytes,  ///< a 32-bit count, then so many bytes
    Text,          ///< a length byte that counts the zero byte at the end, the characters, the zero byte
};

struct RecordField {
    const char* name;
    RecordFieldKind kind;
};

/// What a record of one marker holds.
struct RecordLayout {
    ROM::TypeMarker marker;
    ROM::ContainerSectionType sectionType; ///< where it belongs
    const char* name;
    std::vector<RecordField> fields;

    [[nodiscard]] bool isIn(std::uint8_t type) const {
        return static_cast<std::uint8_t>(sectionType) == type;
    }
};

/// Null for a record that sections of that type do not have.
[[nodiscard]] const RecordLayout* recordLayout(std::uint8_t sectionType, std::uint8_t marker);
[[nodiscard]] const RecordLayout* recordLayout(std::uint8_t sectionType, const std::string& name);

/// The version of every record that has a layout.
inline constexpr std::uint8_t RECORD_VERSION = ROM::SystemInfoData::VERSION;

/// A record as it lies in a section's data.
struct RawRecord {
    std::uint8_t marker = 0;
    std::uint8_t version = 0;
    Bytes data;
};

/// A section's data taken apart.
struct SplitData {
    std::vector<RawRecord> records;
    Bytes trailing; ///< what follows the last whole record
};
[[nodiscard]] SplitData splitRecords(std::span<const std::uint8_t> data);
void appendRecord(Bytes& data, const RawRecord& record);

/// Whether the data is long enough for the fields of a record.
[[nodiscard]] bool holdsFields(const RecordLayout& layout, const Bytes& data);
/// The fields of a record; nothing when the data is too short for them. Surplus data is left out.
[[nodiscard]] std::optional<Json> decodeFields(const RecordLayout& layout, const Bytes& data);
/// The data of a record. \throws JsonError naming the field that is missing, surplus or wrong.
[[nodiscard]] Bytes encodeFields(const RecordLayout& layout, const JsonPlace& fields);

} // namespace Zentara::Host
