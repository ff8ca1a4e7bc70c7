#pragma once

#include <vector>

#include "rom/big_endian_reader.h"
#include "rom/big_endian_writer.h"

namespace Zentara::ROM {

/// A count byte and that many floats. Where they are not all there, the reader fails and the list is empty.
std::vector<float> readCoefficients(BigEndianReader& in);

/// \throws ArgumentPluginException if they are more than a count byte can tell.
void writeCoefficients(BigEndianWriter& out, const std::vector<float>& values);

} // namespace Zentara::ROM
