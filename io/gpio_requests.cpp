#include <zentara/io/gpio_requests.h>

namespace Zentara::IO {

getGPIOStateRequest::getGPIOStateRequest() : getGPIOStateRequest(0, nullptr) {}

getGPIOStateRequest::getGPIOStateRequest(unsigned int pin, bool* result)
    : xuRequest(XU_GET_GPIO_STATE), gpio(pin), state(result) {}

getGPIOStateRequest::getGPIOStateRequest(const getGPIOStateRequest&) = default;
getGPIOStateRequest::~getGPIOStateRequest() = default;

Utils::SmartPtr<xuRequest> getGPIOStateRequest::clone() const {
    return Utils::makeRefcounted<getGPIOStateRequest>(*this);
}

setGPIOStateRequest::setGPIOStateRequest() : setGPIOStateRequest(0, false) {}

setGPIOStateRequest::setGPIOStateRequest(unsigned int pin, bool level)
    : xuRequest(XU_SET_GPIO_STATE), gpio(pin), state(level) {}

setGPIOStateRequest::setGPIOStateRequest(const setGPIOStateRequest&) = default;
setGPIOStateRequest::~setGPIOStateRequest() = default;

Utils::SmartPtr<xuRequest> setGPIOStateRequest::clone() const {
    return Utils::makeRefcounted<setGPIOStateRequest>(*this);
}

} // namespace Zentara::IO
