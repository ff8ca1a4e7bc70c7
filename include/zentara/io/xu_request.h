#pragma once

#include <cstdint>

#include <zentara/export.h>
#include <zentara/utils/refcounted.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara::IO {

/// The kind of an extension-unit request. The numbers are fixed: chips and system states select by them.
enum XURequestType : std::int32_t {
    XU_UVC_COMMAND = 1, ///< a raw chip command; the others are named after their classes
    XU_SET_FLOAT_PARAMETER = 26,
    XU_SET_BOOL_PARAMETER = 28,
    XU_SET_INT_PARAMETER = 30,
    XU_SET_I2C_REGISTER = 32,
    XU_GET_I2C_REGISTER = 33,
    XU_SET_GPIO_STATE = 34,
    XU_GET_GPIO_STATE = 35,
    XU_SET_REGION_OF_INTEREST = 36,
    XU_SET_HARDWARE_VERSION = 37,
    XU_SET_SYSTEM_CALIBRATION = 38,
    XU_SET_SYSTEM_STATE = 39,
    XU_GET_I2C_ARRAY = 40,
    XU_SET_I2C_ARRAY = 41,
};

/// One thing to be done to a camera through its extension unit: a command object without bytes of its own,
/// which the chip of the camera turns into transfers. Configurations and descriptor stores keep lists of
/// them.
///
/// "set" kinds own their data. "get" kinds are answered in place: the executor writes through a pointer to
/// the caller's variable, which must outlive the execution. Shared as `Utils::SmartPtr<xuRequest>`; it dies
/// with the last of them. Separate.
class ZENTARA_API xuRequest : public Utils::Refcounted {
public:
    /// A new request of the same concrete kind with the same fields; what the request owns is copied deep,
    /// what it points to is shared.
    [[nodiscard]] virtual Utils::SmartPtr<xuRequest> clone() const = 0;

    [[nodiscard]] XURequestType type() const { return requestType; }

protected:
    xuRequest();
    explicit xuRequest(XURequestType type);
    xuRequest(const xuRequest&);
    xuRequest& operator=(const xuRequest&) = delete;
    ~xuRequest() override;

private:
    XURequestType requestType{}; ///< 0 for one that has no kind yet
};

} // namespace Zentara::IO
