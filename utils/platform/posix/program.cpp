#include "utils/platform/program.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace Zentara::Utils::Platform {

std::string executablePath() {
    std::string path(256, '\0');
    for (;;) {
        const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
        if (length < 0)
            return {};
        if (static_cast<std::size_t>(length) < path.size())
            return path.substr(0, static_cast<std::size_t>(length));
        path.resize(2 * path.size()); // filled to the brim: it may have been cut
    }
}

std::vector<std::string> programArguments(int argc, char** argv) {
    return argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

void reserveStandardStreams() noexcept {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        // The lowest free number is taken; with the wrong direction its use fails as that of a closed one does.
        if (fcntl(stream, F_GETFD) < 0)
            static_cast<void>(open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
}

void failInsteadOfDying() noexcept {
    // The call itself then fails, and says why, as on a full disk.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
}

#ifdef ZENTARA_COVERAGE
extern "C" int __llvm_profile_write_file();
#endif

[[noreturn]] void endProcess(int code) noexcept {
#ifdef ZENTARA_COVERAGE
    __llvm_profile_write_file(); // what leaves here has been reached as well
#endif
    std::_Exit(code);
}

std::optional<int> handOver(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<char*> words{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    execv(program.c_str(), words.data());
    return std::nullopt;
}

std::vector<long> permissionErrors() { return {EACCES, EPERM}; }
std::vector<long> absenceErrors() { return {ENODEV, ENXIO, ESHUTDOWN}; }
std::vector<long> timeoutErrors() { return {ETIMEDOUT}; }

ResourceUse resourceUse() {
    ResourceUse use;
    std::size_t total = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    use.residentBytes = resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const auto entries = [](const char* directory) {
        std::error_code failure;
        const std::filesystem::directory_iterator all(directory, failure);
        return static_cast<unsigned>(std::distance(begin(all), end(all)));
    };
    use.threads = entries("/proc/self/task");
    use.handles = entries("/proc/self/fd");
    return use;
}

bool isTerminal(std::FILE* stream) noexcept { return isatty(fileno(stream)) == 1; }

bool hasLostReader(std::FILE* stream) noexcept {
    pollfd state{fileno(stream), 0, 0};
    return poll(&state, 1, 0) == 1 && (state.revents & POLLERR) != 0;
}

std::string shellWord(const std::string& text) {
    const bool isPlain = !text.empty() && text.find_first_not_of(
                                              "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
                                              "_-./:=,+@") == std::string::npos;
    if (isPlain)
        return text;
    std::string word = "'";
    for (const char letter : text)
        word += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    return word + "'";
}

ConsoleSetup::ConsoleSetup() noexcept = default;

ConsoleSetup::~ConsoleSetup() = default;

/// A terminal that has none, or a person who wants none, says so in the environment.
bool ConsoleSetup::takesEscapeSequences(std::FILE* stream) const noexcept {
    const char* const kind = std::getenv("TERM");
    return isTerminal(stream) && kind && std::strcmp(kind, "dumb") != 0;
}

void watchConsole(void (*)()) noexcept {}

} // namespace Zentara::Utils::Platform
