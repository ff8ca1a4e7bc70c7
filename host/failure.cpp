#include <zentara/host/failure.h>

#include <utility>

namespace Zentara::Host {

Failure::Failure(Code code, std::string attempted, std::string cause, std::string remedy)
    : std::runtime_error("cannot " + attempted + ": " + cause + (remedy.empty() ? "" : "\n" + remedy)),
      kind(code), attempt(std::move(attempted)), reason(std::move(cause)), help(std::move(remedy)) {}

Failure::Failure(const Failure&) = default;
Failure& Failure::operator=(const Failure&) = default;
Failure::~Failure() = default;

} // namespace Zentara::Host
