#pragma once

#include <string>
#include <vector>

#include <zentara/host/correction_tables.h>

#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

[[nodiscard]] Json correctionsJson(const std::vector<CorrectionSection>& corrections);
[[nodiscard]] std::string correctionText(const CorrectionSection& correction);

} // namespace Zentara::Tool
