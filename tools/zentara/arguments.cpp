#include "tools/zentara/arguments.h"

#include <cstdint>
#include <string>

#include <zentara/utils/format.h>

namespace Zentara::Tool {

CLI::Validator secondsBetween(double least, double most) {
    return {[least, most](const std::string& text) -> std::string {
                double value = 0;
                if (CLI::detail::lexical_cast(text, value) && value >= least && value <= most)
                    return {};
                return Utils::Format("'%' is no number of seconds from % to %") % text % least % most;
            },
            ""};
}

CLI::Validator anyName(const char* what) {
    return {[what](const std::string& text) {
                return text.empty() ? std::string("the name of the ") + what + " is empty" : std::string();
            },
            ""};
}

CLI::Range any32Bits() { return {std::uint32_t{0}, std::uint32_t{0xFFFFFFFF}}; }

} // namespace Zentara::Tool
