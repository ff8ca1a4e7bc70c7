#include "plugins/v4l2/holders.h"

#include <filesystem>
#include <fstream>
#include <unistd.h>
#include <vector>

namespace Zentara::V4l2 {

namespace fs = std::filesystem;

namespace {

bool hasOpen(const fs::path& process, const fs::path& device) {
    std::error_code error;
    for (fs::directory_iterator file(process / "fd", error), end; !error && file != end;
         file.increment(error)) {
        // Of a link that vanished or may not be read the target is empty, as is the path of a device that has gone.
        std::error_code unreadable;
        if (fs::read_symlink(file->path(), unreadable) == device && !unreadable)
            return true;
    }
    return false;
}

std::string nameOf(const fs::path& process) {
    std::ifstream file(process / "comm");
    std::string name;
    std::getline(file, name);
    return process.filename().string() + (name.empty() ? "" : " (" + name + ")");
}

} // namespace

std::string holdersOf(const std::string& device) {
    std::error_code error;
    const fs::path real = fs::canonical(device, error);
    const std::string self = std::to_string(::getpid());
    std::vector<std::string> names;
    for (fs::directory_iterator process("/proc", error), end; !error && process != end;
         process.increment(error)) {
        const std::string number = process->path().filename().string();
        if (number.find_first_not_of("0123456789") == std::string::npos && number != self &&
            hasOpen(process->path(), real))
            names.push_back(nameOf(process->path()));
    }
    if (names.empty())
        return ::geteuid() == 0 ? "another stream of this program has it"
                                : "another user's process has it, or another stream of this program";
    std::string text = names.size() == 1 ? "process " : "processes ";
    for (std::size_t index = 0; index < names.size(); ++index)
        text += (index == 0 ? "" : ", ") + names[index];
    return text + (names.size() == 1 ? " has it open" : " have it open");
}

} // namespace Zentara::V4l2
