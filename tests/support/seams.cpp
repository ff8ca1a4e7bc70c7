#include "support/seams.h"

#include "io/device_link.h"
#include "io/proxy_tuning.h"
#include "io/retired_workers.h"

namespace Testing::Seams {

using namespace Zentara::IO;

void setProxyLimits(std::uint32_t timeout, std::uint32_t stuckCall, std::uint32_t slice) noexcept {
    Detail::ProxyTuning& tuning = Detail::proxyTuning();
    tuning.timeoutMilliseconds = timeout;
    tuning.stuckCallMilliseconds = stuckCall;
    tuning.sliceMilliseconds = slice;
}

int retiredWorkers() noexcept { return Detail::retiredWorkers(); }

void dropWhenLast(deviceRequest& request) { Zentara::IO::dropWhenLast(request); }

} // namespace Testing::Seams
