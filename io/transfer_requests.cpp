#include <zentara/io/transfer_requests.h>

namespace Zentara::IO {

readControlTransferRequest::readControlTransferRequest(AVDeviceInterface* device, std::uint8_t code,
                                                       std::uint16_t transferValue,
                                                       std::uint16_t transferIndex, std::uint8_t* bytes,
                                                       std::uint16_t byteCount)
    : deviceRequest(device, RequestType_ReadControlTransfer), requestCode(code), value(transferValue),
      index(transferIndex), buffer(bytes), length(byteCount) {}
readControlTransferRequest::~readControlTransferRequest() = default;

std::uint8_t readControlTransferRequest::getRequestCode() const { return requestCode; }
std::uint16_t readControlTransferRequest::getValue() const { return value; }
std::uint16_t readControlTransferRequest::getIndex() const { return index; }
std::uint8_t* readControlTransferRequest::getBuffer() const { return buffer; }
std::uint16_t readControlTransferRequest::getLength() const { return length; }

writeControlTransferRequest::writeControlTransferRequest(AVDeviceInterface* device, std::uint8_t code,
                                                         std::uint16_t transferValue,
                                                         std::uint16_t transferIndex,
                                                         const std::uint8_t* bytes, std::uint16_t byteCount)
    : deviceRequest(device, RequestType_WriteControlTransfer), requestCode(code), value(transferValue),
      index(transferIndex), buffer(bytes), length(byteCount) {}
writeControlTransferRequest::~writeControlTransferRequest() = default;

std::uint8_t writeControlTransferRequest::getRequestCode() const { return requestCode; }
std::uint16_t writeControlTransferRequest::getValue() const { return value; }
std::uint16_t writeControlTransferRequest::getIndex() const { return index; }
const std::uint8_t* writeControlTransferRequest::getBuffer() const { return buffer; }
std::uint16_t writeControlTransferRequest::getLength() const { return length; }

writeBulkTransferRequest::writeBulkTransferRequest(AVDeviceInterface* device, std::uint8_t pipe,
                                                   const std::uint8_t* bytes, std::int32_t byteCount)
    : deviceRequest(device, RequestType_WriteBulkTransfer), endpoint(pipe), data(bytes), length(byteCount) {}
writeBulkTransferRequest::~writeBulkTransferRequest() = default;

std::uint8_t writeBulkTransferRequest::getEndpoint() const { return endpoint; }
const std::uint8_t* writeBulkTransferRequest::getData() const { return data; }
std::int32_t writeBulkTransferRequest::getLength() const { return length; }

} // namespace Zentara::IO
