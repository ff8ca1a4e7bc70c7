#include "utils/platform/child_process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "utils/platform/program.h"

extern char** environ;

namespace Zentara::Utils::Platform {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr int reportNumber = 3;                 ///< the first one after the standard streams
constexpr milliseconds look{20};                ///< how often the child's end and its report are looked at
constexpr std::size_t mostReport = 1024 * 1024; ///< what comes beyond it is read and dropped

/// Both ends of a pipe that no other child inherits.
class Pipe {
public:
    Pipe() { open = pipe2(ends, O_CLOEXEC) == 0; }
    ~Pipe() {
        closeEnd(0);
        closeEnd(1);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    void closeEnd(int index) {
        if (open && ends[index] >= 0)
            close(std::exchange(ends[index], -1));
    }

    bool open = false;
    int ends[2] = {-1, -1};
};

/// What the child begins with: its report, no standard streams, and every signal as usual.
class SpawnSettings {
public:
    explicit SpawnSettings(int report) {
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, report, reportNumber);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawnattr_init(&attributes);
        sigset_t usual;
        sigemptyset(&usual);
        posix_spawnattr_setsigmask(&attributes, &usual);
        for (const int signal : {SIGPIPE, SIGXFSZ})
            sigaddset(&usual, signal);
        posix_spawnattr_setsigdefault(&attributes, &usual);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    }
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

int spawn(const std::string& program, std::vector<std::string> words, int report, pid_t& child) {
    const SpawnSettings settings(report);
    words.insert(words.begin(), program);
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return posix_spawn(&child, program.c_str(), &settings.actions, &settings.attributes, pointers.data(),
                       environ);
}

/// Of a process with further threads a copy would have their locks.
bool isCopyable(const std::string& program) {
    struct stat threads {};
    constexpr nlink_t forOneThread = 3; // a directory's own two, and one for each directory in it
    return stat("/proc/self/task", &threads) == 0 && threads.st_nlink == forOneThread &&
           program == executablePath();
}

/// In the copy.
[[noreturn]] void workAndEnd(ChildWork work, const std::vector<std::string>& words, int report) noexcept {
    const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    bool isReady = nothing >= 0 && (report == reportNumber || dup2(report, reportNumber) >= 0);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        isReady = isReady && dup2(nothing, stream) >= 0;
    if (isReady)
        work(words);
    std::_Exit(EXIT_FAILURE);
}

/// \return the system's error number, or 0
int start(const std::string& program, std::vector<std::string> words, int report, ChildWork work,
          pid_t& child) {
    words.push_back(std::to_string(reportNumber));
    if (work == nullptr || !isCopyable(program))
        return spawn(program, std::move(words), report, child);
    child = fork();
    if (child == 0)
        workAndEnd(work, words, report);
    return child < 0 ? errno : 0;
}

enum class Read { Some, Nothing, End };

/// Takes what is there, after waiting for it a little.
Read readSome(int file, std::string& report) {
    pollfd waiting{file, POLLIN, 0};
    if (poll(&waiting, 1, static_cast<int>(look.count())) <= 0)
        return Read::Nothing;
    std::array<char, 4096> bytes{};
    const ssize_t count = read(file, bytes.data(), bytes.size());
    if (count > 0)
        report.append(bytes.data(), std::min(static_cast<std::size_t>(count), mostReport - report.size()));
    if (count > 0)
        return Read::Some;
    return count < 0 && errno == EINTR ? Read::Nothing : Read::End;
}

/// A little while, or until the process ends. Where the system cannot open a process it is the little while.
void awaitEnd(pid_t child) {
    const int file = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
    pollfd waiting{file, POLLIN, 0}; // of a negative number nothing is awaited
    poll(&waiting, 1, static_cast<int>(look.count()));
    if (file >= 0)
        close(file);
}

bool hasEnded(pid_t child, int& status) { return waitpid(child, &status, WNOHANG) == child; }

void drain(int file, std::string& report) {
    fcntl(file, F_SETFL, O_NONBLOCK);
    while (report.size() < mostReport && readSome(file, report) == Read::Some) {
    }
}

ChildEnd endOf(int status) {
    if (!WIFSIGNALED(status))
        return {ChildEnd::Kind::Exited, WEXITSTATUS(status), {}};
    const int number = WTERMSIG(status);
    const char* text = sigdescr_np(number);
    return {ChildEnd::Kind::Crashed, number,
            "signal " + std::to_string(number) + (text == nullptr ? "" : std::string(", ") + text)};
}

} // namespace

ChildEnd runChild(const std::string& program, const std::vector<std::string>& arguments,
                  milliseconds beginning, milliseconds limit, std::string& report,
                  const std::function<void()>& meanwhile, ChildWork work) {
    Pipe pipe;
    pid_t child = 0;
    const int error = pipe.open ? start(program, arguments, pipe.ends[1], work, child) : errno;
    if (error != 0)
        return {ChildEnd::Kind::NotStarted, error, strerrordesc_np(error)};
    pipe.closeEnd(1); // else the report would never end for us
    auto end = Clock::now() + beginning;
    int status = 0;
    const auto killIt = [&] {
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
    };
    try {
        if (meanwhile)
            meanwhile();
    } catch (...) {
        killIt();
        throw;
    }
    bool begun = false;
    Read last = Read::Some;
    while ((last == Read::Some && report.size() < mostReport) || !hasEnded(child, status)) {
        if (Clock::now() > end) {
            killIt();
            return {ChildEnd::Kind::TimedOut, 0, {}};
        }
        if (last != Read::End)
            last = readSome(pipe.ends[0], report);
        else
            awaitEnd(child); // soon after its report, but not for certain
        // Loading the program's libraries does not count against what it has to do.
        if (!begun && !report.empty())
            end = Clock::now() + limit;
        begun = !report.empty();
    }
    drain(pipe.ends[0], report); // a process that it left behind may hold the other end for ever
    return endOf(status);
}

std::FILE* openReport(const std::string& channel) {
    prctl(PR_SET_PDEATHSIG, SIGKILL); // a child that hangs must not outlive who would end it
    const int number = std::atoi(channel.c_str());
    if (number != reportNumber || fcntl(number, F_SETFD, FD_CLOEXEC) != 0)
        return nullptr;
    std::FILE* file = fdopen(number, "w");
    if (file != nullptr)
        std::setvbuf(file, nullptr, _IONBF, 0);
    return file;
}

} // namespace Zentara::Utils::Platform
