#pragma once

#include <exception>

namespace Zentara::Cameras {

/// Takes a step of an ending that must go on whatever happens. What the step throws was logged where it was made.
template<typename Step>
void attempt(Step step) noexcept {
    try {
        step();
    } catch (const std::exception&) {
        // There is nobody to tell.
    }
}

} // namespace Zentara::Cameras
