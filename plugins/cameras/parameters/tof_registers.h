#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

#include <zentara/io/parameter_back_end.h>

namespace Zentara::Cameras {

/// Why the back-end could not do what it was asked, for its last-error text. Caught before it leaves the library.
class Failure : public std::runtime_error {
public:
    Failure(ErrorCode errorCode, const std::string& reason) : std::runtime_error(reason), code(errorCode) {}

    const ErrorCode code;
};

/// The way to the camera that the interpreter hands over.
struct TransferPair {
    void* context;
    IO::BackEnd::Transfer* set;
    IO::BackEnd::Transfer* get;
};

/// The 16-bit registers of a camera's time-of-flight controller, behind whichever bridge the camera has.
class TofRegisters {
public:
    virtual ~TofRegisters() = default;
    TofRegisters(const TofRegisters&) = delete;
    TofRegisters& operator=(const TofRegisters&) = delete;

    /// \param address 0 to 127
    /// \throws Failure if the transfer fails
    [[nodiscard]] virtual std::uint16_t read(std::uint8_t address) = 0;
    virtual void write(std::uint8_t address, std::uint16_t value) = 0;

protected:
    TofRegisters() = default;
};

/// Those behind the bridge that the list of the camera's modules names. Nothing is tried out.
/// \throws Failure if it names none, the camera does not answer, or its registers have another width
[[nodiscard]] std::unique_ptr<TofRegisters> findTofRegisters(const TransferPair& transfers,
                                                             const HardwareVersionInternal& version);

} // namespace Zentara::Cameras
