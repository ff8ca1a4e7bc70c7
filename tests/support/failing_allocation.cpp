#include "support/failing_allocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include <gtest/gtest.h>

namespace {

thread_local bool armed = false;
thread_local bool onlyThrowing = false;
thread_local std::size_t left = 0;
constexpr std::size_t mostAllocations = 2000;
std::atomic<bool> armedAnywhere{false};
std::atomic<std::size_t> failing{0};
std::atomic<std::size_t> counted{0};

void* allocate(std::size_t size, bool isThrowing) noexcept {
    if (armed && (isThrowing || !onlyThrowing) && left-- == 0) {
        armed = false;
        return nullptr;
    }
    if (isThrowing && armedAnywhere && counted++ == failing)
        return nullptr;
    return std::malloc(size != 0 ? size : 1);
}

} // namespace

void* operator new(std::size_t size) {
    if (void* memory = allocate(size, true))
        return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size, false); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }

namespace Zentara::TestSupport {

FailingAllocation::FailingAllocation(std::size_t n, Form form) noexcept {
    left = n;
    onlyThrowing = form == Form::throwing;
    armed = true;
}
FailingAllocation::~FailingAllocation() { armed = false; }
bool FailingAllocation::hit() const noexcept { return !armed; }

FailingAllocationAnywhere::FailingAllocationAnywhere(std::size_t n) noexcept {
    failing = n;
    counted = 0;
    armedAnywhere = true;
}
FailingAllocationAnywhere::~FailingAllocationAnywhere() { armedAnywhere = false; }
std::size_t FailingAllocationAnywhere::count() noexcept { return counted; }

void walkAllocations(const std::function<void(const WithoutMemory&)>& attempt, FailingAllocation::Form form) {
    for (std::size_t n = 0; n < mostAllocations; ++n) {
        bool hit = false;
        attempt([&](const std::function<void()>& operation) {
            const FailingAllocation failing(n, form);
            bool threw = false;
            try {
                operation();
            } catch (const std::bad_alloc&) {
                threw = true;
            }
            hit = failing.hit();
            return threw;
        });
        if (!hit)
            return;
        ASSERT_FALSE(testing::Test::HasFailure()) << "allocation " << n;
    }
    FAIL() << "no end of allocations";
}

} // namespace Zentara::TestSupport
