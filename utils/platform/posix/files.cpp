#include "utils/platform/files.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace Zentara::Utils::Platform {

namespace {

struct OpenMode {
    int flags;
    const char* streamMode;
};

OpenMode openMode(FileMode mode) noexcept {
    switch (mode) {
    case FileMode::WriteBinary:
        return {O_WRONLY | O_CREAT | O_TRUNC, "w"};
    case FileMode::AppendText:
        return {O_WRONLY | O_CREAT | O_APPEND, "a"};
    case FileMode::ReadBinary:
        break;
    }
    return {O_RDONLY, "r"};
}

} // namespace

std::FILE* openFile(const std::string& path, FileMode mode) {
    if (path.find('\0') != std::string::npos) {
        errno = EINVAL;
        return nullptr;
    }
    const OpenMode how = openMode(mode);
    // Only the opening must not block, as that of a pipe without another end does; reads and writes go on as usual.
    const int descriptor = open(path.c_str(), how.flags | O_NONBLOCK | O_CLOEXEC, 0666);
    if (descriptor < 0)
        return nullptr;
    fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
    std::FILE* file = fdopen(descriptor, how.streamMode);
    if (!file) {
        const int saved = errno;
        close(descriptor);
        errno = saved;
    }
    return file;
}

void writeThrough(std::FILE* file, std::string_view text) noexcept {
    const int descriptor = fileno(file);
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written > 0)
            text.remove_prefix(static_cast<std::size_t>(written));
        else if (written == 0 || errno != EINTR)
            return;
    }
}

std::int64_t fileLength(std::FILE* file) noexcept {
    struct stat status;
    return fstat(fileno(file), &status) == 0 && S_ISREG(status.st_mode) ? status.st_size : -1;
}

std::string workingDirectory() {
    struct Freer {
        void operator()(char* text) const noexcept { std::free(text); }
    };
    const std::unique_ptr<char, Freer> path(getcwd(nullptr, 0));
    return path ? path.get() : "";
}

std::string absolutePath(const std::string& path) {
    return !path.empty() && path.front() == '/' ? path : workingDirectory() + '/' + path;
}

std::string nativeSeparators(const std::string& path) { return path; }

bool isSeparator(char character) noexcept { return character == '/'; }

} // namespace Zentara::Utils::Platform
