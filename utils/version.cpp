#include <zentara/version.h>

namespace Zentara {

const char* sdkVersion() noexcept { return ZENTARA_SDK_VERSION_STRING; }

} // namespace Zentara
