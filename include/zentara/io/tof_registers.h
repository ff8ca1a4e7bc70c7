#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <zentara/export.h>
#include <zentara/hardware_version_internal.h>
#include <zentara/io/parameter_back_end.h>

namespace Zentara::IO {

/// What a parameter back-end is handed as its way to the camera. Belongs to the interpreter, and holds until the
/// back-end's Dispose. A copyable value. Separate.
struct BackEndWay {
    void* context;          ///< goes back unchanged into both
    BackEnd::Transfer* set; ///< sends bytes
    BackEnd::Transfer* get; ///< asks for bytes
};

/// The registers of a camera's time-of-flight controller, as a parameter back-end reaches them, whichever controller the
/// camera has. Other users of the camera are not disturbed: what their chips remember of a bridge's settings stays true.
/// Operations throw `IOPluginException` when a transfer fails, and block as the callbacks do. Separate.
class ZENTARA_API TofRegisters {
public:
    /// Those of the controller that is listed among the camera's modules. Nothing is tried out.
    /// \throws NotSupportedPluginException when none is listed, or its registers have not 16 bits
    [[nodiscard]] static std::unique_ptr<TofRegisters> find(const HardwareVersionInternal& modules,
                                                            const BackEndWay& way);

    virtual ~TofRegisters();
    TofRegisters(const TofRegisters&) = delete;
    TofRegisters& operator=(const TofRegisters&) = delete;

    /// What is in a register, 0 to 127, and what is to be.
    [[nodiscard]] virtual std::uint16_t read(std::uint8_t address) = 0;
    virtual void write(std::uint8_t address, std::uint16_t value) = 0;

    /// Bytes of the memory in which the camera's storage lies: what `CameraChip::readConfiguration` reads.
    [[nodiscard]] virtual std::vector<unsigned char> readConfiguration(unsigned start, unsigned length) = 0;

protected:
    TofRegisters() = default;
};

} // namespace Zentara::IO
