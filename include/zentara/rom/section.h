#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/container_section_type.h>

namespace Zentara::ROM {

/// One numbered section of a container.
///
///     offset      size  field, big-endian
///     0           1     marker 0xA5
///     1           4     length of the whole section: data size + 13
///     5           1     section type
///     6           1     flags; bit 0 set: writable, clear: read-only
///     7           2     uid
///     9           2     CRC-16 of bytes 0 to 8
///     11          ...   data
///     length - 2  2     CRC-16 of the data
///
/// A copyable value that owns its data. Separate.
class ZENTARA_API Section {
public:
    static constexpr std::uint32_t HEADER_SIZE = 1 + 4 + 1 + 1 + 2;
    static constexpr std::uint32_t MIN_SIZE = HEADER_SIZE + 2 + 2;
    static constexpr std::uint8_t SECTION_MARKER = 0xA5;
    /// The flag bit that allows a section to be replaced and erased.
    static constexpr std::uint8_t FLAG_WRITABLE = 0x01;

    Section(ContainerSectionType type, std::uint16_t uid, std::uint8_t flags,
            const std::vector<std::uint8_t>& data);
    Section(const Section& other);
    Section& operator=(const Section& other);
    virtual ~Section();

    virtual ContainerSectionType getSectionType() const;
    virtual std::uint16_t getUID() const;
    virtual std::uint8_t getFlags() const;
    /// The data alone. Lent as long as this object lives and is not assigned to.
    virtual const std::vector<std::uint8_t>& getSerializedData() const;
    virtual void setFlags(std::uint8_t flags);

    /// All its bytes, with both CRCs made anew.
    std::vector<std::uint8_t> serialize() const;

    /// A new section owned by the caller; null if the marker, a CRC or the length is wrong: below 13 or more
    /// than there are bytes. Surplus bytes are ignored, and any type and uid are taken.
    static Section* deserialize(const std::vector<std::uint8_t>& bytes);

private:
    ContainerSectionType type;
    std::uint16_t uid;
    std::uint8_t flags;
    std::vector<std::uint8_t> data;
};

} // namespace Zentara::ROM
