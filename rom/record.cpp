#include "rom/record.h"

#include <algorithm>
#include <string>

#include <zentara/rom/serialized_data_block.h>
#include <zentara/utils/format.h>

#include "utils/log_warning.h"

namespace Zentara::ROM {

namespace {

/// The one number of the storage that is stored with its low byte first; existing cameras carry it so.
std::uint32_t readRecordLength(BigEndianReader& in) {
    std::uint32_t length = 0;
    for (unsigned shift = 0; shift < 32; shift += 8)
        length |= static_cast<std::uint32_t>(in.readU8()) << shift;
    return length;
}

void readRecord(const RecordView& record, std::span<const std::uint8_t> bytes,
                std::initializer_list<RecordRule> rules) {
    const auto rule = std::find_if(rules.begin(), rules.end(), [&](const RecordRule& candidate) {
        return static_cast<std::uint8_t>(candidate.marker) == record.type;
    });
    if (rule == rules.end())
        Utils::logWarning(Utils::LogArea_ROM,
                          Utils::Format("Failed to deserialize data for %") % static_cast<int>(record.type));
    else if (!rule->accept({bytes.begin(), bytes.end()}))
        Utils::logWarning(Utils::LogArea_ROM, Utils::Format("Failed to deserialized %") % rule->record);
}

} // namespace

std::optional<RecordView> viewRecord(std::span<const std::uint8_t> bytes) {
    BigEndianReader in(bytes);
    const std::uint8_t type = in.readU8();
    const std::uint8_t version = in.readU8();
    const std::uint32_t length = readRecordLength(in);
    if (!in.ok() || length < SerializedDataBlock::MIN_SIZE)
        return std::nullopt;
    const auto data = in.readBytes(length - SerializedDataBlock::MIN_SIZE);
    if (!in.ok())
        return std::nullopt;
    return RecordView{type, version, data};
}

BigEndianReader openRecord(std::span<const std::uint8_t> bytes, TypeMarker marker, std::uint8_t version) {
    const auto record = viewRecord(bytes);
    if (!record || record->type != static_cast<std::uint8_t>(marker) || record->version != version)
        return BigEndianReader::failed();
    return BigEndianReader(record->data);
}

std::vector<std::uint8_t> makeRecord(TypeMarker marker, std::uint8_t version,
                                     const std::vector<std::uint8_t>& data) {
    return SerializedDataBlock(static_cast<std::uint8_t>(marker), version, data).serialize();
}

void readRecords(std::span<const std::uint8_t> bytes, std::initializer_list<RecordRule> rules) {
    // What is no whole record ends the walk: where the next one would begin is not known then.
    while (const auto record = viewRecord(bytes)) {
        const std::size_t length = record->data.size() + SerializedDataBlock::MIN_SIZE;
        readRecord(*record, bytes.first(length), rules);
        bytes = bytes.subspan(length);
    }
}

} // namespace Zentara::ROM
