#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>

namespace Zentara::ROM {

/// One record: the unit of which the bytes of every data object consist.
///
///     offset  size  field
///     0       1     type marker
///     1       1     version
///     2       4     length of the whole record, little-endian unlike every other number of the storage
///     6       ...   data
///
/// A copyable value that owns its data. Separate.
class ZENTARA_API SerializedDataBlock {
public:
    static constexpr std::uint32_t MIN_SIZE = 1 + 1 + 4;

    SerializedDataBlock(std::uint8_t type, std::uint8_t version, const std::vector<std::uint8_t>& data);
    SerializedDataBlock(const SerializedDataBlock& other);
    SerializedDataBlock& operator=(const SerializedDataBlock& other);
    virtual ~SerializedDataBlock();

    /// Lent as long as this object lives and is not assigned to.
    virtual const std::vector<std::uint8_t>& getSerializedData() const;
    virtual std::uint8_t getType() const;
    virtual std::uint8_t getVersion() const;
    /// Data size plus the six bytes before it.
    virtual std::uint32_t getLength() const;

    /// The whole record: the six bytes, then the data.
    std::vector<std::uint8_t> serialize() const;

protected:
    /// Reads one record from the start of the bytes: a new one owned by the caller, or null if there are
    /// fewer than six bytes or the stored length is below six or more than there are.
    static SerializedDataBlock* deserialize(const std::vector<std::uint8_t>& bytes);

private:
    std::uint8_t type;
    std::uint8_t version;
    std::vector<std::uint8_t> data;
};

} // namespace Zentara::ROM
