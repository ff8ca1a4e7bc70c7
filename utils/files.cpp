#include <zentara/utils/files.h>

#include <algorithm>
#include <cstdio>
#include <memory>

#include <zentara/utils/exceptions.h>
#include <zentara/utils/text.h>

#include "utils/log_warning.h"
#include "utils/message.h"
#include "utils/platform/console.h"
#include "utils/platform/directory.h"
#include "utils/platform/files.h"

namespace Zentara::Utils {

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

File openOrThrow(const std::string& path, Platform::FileMode mode) {
    File file(Platform::openFile(path, mode));
    if (!file)
        throw UIOException::fromLastError(formatMessage("cannot open file '%'", path));
    return file;
}

/// The index of the first character of the file name.
std::size_t nameStart(const std::string& path) {
    const auto separator = std::find_if(path.rbegin(), path.rend(), Platform::isSeparator);
    return static_cast<std::size_t>(path.rend() - separator);
}

/// The index of the '.' of the extension, or the length of a path that has none.
std::size_t extensionStart(const std::string& path) {
    const std::size_t dot = path.rfind('.');
    return dot == std::string::npos || dot <= nameStart(path) ? path.size() : dot;
}

bool hasExtension(const std::string& name, const std::string& extension) {
    if (extension.empty())
        return true;
    const std::size_t start = extensionStart(name);
    if (start == name.size())
        return false;
    const std::string found = name.substr(start + 1);
    return Platform::fileNamesIgnoreCase() ? toLower(found) == toLower(extension) : found == extension;
}

/// What stands before the first name of an absolute path with '/' as separator.
std::string rootOf(const std::string& path) {
    const bool isNetworkPath = path.starts_with("//") && Platform::isSeparator('\\');
    if (isNetworkPath)
        return "//";
    return path.starts_with('/') ? "/" : "";
}

} // namespace

std::string getWorkingDirectory() { return Platform::workingDirectory(); }

std::string canonicalPath(const std::string& path) {
    const std::string absolute = Platform::absolutePath(path);
    const std::string root = rootOf(absolute);
    std::vector<std::string> names;
    for (const std::string& name : split(absolute, '/')) {
        // By the text alone: a ".." takes the name before it, be that a link or not, and at the root it is nothing.
        if (name == ".." && !names.empty())
            names.pop_back();
        else if (!name.empty() && name != "." && name != "..")
            names.push_back(name);
    }
    // "C:" alone is the working directory on that drive; its root has a '/'.
    const bool isBareDrive = root.empty() && names.size() == 1;
    return root + join(names, "/") + (isBareDrive ? "/" : "");
}

std::string nativePath(const std::string& path) { return Platform::nativeSeparators(path); }

std::string addTrailingSeparator(const std::string& path) {
    return path.empty() || Platform::isSeparator(path.back()) ? path : path + '/';
}

std::string getDirectory(const std::string& path) { return path.substr(0, nameStart(path)); }

std::string getFilename(const std::string& path) { return path.substr(nameStart(path)); }

std::string removeExtension(const std::string& path) { return path.substr(0, extensionStart(path)); }

std::vector<std::string> getFileList(const std::string& directory, const std::string& pattern) {
    std::vector<std::string> names;
    if (Platform::listFiles(directory, names) == Platform::DirectoryWalk::Failed)
        logWarning(formatLastError("FindNextFile error"));
    std::erase_if(names, [&pattern](const std::string& name) { return !hasExtension(name, pattern); });
    // The system's own order changes from one file system to the next, and plug-ins are taken in this one.
    std::sort(names.begin(), names.end());
    const std::string prefix = addTrailingSeparator(directory);
    for (std::string& name : names)
        name.insert(0, prefix);
    return names;
}

std::string readFile(const std::string& path) {
    const File file = openOrThrow(path, Platform::FileMode::ReadBinary);
    std::string contents;
    char block[16384];
    while (const std::size_t count = std::fread(block, 1, sizeof block, file.get()))
        contents.append(block, count);
    if (std::ferror(file.get()) != 0)
        throw UIOException::fromLastError(formatMessage("cannot read file '%'", path));
    return contents;
}

void writeFile(const std::string& path, const std::string& contents) {
    File file = openOrThrow(path, Platform::FileMode::WriteBinary);
    const bool written = std::fwrite(contents.data(), 1, contents.size(), file.get()) == contents.size();
    // The last bytes may only reach the disk, or fail to, when the file is closed.
    if (!written || std::fclose(file.release()) != 0)
        throw UIOException::fromLastError(formatMessage("cannot write file '%'", path));
}

bool keyPressed() { return Platform::keyWaiting(); }

} // namespace Zentara::Utils
