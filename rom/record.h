#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include <zentara/rom/type_marker.h>

#include "rom/big_endian_reader.h"

namespace Zentara::ROM {

/// A record in place: its fields, and its data as a view of the bytes that it was read from.
struct RecordView {
    std::uint8_t type;
    std::uint8_t version;
    std::span<const std::uint8_t> data;
};

/// The record at the start of the bytes; none if they hold no whole one.
std::optional<RecordView> viewRecord(std::span<const std::uint8_t> bytes);

/// A reader of the data of a record with this marker and version; one that has failed for any other bytes.
BigEndianReader openRecord(std::span<const std::uint8_t> bytes, TypeMarker marker, std::uint8_t version);

/// The complete bytes of a record.
std::vector<std::uint8_t> makeRecord(TypeMarker marker, std::uint8_t version,
                                     const std::vector<std::uint8_t>& data);

/// What a data object does with one kind of record.
struct RecordRule {
    TypeMarker marker;
    const char* record; ///< class name, for the warning
    /// Takes the record's complete bytes; false if they do not parse.
    std::function<bool(const std::vector<std::uint8_t>&)> accept;
};

/// Walks the records of a data object and hands each to its rule. One that does not parse or has no rule is
/// skipped with a warning; the walk stops at the first bytes that are no whole record.
void readRecords(std::span<const std::uint8_t> bytes, std::initializer_list<RecordRule> rules);

/// For a rule: keeps the record just read, which replaces the one before.
template<class Record>
bool keep(Record& place, Record* read) {
    const std::unique_ptr<Record> owned(read);
    if (owned)
        place = *owned;
    return owned != nullptr;
}

/// For a rule: adds the record just read to a list.
template<class Record>
bool add(std::vector<Record>& list, Record* read) {
    const std::unique_ptr<Record> owned(read);
    if (owned)
        list.push_back(*owned);
    return owned != nullptr;
}

inline void append(std::vector<std::uint8_t>& bytes, const std::vector<std::uint8_t>& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

} // namespace Zentara::ROM
