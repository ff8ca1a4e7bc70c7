#include "utils/platform/program.h"

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

bool isTerminal(std::FILE* stream) noexcept { return isatty(fileno(stream)) == 1; }

} // namespace Zentara::Utils::Platform
