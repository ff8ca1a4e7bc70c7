#include "io/proxy_tuning.h"

namespace Zentara::IO::Detail {

ProxyTuning& proxyTuning() noexcept {
    static ProxyTuning tuning;
    return tuning;
}

} // namespace Zentara::IO::Detail
