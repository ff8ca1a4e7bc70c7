#include "utils/platform/program.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>

#include <windows.h>

#include <io.h>
#include <psapi.h>
#include <shellapi.h>
#include <tlhelp32.h>

namespace Zentara::Utils::Platform {
namespace {

std::string narrow(const wchar_t* text, int length) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(std::max(size, 0)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, length, utf8.data(), size, nullptr, nullptr);
    return utf8;
}

HANDLE handleOf(std::FILE* stream) noexcept {
    return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
}

std::atomic<void (*)()> toBeTold{nullptr};

BOOL WINAPI noteConsole(DWORD event) {
    // Ctrl-C is a signal of the C library. A second Ctrl-Break finds nobody to tell, and the system ends the program.
    const bool isBreak = event == CTRL_BREAK_EVENT;
    void (*const note)() = event == CTRL_C_EVENT ? nullptr
                           : isBreak             ? toBeTold.exchange(nullptr)
                                                 : toBeTold.load();
    if (!note)
        return FALSE;
    note();
    // The system ends the program when this returns, and with patience at an end also before.
    if (!isBreak)
        Sleep(INFINITE);
    return TRUE;
}

} // namespace

std::string executablePath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0)
            return {};
        if (length < path.size()) {
            std::string utf8 = narrow(path.data(), static_cast<int>(length));
            std::replace(utf8.begin(), utf8.end(), '\\', '/');
            return utf8;
        }
        path.resize(2 * path.size()); // filled to the brim: it was cut
    }
}

std::vector<std::string> programArguments(int, char**) {
    // main's own arguments have been through the code page, which does not hold every character.
    int count = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int index = 1; wide != nullptr && index < count; ++index)
        arguments.push_back(narrow(wide[index], static_cast<int>(wcslen(wide[index]))));
    LocalFree(wide);
    return arguments;
}

/// The C library gives a file that is opened none of the first three numbers.
void reserveStandardStreams() noexcept {}

/// Nothing ends a process for that here.
void failInsteadOfDying() noexcept {}

[[noreturn]] void endProcess(int code) noexcept {
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
    std::abort(); // it does not come back
}

std::vector<long> permissionErrors() { return {ERROR_ACCESS_DENIED}; }
std::vector<long> absenceErrors() { return {ERROR_DEVICE_NOT_CONNECTED, ERROR_DEVICE_REMOVED}; }
std::vector<long> timeoutErrors() { return {ERROR_SEM_TIMEOUT, ERROR_TIMEOUT}; }

ResourceUse resourceUse() {
    ResourceUse use;
    PROCESS_MEMORY_COUNTERS memory{};
    if (GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory))
        use.residentBytes = memory.WorkingSetSize;
    DWORD handles = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &handles))
        use.handles = handles;
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (snapshot != INVALID_HANDLE_VALUE) {
        THREADENTRY32 thread{};
        thread.dwSize = sizeof thread;
        for (BOOL more = Thread32First(snapshot, &thread); more; more = Thread32Next(snapshot, &thread))
            use.threads += thread.th32OwnerProcessID == GetCurrentProcessId();
        CloseHandle(snapshot);
    }
    return use;
}

bool isTerminal(std::FILE* stream) noexcept {
    DWORD mode = 0;
    return GetConsoleMode(handleOf(stream), &mode) != 0;
}

// A write of nothing reaches no reader, and fails without one.
bool hasLostReader(std::FILE* stream) noexcept {
    DWORD written = 0;
    return GetFileType(handleOf(stream)) == FILE_TYPE_PIPE &&
           !WriteFile(handleOf(stream), "", 0, &written, nullptr) &&
           (GetLastError() == ERROR_NO_DATA || GetLastError() == ERROR_BROKEN_PIPE);
}

// A Windows that does not know escape sequences refuses the mode, and they would be shown as they stand.
ConsoleSetup::ConsoleSetup() noexcept {
    bool hasConsole = false;
    for (int index = 0; index < streams; ++index) {
        Kept& console = kept[index];
        const HANDLE handle = handleOf(index == 0 ? stdout : stderr);
        console.isConsole = GetConsoleMode(handle, &console.mode) != 0;
        console.hasSequences = console.isConsole &&
                               SetConsoleMode(handle, console.mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
        hasConsole = hasConsole || console.isConsole;
    }
    codePage = hasConsole ? GetConsoleOutputCP() : 0;
    if (hasConsole)
        SetConsoleOutputCP(CP_UTF8);
}

// Both streams may lead to one console: the first to be set up is put back last.
ConsoleSetup::~ConsoleSetup() {
    std::fflush(nullptr);
    for (int index = streams - 1; index >= 0; --index) {
        if (kept[index].isConsole)
            SetConsoleMode(handleOf(index == 0 ? stdout : stderr), kept[index].mode);
    }
    if (codePage != 0)
        SetConsoleOutputCP(codePage);
}

bool ConsoleSetup::takesEscapeSequences(std::FILE* stream) const noexcept {
    return kept[stream == stderr ? 1 : 0].hasSequences;
}

void watchConsole(void (*note)()) noexcept {
    toBeTold = note;
    SetConsoleCtrlHandler(&noteConsole, note ? TRUE : FALSE);
}

/// No file's name holds a double quote; a backslash before the closing one would take it for itself.
std::string shellWord(const std::string& text) {
    const bool isPlain = !text.empty() && text.find_first_not_of(
                                              "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
                                              "_-./\\:+@") == std::string::npos;
    if (isPlain)
        return text;
    return '"' + text + (text.ends_with('\\') ? "\\" : "") + '"';
}

} // namespace Zentara::Utils::Platform
