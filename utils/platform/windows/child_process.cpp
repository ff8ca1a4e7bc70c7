#include "utils/platform/child_process.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <utility>

#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include "utils/platform/program.h"

namespace Zentara::Utils::Platform {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr DWORD lookMilliseconds = 10;
constexpr std::size_t mostReport = 1024 * 1024;
constexpr DWORD firstException = 0xC0000000; ///< exit codes from here on are those of crashes

std::wstring widen(const std::string& text) {
    const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(std::max(size, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(), size);
    return wide;
}

struct HandleCloser {
    void operator()(HANDLE handle) const noexcept {
        if (handle != INVALID_HANDLE_VALUE)
            CloseHandle(handle);
    }
};
using OwnedHandle = std::unique_ptr<void, HandleCloser>;

/// One argument as the C library of the child takes it apart again: backslashes count before a quote only.
void appendQuoted(std::wstring& line, const std::wstring& word) {
    line += L" \"";
    std::size_t backslashes = 0;
    for (const wchar_t letter : word) {
        if (letter == L'"')
            line.append(backslashes + 1, L'\\');
        backslashes = letter == L'\\' ? backslashes + 1 : 0;
        line += letter;
    }
    line.append(backslashes, L'\\') += L'"';
}

std::wstring commandLine(const std::string& program, const std::vector<std::string>& arguments) {
    std::wstring line = L"\"" + widen(program) + L"\"";
    for (const std::string& argument : arguments)
        appendQuoted(line, widen(argument));
    return line;
}

/// A handle that the child inherits.
OwnedHandle openNothing(DWORD access) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return OwnedHandle(CreateFileW(L"NUL", access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                                   OPEN_EXISTING, 0, nullptr));
}

/// Lets a child inherit these handles and no other one, as other threads start children of their own.
class InheritedHandles {
public:
    explicit InheritedHandles(std::vector<HANDLE> list) : handles(std::move(list)) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        memory.resize(size);
        InitializeProcThreadAttributeList(get(), 1, 0, &size);
        UpdateProcThreadAttribute(get(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles.data(),
                                  handles.size() * sizeof(HANDLE), nullptr, nullptr);
    }
    ~InheritedHandles() { DeleteProcThreadAttributeList(get()); }
    InheritedHandles(const InheritedHandles&) = delete;
    InheritedHandles& operator=(const InheritedHandles&) = delete;

    LPPROC_THREAD_ATTRIBUTE_LIST get() {
        return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory.data());
    }

private:
    std::vector<HANDLE> handles;
    std::vector<char> memory;
};

/// Ends what it holds when this process ends, however that comes about.
OwnedHandle makeJob() {
    OwnedHandle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

bool start(const std::string& program, const std::vector<std::string>& arguments, HANDLE report, HANDLE job,
           OwnedHandle& process) {
    const OwnedHandle input = openNothing(GENERIC_READ);
    const OwnedHandle output = openNothing(GENERIC_WRITE);
    InheritedHandles inherited({report, input.get(), output.get()});
    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = input.get();
    startup.StartupInfo.hStdOutput = output.get();
    startup.StartupInfo.hStdError = output.get();
    startup.lpAttributeList = inherited.get();
    std::wstring line = commandLine(program, arguments);
    appendQuoted(line, std::to_wstring(reinterpret_cast<std::uintptr_t>(report)));
    PROCESS_INFORMATION made{};
    if (!CreateProcessW(widen(program).c_str(), line.data(), nullptr, nullptr, TRUE,
                        CREATE_SUSPENDED | CREATE_NO_WINDOW | EXTENDED_STARTUPINFO_PRESENT, nullptr, nullptr,
                        &startup.StartupInfo, &made))
        return false;
    process.reset(made.hProcess);
    // Into the job before its first step, else it could start something that outlives us.
    const OwnedHandle thread(made.hThread);
    AssignProcessToJobObject(job, process.get());
    ResumeThread(thread.get());
    return true;
}

/// Asked before it is read: a process that the child left behind may hold the other end for ever.
void readWhatIsThere(HANDLE pipe, std::string& report) {
    std::array<char, 4096> bytes{};
    DWORD there = 0;
    DWORD count = 0;
    while (PeekNamedPipe(pipe, nullptr, 0, nullptr, &there, nullptr) && there > 0 &&
           ReadFile(pipe, bytes.data(), std::min<DWORD>(there, bytes.size()), &count, nullptr) && count > 0)
        report.append(bytes.data(), std::min<std::size_t>(count, mostReport - report.size()));
}

std::string exceptionText(DWORD code) {
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "exception 0x%08lX", code);
    const char* name = code == EXCEPTION_ACCESS_VIOLATION      ? ", access violation"
                       : code == EXCEPTION_STACK_OVERFLOW      ? ", stack overflow"
                       : code == EXCEPTION_ILLEGAL_INSTRUCTION ? ", illegal instruction"
                                                               : "";
    return std::string(text.data()) + name;
}

