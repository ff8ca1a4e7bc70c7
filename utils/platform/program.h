#pragma once

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

/// What a program asks the system about itself. Not part of the library: programs link zentara_program_port.
namespace Zentara::Utils::Platform {

/// The absolute path of the running program's file (UTF-8, '/' as separator); empty when the system does not tell.
std::string executablePath();

/// The program's arguments in UTF-8, without its name. The parameters are main's.
std::vector<std::string> programArguments(int argc, char** argv);

/// Gives each of the three standard streams that was closed when the program started a place of its own that takes
/// and has nothing. Without it the next file that is opened takes the place, and gets what is meant for the stream.
/// Writing to such a stream fails as before. Before any file is opened.
void reserveStandardStreams() noexcept;

/// From now on a write beyond the limit of a file's size, or to a reader that has gone, fails, instead of ending the
/// process without a word.
void failInsteadOfDying() noexcept;

/// Ends the process where it stands, whatever its threads are at: nothing is flushed, no destructor and no library's end
/// is run. On Windows std::_Exit waits for a thread that sits in the loading of a library; this does not.
[[noreturn]] void endProcess(int code) noexcept;

/// Has another program do what is left to be done: it takes over the standard streams, and this process itself where the
/// system can do that; elsewhere this one waits for its end.
/// \param program its path \param arguments without the program's name; UTF-8
/// \return its exit code; nothing when it could not be started
std::optional<int> handOver(const std::string& program, const std::vector<std::string>& arguments);

/// The system's error numbers that mean a lack of permission, that a device has gone, and that it did not answer in time.
std::vector<long> permissionErrors();
std::vector<long> absenceErrors();
std::vector<long> timeoutErrors();

/// What a program holds of the system at the moment; 0 where the system does not tell.
struct ResourceUse {
    std::size_t residentBytes = 0;
    unsigned threads = 0;
    unsigned handles = 0; ///< or file descriptors
};
ResourceUse resourceUse();

/// Whether a person reads what is written to the stream.
bool isTerminal(std::FILE* stream) noexcept;

/// Whether the stream is a pipe whose reader has gone. Nothing is written.
bool hasLostReader(std::FILE* stream) noexcept;

/// A word of a command line as a person pastes it into the system's command interpreter: in quotes where it needs them.
std::string shellWord(const std::string& text);

/// Sets the console up for a program that writes UTF-8 and escape sequences, and puts it back as it was at the end: it
/// outlives the program. Elsewhere a terminal is so by itself.
class ConsoleSetup final {
public:
    ConsoleSetup() noexcept;
    ~ConsoleSetup();
    ConsoleSetup(const ConsoleSetup&) = delete;
    ConsoleSetup& operator=(const ConsoleSetup&) = delete;

    /// Whether a person reads the stream, one of the standard ones, and escape sequences have their effect there.
    [[nodiscard]] bool takesEscapeSequences(std::FILE* stream) const noexcept;

private:
    struct Kept {
        bool isConsole = false;
        bool hasSequences = false;
        unsigned long mode = 0;
    };
    static constexpr int streams = 2;
    [[maybe_unused]] Kept kept[streams]; ///< standard output and standard error
    [[maybe_unused]] unsigned int codePage = 0;
};

/// Has `note` called, on a thread of the system's, when a console asks the program to end in a way that is no signal:
/// on Windows by Ctrl-Break, the closing of its window, log-off and shutdown. A second Ctrl-Break ends the program.
/// After each of the other three the system ends it when some seconds are over; until then the program can end in
/// order. Null takes that back. Elsewhere these are signals.
void watchConsole(void (*note)()) noexcept;

} // namespace Zentara::Utils::Platform
