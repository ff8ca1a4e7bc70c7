#pragma once

#include <string>
#include <vector>

#include <zentara/io/parameter_requests.h>

namespace Zentara::IO {

/// Makes the bytes of a system state: an entry for each float, integer, boolean and region request, in the map's order.
/// \return why there are none; empty on success
[[nodiscard]] std::string marshalSystemState(const ParameterRequestMap& state,
                                             std::vector<unsigned char>& bytes);

/// Stores the bytes in the requests of the map. They are checked as a whole first.
/// \return why they are refused, with the map unchanged; empty on success
[[nodiscard]] std::string unmarshalSystemState(const std::vector<unsigned char>& bytes,
                                               ParameterRequestMap& state);

} // namespace Zentara::IO
