#include "utils/platform/thread.h"

#include "utils/platform/windows/system.h"

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>

#include <process.h>

namespace Zentara::Utils::Platform {

namespace {

struct WindowsThread final : Thread {
    HANDLE handle = nullptr;
    unsigned int identifier = 0;
};

struct Entry {
    void (*function)(void*);
    void* argument;
};

unsigned int __stdcall enter(void* passed) {
    const Entry entry = *std::unique_ptr<Entry>(static_cast<Entry*>(passed));
    entry.function(entry.argument);
    return 0;
}

/// What a debugger reads when it is told of a thread's name.
#pragma pack(push, 8)
struct ThreadNameRecord {
    DWORD type;
    const char* name;
    DWORD threadId;
    DWORD flags;
};
#pragma pack(pop)

constexpr DWORD threadNameException = 0x406D1388;

/// Without a debugger nobody takes the notification, and it must not end the process.
LONG CALLBACK swallowThreadName(EXCEPTION_POINTERS* exception) {
    return exception->ExceptionRecord->ExceptionCode == threadNameException ? EXCEPTION_CONTINUE_EXECUTION
                                                                            : EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

Thread* Thread::create(void (*function)(void*), void* argument) noexcept {
    std::unique_ptr<WindowsThread> thread(new (std::nothrow) WindowsThread);
    std::unique_ptr<Entry> entry(new (std::nothrow) Entry{function, argument});
    if (!thread || !entry)
        std::abort();
    const auto started = _beginthreadex(nullptr, 0, &enter, entry.get(), 0, &thread->identifier);
    if (started == 0)
        std::abort();
    static_cast<void>(entry.release());
    thread->handle = reinterpret_cast<HANDLE>(started);
    return thread.release();
}

void Thread::destroy(Thread* thread) noexcept {
    const std::unique_ptr<WindowsThread> owned(static_cast<WindowsThread*>(thread));
    if (owned)
        CloseHandle(owned->handle);
}

void Thread::join() noexcept {
    if (WaitForSingleObject(static_cast<WindowsThread*>(this)->handle, INFINITE) == WAIT_FAILED)
        std::abort();
}

bool Thread::isCurrent() const noexcept {
    return static_cast<const WindowsThread*>(this)->identifier == GetCurrentThreadId();
}

unsigned long currentThreadId() noexcept { return GetCurrentThreadId(); }

unsigned long currentProcessId() noexcept { return GetCurrentProcessId(); }

void sleepMilliseconds(unsigned long milliseconds) noexcept { Sleep(milliseconds); }

void nameCurrentThread(const char* name) noexcept {
    ThreadNameRecord record{0x1000, name, static_cast<DWORD>(-1), 0};
    ULONG_PTR arguments[sizeof record / sizeof(ULONG_PTR)];
    static_assert(sizeof arguments == sizeof record);
    std::memcpy(arguments, &record, sizeof record);
    void* const handler = AddVectoredExceptionHandler(1, &swallowThreadName);
    if (!handler)
        return;
    RaiseException(threadNameException, 0, static_cast<DWORD>(std::size(arguments)), arguments);
    RemoveVectoredExceptionHandler(handler);
}

} // namespace Zentara::Utils::Platform
