#include <zentara/host/visible_text.h>

#include "utils/visible_text.h"

namespace Zentara::Host {

std::string visibleText(std::string_view text) { return Utils::visibleText(text); }

} // namespace Zentara::Host
