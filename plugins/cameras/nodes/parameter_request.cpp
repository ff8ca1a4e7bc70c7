#include "plugins/cameras/nodes/parameter_request.h"

#include <zentara/io/parameter_requests.h>

namespace Zentara::Cameras {
namespace {

/// Writes the value of a request of that kind.
template<typename Request>
bool writeValue(IO::ParameterInterpreter& parameters, const IO::xuRequest& request) {
    const auto* wanted = dynamic_cast<const Request*>(&request);
    if (wanted != nullptr)
        parameters.write(wanted->getParameter(), wanted->getValue());
    return wanted != nullptr;
}

} // namespace

bool writeParameter(IO::ParameterInterpreter& parameters, const IO::xuRequest& request) {
    if (writeValue<IO::setFloatParameterRequest>(parameters, request) ||
        writeValue<IO::setIntParameterRequest>(parameters, request) ||
        writeValue<IO::setBoolParameterRequest>(parameters, request))
        return true;
    if (const auto* region = dynamic_cast<const IO::setRegionOfInterestRequest*>(&request)) {
        parameters.setRegionOfInterest(region->getRegion());
        return true;
    }
    if (const auto* state = dynamic_cast<const IO::setSystemStateRequest*>(&request)) {
        parameters.write(state->getState());
        return true;
    }
    return false;
}

} // namespace Zentara::Cameras
