#include "utils/platform/directory.h"

#include <cerrno>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>

namespace Zentara::Utils::Platform {

namespace {

struct DirectoryCloser {
    void operator()(DIR* stream) const noexcept {
        const int saved = errno;
        closedir(stream);
        errno = saved;
    }
};

/// Not every file system tells the kind with the name, and a link tells only that it is one.
bool isRegularFile(DIR* stream, const dirent& entry) noexcept {
    if (entry.d_type == DT_REG)
        return true;
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN)
        return false;
    struct stat status;
    return fstatat(dirfd(stream), entry.d_name, &status, 0) == 0 && S_ISREG(status.st_mode);
}

} // namespace

DirectoryWalk listFiles(const std::string& directory, std::vector<std::string>& names) {
    if (directory.find('\0') != std::string::npos)
        return DirectoryWalk::Missing;
    const std::unique_ptr<DIR, DirectoryCloser> stream(opendir(directory.empty() ? "." : directory.c_str()));
    if (!stream)
        return errno == ENOENT || errno == ENOTDIR ? DirectoryWalk::Missing : DirectoryWalk::Failed;
    for (;;) {
        errno = 0; // by it alone the end and a failure are told apart
        const dirent* entry = readdir(stream.get());
        if (!entry)
            return errno == 0 ? DirectoryWalk::Complete : DirectoryWalk::Failed;
        if (isRegularFile(stream.get(), *entry))
            names.emplace_back(entry->d_name);
    }
}

bool fileNamesIgnoreCase() noexcept { return false; }

} // namespace Zentara::Utils::Platform
