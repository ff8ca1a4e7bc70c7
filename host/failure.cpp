#include <zentara/host/failure.h>

#include <utility>

namespace Zentara::Host {

Failure::Failure(Code code, std::string message, std::string cause, std::string remedy,
                 std::vector<std::string> details)
    : std::runtime_error(message + (cause.empty() ? "" : ": " + cause)), kind(code),
      attempt(std::move(message)), reason(std::move(cause)), help(std::move(remedy)),
      more(std::move(details)) {}

Failure::Failure(const Failure&) = default;
Failure& Failure::operator=(const Failure&) = default;
Failure::~Failure() = default;

Unsupported::Unsupported(std::string message, std::string cause)
    : Failure(Failed, std::move(message), std::move(cause)) {}
Unsupported::Unsupported(const Unsupported&) = default;
Unsupported& Unsupported::operator=(const Unsupported&) = default;
Unsupported::~Unsupported() = default;

} // namespace Zentara::Host
