#pragma once

#include <cstdint>

#include <zentara/guid.h>
#include <zentara/io/device_request.h>

namespace Zentara::IO {

/// Sends `length` bytes to a control of an extension unit.
class ZENTARA_API xuSendRequest : public deviceRequest {
public:
    /// \param data the caller's; must live until the request is done
    xuSendRequest(AVDeviceInterface* device, std::uint32_t unit, std::int32_t control, std::uint32_t length,
                  const void* data);

    [[nodiscard]] std::uint32_t getUnit() const;
    [[nodiscard]] std::int32_t getControl() const;
    [[nodiscard]] std::uint32_t getLength() const;
    [[nodiscard]] const void* getData() const;

protected:
    xuSendRequest(AVDeviceInterface* device, RequestType type, std::uint32_t unit, std::int32_t control,
                  std::uint32_t length, const void* data);
    ~xuSendRequest() override;

private:
    std::uint32_t unit;   ///< the unit's number on the camera
    std::int32_t control; ///< the selector of the control in it
    std::uint32_t length; ///< bytes
    const void* data;     ///< not owned
};

/// A carrier for extension-unit traffic whose type the caller gives. A device takes it as what it is, a send of the
/// type `RequestType_XUSEND`; with any other type it fails as not supported, also with those of the other
/// operations on a unit, which need the places for their answers that their own classes have.
class ZENTARA_API xuProxyRequest : public xuSendRequest {
public:
    xuProxyRequest(AVDeviceInterface* device, RequestType type, std::uint32_t unit, std::int32_t control,
                   std::uint32_t length, const void* data);

protected:
    ~xuProxyRequest() override;
};

/// Receives `length` bytes from a control of an extension unit. The bytes that are there on entry may be part
/// of the question. The flag's meaning is the device's; it is handed on unchanged.
class ZENTARA_API xuRecvRequest : public deviceRequest {
public:
    /// \param data the caller's; must live until the request is done
    xuRecvRequest(AVDeviceInterface* device, std::uint32_t unit, std::int32_t control, std::uint32_t length,
                  void* data, bool flag);

    [[nodiscard]] std::uint32_t getUnit() const;
    [[nodiscard]] std::int32_t getControl() const;
    [[nodiscard]] std::uint32_t getLength() const;
    [[nodiscard]] void* getData() const;
    [[nodiscard]] bool getFlag() const;

protected:
    ~xuRecvRequest() override;

private:
    std::uint32_t unit;   ///< the unit's number on the camera
    std::int32_t control; ///< the selector of the control in it
    std::uint32_t length; ///< bytes
    void* data;           ///< not owned
    bool flag;
};

/// Asks how many bytes a control of an extension unit has.
class ZENTARA_API xuLenRequest : public deviceRequest {
public:
    /// \param result the caller's; must live until the request is done
    xuLenRequest(AVDeviceInterface* device, std::uint32_t unit, std::uint32_t control, std::int32_t* result);

    [[nodiscard]] std::uint32_t getUnit() const;
    [[nodiscard]] std::uint32_t getControl() const;

    /// Where the device puts its answer.
    [[nodiscard]] std::int32_t* getResult() const;

protected:
    ~xuLenRequest() override;

private:
    std::uint32_t unit;
    std::uint32_t control;
    std::int32_t* result; ///< not owned; bytes
};

/// Tells the device which extension unit is meant from now on.
class ZENTARA_API xuSetupRequest : public deviceRequest {
public:
    /// \param guid not copied; must live until the request is done
    xuSetupRequest(AVDeviceInterface* device, const GUID& guid);

    [[nodiscard]] const GUID& getGUID() const;

protected:
    ~xuSetupRequest() override;

private:
    const GUID& guid; ///< not owned
};

} // namespace Zentara::IO
