#include <zentara/io/xu_device_requests.h>

namespace Zentara::IO {

xuSendRequest::xuSendRequest(AVDeviceInterface* device, std::uint32_t unitNumber, std::int32_t controlNumber,
                             std::uint32_t byteCount, const void* bytes)
    : xuSendRequest(device, RequestType_XUSEND, unitNumber, controlNumber, byteCount, bytes) {}
xuSendRequest::xuSendRequest(AVDeviceInterface* device, RequestType type, std::uint32_t unitNumber,
                             std::int32_t controlNumber, std::uint32_t byteCount, const void* bytes)
    : deviceRequest(device, type), unit(unitNumber), control(controlNumber), length(byteCount), data(bytes) {}
xuSendRequest::~xuSendRequest() = default;

std::uint32_t xuSendRequest::getUnit() const { return unit; }
std::int32_t xuSendRequest::getControl() const { return control; }
std::uint32_t xuSendRequest::getLength() const { return length; }
const void* xuSendRequest::getData() const { return data; }

xuProxyRequest::xuProxyRequest(AVDeviceInterface* device, RequestType type, std::uint32_t unitNumber,
                               std::int32_t controlNumber, std::uint32_t byteCount, const void* bytes)
    : xuSendRequest(device, type, unitNumber, controlNumber, byteCount, bytes) {}
xuProxyRequest::~xuProxyRequest() = default;

xuRecvRequest::xuRecvRequest(AVDeviceInterface* device, std::uint32_t unitNumber, std::int32_t controlNumber,
                             std::uint32_t byteCount, void* bytes, bool deviceFlag)
    : deviceRequest(device, RequestType_XURECV), unit(unitNumber), control(controlNumber), length(byteCount),
      data(bytes), flag(deviceFlag) {}
xuRecvRequest::~xuRecvRequest() = default;

std::uint32_t xuRecvRequest::getUnit() const { return unit; }
std::int32_t xuRecvRequest::getControl() const { return control; }
std::uint32_t xuRecvRequest::getLength() const { return length; }
void* xuRecvRequest::getData() const { return data; }
bool xuRecvRequest::getFlag() const { return flag; }

xuLenRequest::xuLenRequest(AVDeviceInterface* device, std::uint32_t unitNumber, std::uint32_t controlNumber,
                           std::int32_t* answer)
    : deviceRequest(device, RequestType_XULEN), unit(unitNumber), control(controlNumber), result(answer) {}
xuLenRequest::~xuLenRequest() = default;

std::uint32_t xuLenRequest::getUnit() const { return unit; }
std::uint32_t xuLenRequest::getControl() const { return control; }
std::int32_t* xuLenRequest::getResult() const { return result; }

xuSetupRequest::xuSetupRequest(AVDeviceInterface* device, const GUID& unitGuid)
    : deviceRequest(device, RequestType_XUSETUP), guid(unitGuid) {}
xuSetupRequest::~xuSetupRequest() = default;

const GUID& xuSetupRequest::getGUID() const { return guid; }

} // namespace Zentara::IO
