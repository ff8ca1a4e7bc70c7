#include <zentara/utils/unique_instance.h>

#include "utils/platform/single_instance.h"

#include <new>

namespace Zentara::Utils {

struct UniqueInstance::Impl {
    bool existed = false; ///< as it was found at construction
    Platform::Owned<Platform::SingleInstance> held;
};

UniqueInstance::UniqueInstance(const char* name) noexcept : impl(new (std::nothrow) Impl()) {
    if (!impl || !name)
        return;
    try {
        impl->held.reset(Platform::SingleInstance::create(name, impl->existed));
    } catch (const std::bad_alloc&) {
        // As any name that cannot be taken, it counts as not held.
    }
}

UniqueInstance::~UniqueInstance() = default;

bool UniqueInstance::isAnotherInstanceRunning() const noexcept { return impl && impl->existed; }

} // namespace Zentara::Utils
