#include "utils/message.h"

#include <zentara/utils/format.h>

namespace Zentara::Utils {

std::string formatMessage(const char* format, const std::string& argument) {
    return Format(format) % argument;
}

std::string formatMessage(const char* format, const std::string& first, const std::string& second) {
    return Format(format) % first % second;
}

} // namespace Zentara::Utils
