#pragma once

#include <cstddef>
#include <string_view>

namespace Zentara::Utils {

/// The calling thread as the logs name it: its identifier in eight hexadecimal digits, or more where it has more,
/// in brackets.
class ThreadTag final {
public:
    ThreadTag() noexcept;

    [[nodiscard]] std::string_view text() const noexcept { return {characters, size}; }

private:
    char characters[24];
    std::size_t size;
};

} // namespace Zentara::Utils
