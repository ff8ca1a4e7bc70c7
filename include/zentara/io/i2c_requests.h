#pragma once

#include <vector>

#include <zentara/io/xu_request.h>

namespace Zentara::IO {

/// Writes one register of a device on the camera's I2C bus. Widths are in bytes; which ones there are, and what of a
/// wider number is cut or refused, each chip says. Separate.
class ZENTARA_API setI2CRegisterRequest : public xuRequest {
public:
    /// All 0.
    setI2CRegisterRequest();
    /// \param deviceAddress on the camera's bus, without the bit for the direction
    /// \param addressWidth bytes of the register's address \param dataWidth bytes of the value
    setI2CRegisterRequest(unsigned int deviceAddress, unsigned int registerAddress, unsigned int value,
                          unsigned int addressWidth, unsigned int dataWidth);
    setI2CRegisterRequest(const setI2CRegisterRequest&);

    [[nodiscard]] Utils::SmartPtr<xuRequest> clone() const override;

    [[nodiscard]] std::uint32_t getDeviceAddress() const { return deviceAddress; }
    [[nodiscard]] std::uint32_t getRegisterAddress() const { return registerAddress; }
    [[nodiscard]] std::uint32_t getValue() const { return value; }
    [[nodiscard]] std::uint32_t getAddressWidth() const { return addressWidth; }
    [[nodiscard]] std::uint32_t getDataWidth() const { return dataWidth; }

protected:
    ~setI2CRegisterRequest() override;

private:
    std::uint32_t deviceAddress = 0;
    std::uint32_t registerAddress = 0;
    std::uint32_t value = 0;
    std::uint32_t addressWidth = 0;
    std::uint32_t dataWidth = 0;
};

/// Reads one register of a device on the camera's I2C bus into the caller's variable, which must outlive the execution
/// and stays as it is when that fails. Widths are in bytes. Separate.
class ZENTARA_API getI2CRegisterRequest : public xuRequest {
public:
    /// All 0, and no variable: it is refused when it is executed.
    getI2CRegisterRequest();
    /// \param value the caller's; the arguments else as in the write
    getI2CRegisterRequest(unsigned int deviceAddress, unsigned int registerAddress, unsigned int* value,
                          unsigned int addressWidth, unsigned int dataWidth);
    getI2CRegisterRequest(const getI2CRegisterRequest&);

    [[nodiscard]] Utils::SmartPtr<xuRequest> clone() const override;

    [[nodiscard]] std::uint32_t getDeviceAddress() const { return deviceAddress; }
    [[nodiscard]] std::uint32_t getRegisterAddress() const { return registerAddress; }
    [[nodiscard]] unsigned int* getValue() const { return value; }
    [[nodiscard]] std::uint32_t getAddressWidth() const { return addressWidth; }
    [[nodiscard]] std::uint32_t getDataWidth() const { return dataWidth; }

protected:
    ~getI2CRegisterRequest() override;

private:
    std::uint32_t deviceAddress = 0;
    std::uint32_t registerAddress = 0;
    unsigned int* value = nullptr; ///< the caller's; shared by clones
    std::uint32_t addressWidth = 0;
    std::uint32_t dataWidth = 0;
};

/// Reads bytes of a device on the camera's I2C bus into the caller's vector: as many as it holds on entry, from the
/// registers from 0 up. The vector must outlive the execution. Separate.
class ZENTARA_API getI2CArrayRequest : public xuRequest {
public:
    /// No vector: it is refused when it is executed.
    getI2CArrayRequest();
    getI2CArrayRequest(unsigned int address, std::vector<unsigned char>& data);
    getI2CArrayRequest(const getI2CArrayRequest&);

    [[nodiscard]] Utils::SmartPtr<xuRequest> clone() const override;

    [[nodiscard]] std::uint32_t getAddress() const { return address; }
    /// Null for a request made without a vector.
    [[nodiscard]] std::vector<unsigned char>* getData() const { return data; }

protected:
    ~getI2CArrayRequest() override;

private:
    std::uint32_t address = 0;
    std::vector<unsigned char>* data = nullptr; ///< the caller's; shared by clones
};

/// Writes bytes to a device on the camera's I2C bus, to the registers from 0 up, one each. Separate.
class ZENTARA_API setI2CArrayRequest : public xuRequest {
public:
    /// Address 0, no bytes.
    setI2CArrayRequest();
    setI2CArrayRequest(unsigned int address, std::vector<unsigned char> data);
    setI2CArrayRequest(const setI2CArrayRequest&);

    [[nodiscard]] Utils::SmartPtr<xuRequest> clone() const override;

    [[nodiscard]] std::uint32_t getAddress() const { return address; }
    [[nodiscard]] std::vector<unsigned char>& getData() { return data; }
    [[nodiscard]] const std::vector<unsigned char>& getData() const { return data; }

protected:
    ~setI2CArrayRequest() override;

private:
    std::uint32_t address = 0;
    std::vector<unsigned char> data; ///< the request's own
};

} // namespace Zentara::IO
