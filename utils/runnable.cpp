#include <zentara/utils/runnable.h>

#include <atomic>

namespace Zentara::Utils::Threading {

struct Runnable::Impl {
    std::atomic<int> entered{0};
    std::atomic<bool> exitRequested{false};
};

Runnable::Runnable() : impl(std::make_unique<Impl>()) {}

Runnable::~Runnable() = default;

void Runnable::exit() { impl->exitRequested = true; }

bool Runnable::running() const { return impl->entered > 0; }

void Runnable::enter() { ++impl->entered; }

void Runnable::leave() { --impl->entered; }

bool Runnable::exitRequested() const { return impl->exitRequested; }

void Runnable::forgetExitRequest() { impl->exitRequested = false; }

} // namespace Zentara::Utils::Threading
