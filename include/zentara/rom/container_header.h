#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>

namespace Zentara::ROM {

/// The four bytes in the first block of a container: version, minimum readout version and the CRC-16 of both. A reader
/// of version N may read what asks for a minimum readout version of N or less. A copyable value. Separate.
class ZENTARA_API ContainerHeader {
public:
    static constexpr std::uint32_t SIZE = 1 + 1 + 2;

    ContainerHeader(std::uint8_t version, std::uint8_t minReadoutVersion);
    ContainerHeader(const ContainerHeader& other);
    ContainerHeader& operator=(const ContainerHeader& other);
    virtual ~ContainerHeader();

    /// True when both bytes are equal.
    virtual bool operator==(const ContainerHeader& other) const;
    virtual std::uint8_t getVersion() const;
    virtual std::uint8_t getMinReadoutVersion() const;

    /// The four bytes, with a CRC made anew.
    std::vector<std::uint8_t> serialize() const;

    /// A new header owned by the caller; null for fewer than four bytes, a wrong CRC or version 0. Surplus
    /// bytes are ignored.
    static ContainerHeader* deserialize(const std::vector<std::uint8_t>& bytes);

private:
    std::uint8_t version;
    std::uint8_t minReadoutVersion;
};

} // namespace Zentara::ROM
