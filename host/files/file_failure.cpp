#include "host/files/file_failure.h"

#include <cstdio>
#include <iostream>
#include <memory>
#include <vector>

#include <zentara/utils/exceptions.h>
#include <zentara/utils/format.h>

#include "utils/platform/files.h"
#include "utils/platform/new_file.h"
#include <zentara/host/failure.h>

namespace Zentara::Host {

using Utils::Format;

void failFile(const char* what, const std::string& path) {
    const Utils::Platform::FileTrouble trouble = Utils::Platform::lastFileTrouble();
    const std::string reason = Utils::getLastError();
    switch (trouble) {
    case Utils::Platform::FileTrouble::Permission:
        throw FileFailure(Failure::Permission, Format("cannot % '%': %") % what % path % reason);
    case Utils::Platform::FileTrouble::InUse:
        throw FileFailure(Failure::Busy,
                          Format("cannot % '%': it is in use by another program (%)") % what % path % reason);
    default:
        throw FileFailure(Failure::Failed, Format("cannot % '%': %") % what % path % reason);
    }
}

std::string readFileBytes(const std::string& path, std::uint64_t most) {
    struct Closer {
        void operator()(std::FILE* file) const noexcept { std::fclose(file); }
    };
    const std::unique_ptr<std::FILE, Closer> file(
        Utils::Platform::openFile(path, Utils::Platform::FileMode::ReadBinary));
    if (!file)
        failFile("read", path);
    std::string bytes;
    std::vector<char> block(std::size_t{1} << 16);
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), file.get())) {
        bytes.append(block.data(), count);
        if (bytes.size() > most)
            throw Failure(Failure::Failed, Format("cannot read '%': it has more than % bytes") % path %
                                               static_cast<unsigned long long>(most));
    }
    if (std::ferror(file.get()) != 0)
        failFile("read", path);
    return bytes;
}

std::string readInputBytes(std::uint64_t most) {
    std::string bytes;
    std::vector<char> block(std::size_t{1} << 16);
    while (std::cin.read(block.data(), static_cast<std::streamsize>(block.size())), std::cin.gcount() > 0) {
        bytes.append(block.data(), static_cast<std::size_t>(std::cin.gcount()));
        if (bytes.size() > most)
            throw Failure(Failure::Failed, Format("standard input has more than % bytes") %
                                               static_cast<unsigned long long>(most));
    }
    return bytes;
}

} // namespace Zentara::Host
