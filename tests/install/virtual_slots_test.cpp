#include "support/virtual_slots.h"

#include <zentara/core/plugin.h>

namespace {

// A count of the object alone would forget its library.
template<typename T>
concept CountedAlone = requires(T& object) {
    object.tryIncref();
}
|| requires(T& object) { object.decrefIfLastRef(); };
static_assert(CountedAlone<Zentara::Utils::Refcounted> && !CountedAlone<Zentara::Core::Plugin>);

} // namespace
