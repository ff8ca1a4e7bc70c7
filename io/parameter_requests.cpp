#include <zentara/io/parameter_requests.h>

namespace Zentara::IO {

setParameterRequest::setParameterRequest() = default;

setParameterRequest::setParameterRequest(XURequestType type, ParameterType number)
    : xuRequest(type), parameter(number) {}

setParameterRequest::setParameterRequest(const setParameterRequest&) = default;
setParameterRequest::~setParameterRequest() = default;

Utils::SmartPtr<xuRequest> setParameterRequest::clone() const {
    return Utils::makeRefcounted<setParameterRequest>(*this);
}

setFloatParameterRequest::setFloatParameterRequest() : setFloatParameterRequest(ParameterType_NONE, 0) {}

setFloatParameterRequest::setFloatParameterRequest(ParameterType number, float initial)
    : setParameterRequest(XU_SET_FLOAT_PARAMETER, number), value(initial) {}

setFloatParameterRequest::setFloatParameterRequest(const setFloatParameterRequest&) = default;
setFloatParameterRequest::~setFloatParameterRequest() = default;

Utils::SmartPtr<xuRequest> setFloatParameterRequest::clone() const {
    return Utils::makeRefcounted<setFloatParameterRequest>(*this);
}

setBoolParameterRequest::setBoolParameterRequest() : setBoolParameterRequest(ParameterType_NONE, false) {}

setBoolParameterRequest::setBoolParameterRequest(ParameterType number, bool initial)
    : setParameterRequest(XU_SET_BOOL_PARAMETER, number), value(initial) {}

setBoolParameterRequest::setBoolParameterRequest(const setBoolParameterRequest&) = default;
setBoolParameterRequest::~setBoolParameterRequest() = default;

Utils::SmartPtr<xuRequest> setBoolParameterRequest::clone() const {
    return Utils::makeRefcounted<setBoolParameterRequest>(*this);
}

setIntParameterRequest::setIntParameterRequest() : setIntParameterRequest(ParameterType_NONE, 0) {}

setIntParameterRequest::setIntParameterRequest(ParameterType number, int initial)
    : setParameterRequest(XU_SET_INT_PARAMETER, number), value(initial) {}

setIntParameterRequest::setIntParameterRequest(const setIntParameterRequest&) = default;
setIntParameterRequest::~setIntParameterRequest() = default;

Utils::SmartPtr<xuRequest> setIntParameterRequest::clone() const {
    return Utils::makeRefcounted<setIntParameterRequest>(*this);
}

setRegionOfInterestRequest::setRegionOfInterestRequest()
    : setRegionOfInterestRequest(RegionOfInterestInternal()) {}

setRegionOfInterestRequest::setRegionOfInterestRequest(const RegionOfInterestInternal& initial)
    : setParameterRequest(XU_SET_REGION_OF_INTEREST, ParameterType_REGION_OF_INTEREST), region(initial) {}

setRegionOfInterestRequest::setRegionOfInterestRequest(const setRegionOfInterestRequest&) = default;
setRegionOfInterestRequest::~setRegionOfInterestRequest() = default;

Utils::SmartPtr<xuRequest> setRegionOfInterestRequest::clone() const {
    return Utils::makeRefcounted<setRegionOfInterestRequest>(*this);
}

setSystemStateRequest::setSystemStateRequest() : setSystemStateRequest(ParameterRequestMap()) {}

setSystemStateRequest::setSystemStateRequest(const ParameterRequestMap& initial)
    : xuRequest(XU_SET_SYSTEM_STATE), state(initial) {}

setSystemStateRequest::setSystemStateRequest(const setSystemStateRequest&) = default;
setSystemStateRequest::~setSystemStateRequest() = default;

Utils::SmartPtr<xuRequest> setSystemStateRequest::clone() const {
    auto copy = Utils::makeRefcounted<setSystemStateRequest>(*this);
    for (auto& entry : copy->state) {
        if (entry.second)
            entry.second = entry.second->clone();
    }
    return copy;
}

} // namespace Zentara::IO
