#include "utils/thread_tag.h"

#include <algorithm>
#include <charconv>

#include <zentara/utils/thread_base.h>

namespace Zentara::Utils {

ThreadTag::ThreadTag() noexcept {
    constexpr std::ptrdiff_t fewestDigits = 8;
    char digits[2 * sizeof(unsigned long)];
    const char* const end =
        std::to_chars(digits, digits + sizeof digits, Threading::ThreadBase::getCurrentThreadId(), 16).ptr;
    char* next = characters;
    *next++ = '[';
    next = std::fill_n(next, std::max<std::ptrdiff_t>(0, fewestDigits - (end - digits)), '0');
    next = std::copy(static_cast<const char*>(digits), end, next);
    *next++ = ']';
    size = static_cast<std::size_t>(next - characters);
}

} // namespace Zentara::Utils
