#include <zentara/version.h>

#include <cstddef>

namespace Zentara {

namespace {

/// With a mark before it, by which the version is found in the library's file without loading that.
constexpr char marked[] = "@(#)ZentaraSDK " ZENTARA_SDK_VERSION_STRING;
constexpr std::size_t markLength = sizeof "@(#)ZentaraSDK " - 1;

} // namespace

const char* sdkVersion() noexcept { return marked + markLength; }

} // namespace Zentara
