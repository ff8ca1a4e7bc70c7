#pragma once

#include <zentara/io/xu_request.h>

namespace Zentara::IO {

/// The sub-command of a raw chip command. Each chip gives it its own meaning and ignores what it does not
/// know; what is said here is what it usually means.
enum UVCPrefix : std::int32_t {
    UVC_USB_BACKEND_REGISTER = 0, ///< write b to register a of the bridge
    UVC_TOF_CONTROLLER_REGISTER =
        1,                 ///< write b to register a of the time-of-flight controller; from 1000 a meta code
    UVC_CONFIGURE_DAC = 2, ///< set the digital-to-analogue converter to b
    UVC_ADC_VALUE = 3,     ///< set the analogue-to-digital converter: its value to b, its control to a
    UVC_SET_STROBE = 4,    ///< set bits b in strobe register a
    UVC_RESET_STROBE = 5,  ///< clear bits b in strobe register a
    UVC_RESET_FPGA = 6,    ///< wait until the FPGA is out of reset
    UVC_SYNC_FPGA = 7,     ///< wait until the FPGA says that it is in step
};

/// A raw chip command: most often "write b to register a". Separate.
class ZENTARA_API UVCCommandRequest : public xuRequest {
public:
    /// Prefix 0 and both arguments 0.
    UVCCommandRequest();
    UVCCommandRequest(UVCPrefix prefix, unsigned int a, unsigned int b);
    UVCCommandRequest(const UVCCommandRequest&);

    [[nodiscard]] Utils::SmartPtr<xuRequest> clone() const override;

    [[nodiscard]] UVCPrefix getPrefix() const { return prefix; }
    [[nodiscard]] std::uint32_t getA() const { return a; }
    [[nodiscard]] std::uint32_t getB() const { return b; }

protected:
    ~UVCCommandRequest() override;

private:
    UVCPrefix prefix = UVC_USB_BACKEND_REGISTER;
    std::uint32_t a = 0;
    std::uint32_t b = 0;
};

} // namespace Zentara::IO
