#pragma once

#include <cstdint>

#include <zentara/io/device_request.h>

namespace Zentara::IO {

/// A control transfer from the device: request code, value and index are those of the USB setup packet, in the
/// machine's byte order.
class ZENTARA_API readControlTransferRequest : public deviceRequest {
public:
    /// \param buffer the caller's, of `length` bytes; must live until the request is done
    readControlTransferRequest(AVDeviceInterface* device, std::uint8_t requestCode, std::uint16_t value,
                               std::uint16_t index, std::uint8_t* buffer, std::uint16_t length);

    [[nodiscard]] std::uint8_t getRequestCode() const;
    [[nodiscard]] std::uint16_t getValue() const;
    [[nodiscard]] std::uint16_t getIndex() const;
    [[nodiscard]] std::uint8_t* getBuffer() const;
    [[nodiscard]] std::uint16_t getLength() const;

protected:
    ~readControlTransferRequest() override;

private:
    std::uint8_t requestCode;
    std::uint16_t value;
    std::uint16_t index;
    std::uint8_t* buffer; ///< not owned
    std::uint16_t length; ///< bytes of it
};

/// A control transfer to the device, with the same arguments.
class ZENTARA_API writeControlTransferRequest : public deviceRequest {
public:
    /// \param buffer the caller's, of `length` bytes; must live until the request is done
    writeControlTransferRequest(AVDeviceInterface* device, std::uint8_t requestCode, std::uint16_t value,
                                std::uint16_t index, const std::uint8_t* buffer, std::uint16_t length);

    [[nodiscard]] std::uint8_t getRequestCode() const;
    [[nodiscard]] std::uint16_t getValue() const;
    [[nodiscard]] std::uint16_t getIndex() const;
    [[nodiscard]] const std::uint8_t* getBuffer() const;
    [[nodiscard]] std::uint16_t getLength() const;

protected:
    ~writeControlTransferRequest() override;

private:
    std::uint8_t requestCode;
    std::uint16_t value;
    std::uint16_t index;
    const std::uint8_t* buffer; ///< not owned
    std::uint16_t length;       ///< bytes of it
};

/// A bulk transfer to one of the device's endpoints.
class ZENTARA_API writeBulkTransferRequest : public deviceRequest {
public:
    /// \param data the caller's, of `length` bytes; must live until the request is done
    writeBulkTransferRequest(AVDeviceInterface* device, std::uint8_t endpoint, const std::uint8_t* data,
                             std::int32_t length);

    [[nodiscard]] std::uint8_t getEndpoint() const;
    [[nodiscard]] const std::uint8_t* getData() const;
    [[nodiscard]] std::int32_t getLength() const;

protected:
    ~writeBulkTransferRequest() override;

private:
    std::uint8_t endpoint;
    const std::uint8_t* data; ///< not owned
    std::int32_t length;      ///< bytes of it
};

} // namespace Zentara::IO
