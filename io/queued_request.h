#pragma once

#include <utility>

#include "io/request_husk.h"

namespace Zentara::IO {

/// Makes a request for the worker's queue, with one reference. When the worker's processRequest throws, that
/// reference is left behind for good, and with it the husk of the request: the worker may still come to it. This is
/// the one place where the library leaks, and the name by which leak checkers are told so.
template<typename Request, typename... Arguments>
[[nodiscard]] Request* createQueuedRequest(Arguments&&... arguments) {
    auto* const request = new Request(std::forward<Arguments>(arguments)...);
    RequestHusk::mark(*request);
    return request;
}

} // namespace Zentara::IO
