#pragma once

#include <zentara/io/xu_request.h>

namespace Zentara::IO {

/// The sub-command of a raw chip command. Each chip gives it its own meaning and ignores what it does not
/// know.
enum UVCPrefix : std::int32_t {
    UVC_USB_BACKEND_REGISTER = 0,
    UVC_TOF_CONTROLLER_REGISTER = 1,
    UVC_CONFIGURE_DAC = 2,
    UVC_ADC_VALUE = 3,
    UVC_SET_STROBE = 4,
    UVC_RESET_STROBE = 5,
    UVC_RESET_FPGA = 6,
    UVC_SYNC_FPGA = 7,
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
