#pragma once

#include <cstdint>

namespace Zentara {

/// The status of a call of a parameter back-end, and of encoding a parameter range. Any 32-bit value may come
/// back from a back-end; all but 0 are failures, and only -5 and -6 are told apart.
enum ErrorCode : std::int32_t {
    ErrorCode_SUCCESS = 0,
    ErrorCode_FAILED = -1,
    ErrorCode_INVALID_STATE = -2,
    ErrorCode_NOT_SUPPORTED = -3,
    ErrorCode_IO = -4,
    ErrorCode_OUT_OF_RANGE = -5,     ///< the value lies outside the parameter's range
    ErrorCode_BUFFER_TOO_SMALL = -6, ///< the size needed was returned instead
};

} // namespace Zentara
