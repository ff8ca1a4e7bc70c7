#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>

namespace Zentara::ROM {

/// The raw flash under the storage: two transfers, by absolute address. Each camera's plug-in implements it
/// over the chip's flash access. Separate; must outlive the manager built on it.
class ZENTARA_API Accessor {
public:
    virtual ~Accessor();

    /// Reads exactly `length` bytes at `address`. A shorter or longer answer counts as unreadable data, and
    /// after a write as a failed write. May throw; the exception passes through the layers above.
    /// \param address of the flash, in bytes \param length bytes; may be 0
    virtual std::vector<std::uint8_t> read(std::uint32_t address, std::uint32_t length) = 0;

    /// Writes all bytes at `address`. They must be readable when this returns: every write is read back at
    /// once and compared. May throw; the exception passes through the layers above.
    virtual void write(std::uint32_t address, const std::vector<std::uint8_t>& bytes) = 0;
};

} // namespace Zentara::ROM
