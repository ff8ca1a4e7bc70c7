#include <zentara/rom/serialized_data_block.h>

#include <new>

#include "rom/record.h"

namespace Zentara::ROM {

SerializedDataBlock::SerializedDataBlock(std::uint8_t marker, std::uint8_t formatVersion,
                                         const std::vector<std::uint8_t>& payload)
    : type(marker), version(formatVersion), data(payload) {}
SerializedDataBlock::SerializedDataBlock(const SerializedDataBlock& other) = default;
SerializedDataBlock& SerializedDataBlock::operator=(const SerializedDataBlock& other) = default;
SerializedDataBlock::~SerializedDataBlock() = default;

const std::vector<std::uint8_t>& SerializedDataBlock::getSerializedData() const { return data; }
std::uint8_t SerializedDataBlock::getType() const { return type; }
std::uint8_t SerializedDataBlock::getVersion() const { return version; }
std::uint32_t SerializedDataBlock::getLength() const {
    return static_cast<std::uint32_t>(data.size()) + MIN_SIZE;
}

std::vector<std::uint8_t> SerializedDataBlock::serialize() const {
    const std::uint32_t length = getLength();
    std::vector<std::uint8_t> bytes;
    bytes.reserve(length);
    bytes.push_back(type);
    bytes.push_back(version);
    // Low byte first, unlike every other number of the storage.
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<std::uint8_t>(length >> shift));
    append(bytes, data);
    return bytes;
}

// For lack of memory null as well: readers of stored bytes throw nothing.
SerializedDataBlock* SerializedDataBlock::deserialize(const std::vector<std::uint8_t>& bytes) try {
    const auto record = viewRecord(bytes);
    if (!record)
        return nullptr;
    return new SerializedDataBlock(record->type, record->version, {record->data.begin(), record->data.end()});
} catch (const std::bad_alloc&) {
    return nullptr;
}

} // namespace Zentara::ROM
