#include "utils/growing_bytes.h"

#include <new>

#include "utils/places.h"

namespace Zentara::Utils {

namespace {

constinit Places<SpareBytes::usual> places;

} // namespace

SpareBytes::SpareBytes(std::size_t wanted) : count(wanted), bytes(nullptr) {
    if (wanted <= usual)
        bytes = static_cast<char*>(places.take());
    if (bytes)
        count = usual;
    else
        bytes = static_cast<char*>(::operator new(wanted));
}

void SpareBytes::giveBack() noexcept {
    if (!places.giveBack(bytes))
        ::operator delete(bytes);
}

} // namespace Zentara::Utils
