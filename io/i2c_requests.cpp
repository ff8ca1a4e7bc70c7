#include <zentara/io/i2c_requests.h>

#include <utility>

namespace Zentara::IO {

setI2CRegisterRequest::setI2CRegisterRequest() : setI2CRegisterRequest(0, 0, 0, 0, 0) {}

setI2CRegisterRequest::setI2CRegisterRequest(unsigned int device, unsigned int registerNumber,
                                             unsigned int registerValue, unsigned int addressBytes,
                                             unsigned int dataBytes)
    : xuRequest(XU_SET_I2C_REGISTER), deviceAddress(device), registerAddress(registerNumber),
      value(registerValue), addressWidth(addressBytes), dataWidth(dataBytes) {}

setI2CRegisterRequest::setI2CRegisterRequest(const setI2CRegisterRequest&) = default;
setI2CRegisterRequest::~setI2CRegisterRequest() = default;

Utils::SmartPtr<xuRequest> setI2CRegisterRequest::clone() const {
    return Utils::makeRefcounted<setI2CRegisterRequest>(*this);
}

getI2CRegisterRequest::getI2CRegisterRequest() : getI2CRegisterRequest(0, 0, nullptr, 0, 0) {}

getI2CRegisterRequest::getI2CRegisterRequest(unsigned int device, unsigned int registerNumber,
                                             unsigned int* registerValue, unsigned int addressBytes,
                                             unsigned int dataBytes)
    : xuRequest(XU_GET_I2C_REGISTER), deviceAddress(device), registerAddress(registerNumber),
      value(registerValue), addressWidth(addressBytes), dataWidth(dataBytes) {}

getI2CRegisterRequest::getI2CRegisterRequest(const getI2CRegisterRequest&) = default;
getI2CRegisterRequest::~getI2CRegisterRequest() = default;

Utils::SmartPtr<xuRequest> getI2CRegisterRequest::clone() const {
    return Utils::makeRefcounted<getI2CRegisterRequest>(*this);
}

getI2CArrayRequest::getI2CArrayRequest() : xuRequest(XU_GET_I2C_ARRAY) {}

getI2CArrayRequest::getI2CArrayRequest(unsigned int device, std::vector<unsigned char>& result)
    : xuRequest(XU_GET_I2C_ARRAY), address(device), data(&result) {}

getI2CArrayRequest::getI2CArrayRequest(const getI2CArrayRequest&) = default;
getI2CArrayRequest::~getI2CArrayRequest() = default;

Utils::SmartPtr<xuRequest> getI2CArrayRequest::clone() const {
    return Utils::makeRefcounted<getI2CArrayRequest>(*this);
}

setI2CArrayRequest::setI2CArrayRequest() : setI2CArrayRequest(0, {}) {}

setI2CArrayRequest::setI2CArrayRequest(unsigned int device, std::vector<unsigned char> bytes)
    : xuRequest(XU_SET_I2C_ARRAY), address(device), data(std::move(bytes)) {}

setI2CArrayRequest::setI2CArrayRequest(const setI2CArrayRequest&) = default;
setI2CArrayRequest::~setI2CArrayRequest() = default;

Utils::SmartPtr<xuRequest> setI2CArrayRequest::clone() const {
    return Utils::makeRefcounted<setI2CArrayRequest>(*this);
}

} // namespace Zentara::IO