ChildEnd endOf(HANDLE process) {
    DWORD code = 0;
    GetExitCodeProcess(process, &code);
    if (code >= firstException)
        return {ChildEnd::Kind::Crashed, static_cast<int>(code), exceptionText(code)};
    return {ChildEnd::Kind::Exited, static_cast<int>(code), {}};
}

/// Ends with the exception's number for the exit code, by which the parent knows a crash, and without a dialogue.
LONG WINAPI endProcess(EXCEPTION_POINTERS* exception) {
    TerminateProcess(GetCurrentProcess(), exception->ExceptionRecord->ExceptionCode | firstException);
    return EXCEPTION_EXECUTE_HANDLER;
}

} // namespace

ChildEnd runChild(const std::string& program, const std::vector<std::string>& arguments,
                  milliseconds beginning, milliseconds limit, std::string& report,
                  const std::function<void()>& meanwhile, ChildWork) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE ends[2]{};
    OwnedHandle process;
    const OwnedHandle job = makeJob();
    bool running = CreatePipe(&ends[0], &ends[1], &inherited, 0) != 0;
    const OwnedHandle readEnd(ends[0]);
    OwnedHandle writeEnd(ends[1]);
    if (running)
        SetHandleInformation(readEnd.get(), HANDLE_FLAG_INHERIT, 0);
    running = running && start(program, arguments, writeEnd.get(), job.get(), process);
    if (!running) {
        const auto error = static_cast<int>(GetLastError());
        return {ChildEnd::Kind::NotStarted, error, "system error " + std::to_string(error)};
    }
    writeEnd.reset();
    auto end = Clock::now() + beginning;
    if (meanwhile)
        meanwhile(); // should it throw, the job kills the child at its end
    bool begun = false;
    while (WaitForSingleObject(process.get(), lookMilliseconds) == WAIT_TIMEOUT) {
        if (Clock::now() > end) {
            TerminateProcess(process.get(), 1);
            WaitForSingleObject(process.get(), INFINITE);
            return {ChildEnd::Kind::TimedOut, 0, {}};
        }
        readWhatIsThere(readEnd.get(), report);
        // Loading the program's libraries does not count against what it has to do.
        if (!begun && !report.empty())
            end = Clock::now() + limit;
        begun = !report.empty();
    }
    readWhatIsThere(readEnd.get(), report);
    return endOf(process.get());
}

/// The console asks both to end: this process leaves that to the other one.
std::optional<int> handOver(const std::string& program, const std::vector<std::string>& arguments) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    std::wstring line = commandLine(program, arguments);
    PROCESS_INFORMATION made{};
    if (!CreateProcessW(widen(program).c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &made))
        return std::nullopt;
    const OwnedHandle process(made.hProcess);
    CloseHandle(made.hThread);
    SetConsoleCtrlHandler([](DWORD) { return TRUE; }, TRUE);
    WaitForSingleObject(process.get(), INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.get(), &code);
    return static_cast<int>(code);
}

std::FILE* openReport(const std::string& channel) {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter(endProcess);
    const auto number = std::strtoull(channel.c_str(), nullptr, 10);
    const int file = number == 0 ? -1 : _open_osfhandle(static_cast<intptr_t>(number), _O_WRONLY | _O_BINARY);
    std::FILE* stream = file < 0 ? nullptr : _fdopen(file, "wb");
    if (stream != nullptr)
        std::setvbuf(stream, nullptr, _IONBF, 0);
    return stream;
}

} // namespace Zentara::Utils::Platform
