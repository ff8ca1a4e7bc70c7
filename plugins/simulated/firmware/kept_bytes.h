#pragma once

#include <cstddef>
#include <fstream>
#include <string>

#include "plugins/simulated/firmware/firmware.h"

namespace Zentara::Simulated {

/// A flash memory, in a file if it is to outlive the camera: each byte written goes there at once.
/// *Separate*.
class KeptBytes {
public:
    /// \param file     UTF-8; empty for none. Takes its bytes from the file, or makes the file when there is
    /// none.
    /// \param initial  the bytes without a file; their number is that of the memory.
    /// \throws Plugin::ConfigurationPluginException when the file can be neither read nor made.
    KeptBytes(const std::string& file, Bytes initial);

    [[nodiscard]] const Bytes& bytes() const noexcept { return memory; }
    /// \throws Plugin::IOPluginException when the file cannot be written; the memory has changed then.
    void write(std::size_t address, std::uint8_t value);

private:
    std::string path;
    Bytes memory;
    std::fstream file;
};

} // namespace Zentara::Simulated
