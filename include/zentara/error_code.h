#pragma once

#include <cstdint>

namespace Zentara {

/// The status of a call of a parameter back-end, and of encoding a parameter range. Any 32-bit value may come
/// back from a back-end; all but 0 are failures, and only -5 and -6 are told apart.
enum ErrorCode : std::int32_t {
    ErrorCode_SUCCESS = 0,
    ErrorCode_FAILED = -1,           ///< none of the others
    ErrorCode_INVALID_STATE = -2,    ///< not now: not initialised, for one
    ErrorCode_NOT_SUPPORTED = -3,    ///< never: the camera has no such parameter, or it cannot do that
    ErrorCode_IO = -4,               ///< a transfer to or from the camera failed
    ErrorCode_OUT_OF_RANGE = -5,     ///< the value lies outside the parameter's range
    ErrorCode_BUFFER_TOO_SMALL = -6, ///< the size needed was returned instead
};

} // namespace Zentara
