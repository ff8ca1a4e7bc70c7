#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>

namespace Zentara::ROM {

/// The 17 bytes at one end of a storage area that say how it is managed.
///
///     offset  size  field, big-endian
///     0       1     strategy, always 1
///     1       1     version
///     2       1     minimum readout version
///     3       4     available memory size: bytes of the area, this header included
///     7       4     chunk size: bytes of the allocation granule
///     11      4     first block address: absolute, 0 for no blocks
///     15      2     CRC-16 of bytes 0 to 14
///
/// A copyable value. Separate.
class ZENTARA_API ChunkedMemoryManagementHeader {
public:
    static constexpr std::uint32_t SIZE = 1 + 1 + 1 + 4 + 4 + 4 + 2;
    static constexpr std::uint8_t STRATEGY = 1;

    /// The chunk size comes before the available size here, the other way round than on flash. Nothing is checked: who
    /// loads an area judges its header.
    ChunkedMemoryManagementHeader(std::uint8_t version, std::uint8_t minReadoutVersion,
                                  std::uint32_t chunkSize, std::uint32_t availableMemorySize,
                                  std::uint32_t firstBlockAddress);
    ChunkedMemoryManagementHeader(const ChunkedMemoryManagementHeader& other);
    ChunkedMemoryManagementHeader& operator=(const ChunkedMemoryManagementHeader& other);
    virtual ~ChunkedMemoryManagementHeader();

    virtual std::uint8_t getVersion() const;
    virtual std::uint8_t getMinReadoutVersion() const;
    virtual std::uint32_t getAvailableMemorySize() const; ///< bytes, header included
    virtual std::uint32_t getChunkSize() const;           ///< bytes
    virtual std::uint32_t getFirstBlockAddress() const;   ///< absolute; 0: no blocks

    /// The 17 bytes, with a CRC made anew.
    std::vector<std::uint8_t> serialize() const;

    /// A new header owned by the caller; null for fewer than 17 bytes, another strategy or a wrong CRC.
    /// Surplus bytes are ignored.
    static ChunkedMemoryManagementHeader* deserialize(const std::vector<std::uint8_t>& bytes);

private:
    std::uint8_t version;
    std::uint8_t minReadoutVersion;
    std::uint32_t chunkSize;           ///< bytes
    std::uint32_t availableMemorySize; ///< bytes, header included
    std::uint32_t firstBlockAddress;   ///< absolute; 0: no blocks
};

} // namespace Zentara::ROM
