#include "support/failing_allocation.h"

#include <cstdlib>
#include <new>

namespace {

thread_local bool armed = false;
thread_local std::size_t left = 0;

void* allocate(std::size_t size) noexcept {
    if (armed && left-- == 0) {
        armed = false;
        return nullptr;
    }
    return std::malloc(size != 0 ? size : 1);
}

} // namespace

void* operator new(std::size_t size) {
    if (void* memory = allocate(size))
        return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }

namespace Zentara::TestSupport {

FailingAllocation::FailingAllocation(std::size_t n) noexcept {
    left = n;
    armed = true;
}
FailingAllocation::~FailingAllocation() { armed = false; }
bool FailingAllocation::hit() const noexcept { return !armed; }

} // namespace Zentara::TestSupport
