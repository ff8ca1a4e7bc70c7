#pragma once

#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

/// Work that is done in a process of its own, since it may not survive it. Not part of the library: programs link
/// zentara_program_port.
namespace Zentara::Utils::Platform {

/// How a child process ended.
struct ChildEnd {
    enum class Kind {
        NotStarted, ///< `text` is the system's reason
        Exited,     ///< `number` is its exit code
        Crashed,    ///< `text` is the signal or the exception
        TimedOut,   ///< it was killed
    };
    Kind kind = Kind::NotStarted;
    int number = 0;
    std::string text;
};

/// What the program's main() does with such arguments.
using ChildWork = void (*)(const std::vector<std::string>& arguments);

/// Starts a program, reads what it reports until it has ended, and waits for its end. Its standard streams lead
/// nowhere; the report has a channel of its own, whose name becomes the program's last argument. A child does not
/// outlive this process. Safe.
/// \param program its path \param arguments without the program's name; UTF-8
/// \param start how long the program may take until the first byte of its report
/// \param limit how long it may take from then on; afterwards it is killed
/// \param report what it reported, however it ended; at most 1 MiB
/// \param meanwhile is done by this thread while the program begins, and its time counts as the program's; what it throws
/// is thrown on once the child is killed
/// \param work where it is given, the program is this one and no other thread runs in it, a system that can copy a
/// process has a copy do this, which spares the start of a program
ChildEnd runChild(const std::string& program, const std::vector<std::string>& arguments,
                  std::chrono::milliseconds start, std::chrono::milliseconds limit, std::string& report,
                  const std::function<void()>& meanwhile = {}, ChildWork work = nullptr);

/// In the child: the channel of that name for writing, unbuffered; null when there is none. From then on a crash ends
/// the process without a dialogue.
std::FILE* openReport(const std::string& channel);

} // namespace Zentara::Utils::Platform
