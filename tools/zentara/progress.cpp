#include "tools/zentara/progress.h"

#include <memory>

#include "tools/zentara/interrupt.h"

namespace Zentara::Tool {

Progress shownProgress(const char* doing, Console& console) {
    constexpr std::uint64_t briefly = 0x400; ///< bytes that nobody waits for
    return
        [watch = std::make_shared<InterruptWatch>(), doing, &console](std::uint64_t done, std::uint64_t all) {
            if (console.showProgress && all > briefly && done > 0)
                console.err << '\r' << doing << ' ' << done << " of " << all << " bytes"
                            << (done == all ? "\n" : "") << std::flush;
            return !watch->interrupted();
        };
}

} // namespace Zentara::Tool
