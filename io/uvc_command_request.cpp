#include <zentara/io/uvc_command_request.h>

namespace Zentara::IO {

UVCCommandRequest::UVCCommandRequest() : UVCCommandRequest(UVC_USB_BACKEND_REGISTER, 0, 0) {}

UVCCommandRequest::UVCCommandRequest(UVCPrefix subCommand, unsigned int first, unsigned int second)
    : xuRequest(XU_UVC_COMMAND), prefix(subCommand), a(first), b(second) {}

UVCCommandRequest::UVCCommandRequest(const UVCCommandRequest&) = default;
UVCCommandRequest::~UVCCommandRequest() = default;

Utils::SmartPtr<xuRequest> UVCCommandRequest::clone() const {
    return Utils::makeRefcounted<UVCCommandRequest>(*this);
}

} // namespace Zentara::IO
