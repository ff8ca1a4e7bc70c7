#include "utils/platform/process.h"

#include <cctype>
#include <climits>
#include <dirent.h>
#include <fstream>
#include <memory>
#include <string_view>
#include <unistd.h>

namespace Zentara::Utils::Platform {

namespace {

struct DirectoryCloser {
    void operator()(DIR* stream) const noexcept { closedir(stream); }
};

std::string fileName(std::string_view path) { return std::string(path.substr(path.rfind('/') + 1)); }

/// The program's file; known only for processes of the same user.
std::string programName(const std::string& process) {
    constexpr std::string_view deletedMark = " (deleted)";
    char target[PATH_MAX];
    const ssize_t size = readlink((process + "/exe").c_str(), target, sizeof target);
    std::string_view path(target, size > 0 ? static_cast<std::size_t>(size) : 0);
    if (path.ends_with(deletedMark))
        path.remove_suffix(deletedMark.size());
    return fileName(path);
}

std::string firstArgument(const std::string& process) {
    std::string argument;
    std::ifstream commandLine(process + "/cmdline");
    std::getline(commandLine, argument, '\0');
    return fileName(argument);
}

/// The kernel's short name, cut to 15 bytes; the only one that its own threads have.
std::string shortName(const std::string& process) {
    std::string name;
    std::ifstream file(process + "/comm");
    std::getline(file, name);
    return name;
}

/// The fullest name that may be seen: the program's file, else what it was started as, else the kernel's.
std::string processName(const std::string& process) {
    std::string name = programName(process);
    if (name.empty())
        name = firstArgument(process);
    return name.empty() ? shortName(process) : name;
}

} // namespace

bool listProcesses(std::vector<std::string>& names) {
    const std::unique_ptr<DIR, DirectoryCloser> stream(opendir("/proc"));
    if (!stream)
        return false;
    while (const dirent* entry = readdir(stream.get())) {
        if (std::isdigit(static_cast<unsigned char>(entry->d_name[0])) == 0)
            continue;
        std::string name = processName(std::string("/proc/") + entry->d_name);
        if (!name.empty())
            names.push_back(std::move(name));
    }
    return true;
}

} // namespace Zentara::Utils::Platform
