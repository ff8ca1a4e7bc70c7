#include "host/files/pending_file.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include <zentara/utils/format.h>

#include "host/files/file_failure.h"
#include "host/files/paths.h"
#include <zentara/host/failure.h>

namespace Zentara::Host {

using Utils::Format;
using Utils::Platform::FileKind;
using Utils::Platform::FileLock;
using Utils::Platform::FileTrouble;
using Utils::Platform::NewFile;

namespace {

constexpr unsigned long waitMilliseconds = 1000; ///< for a writer, or for a reader that is in the way

/// The file is to be replaced, not a link to it.
std::string linkedFile(const std::string& path) {
    std::error_code failure;
    if (!std::filesystem::is_symlink(pathOf(path), failure))
        return path;
    const std::u8string target = std::filesystem::canonical(pathOf(path), failure).u8string();
    return failure ? path : std::string(target.begin(), target.end());
}

/// Whether a file is there.
bool checkPlace(const std::string& path) {
    switch (Utils::Platform::fileKind(path)) {
    case FileKind::Missing:
        return false;
    case FileKind::Regular:
        return true;
    case FileKind::DeadLink:
        throw Failure(Failure::Failed,
                      Format("cannot write '%': it is a link to a file that is not there") % path);
    case FileKind::Unknown:
        failFile("write", path);
    default:
        throw Failure(Failure::Failed, Format("cannot write '%': it is there and no file") % path);
    }
}

} // namespace

PendingFile::PendingFile(std::string path, IfThere ifThere, const std::string& like)
    : finalPath(std::move(path)), target(linkedFile(finalPath)), rule(ifThere) {
    if (finalPath.empty())
        throw Failure(Failure::Usage, "the name of the file is empty");
    const bool isThere = checkPlace(target);
    if (isThere && rule == IfThere::Refuse)
        throw Failure(Failure::Usage, Format("'%' is there already; --force replaces it") % finalPath);
    if (isThere && rule == IfThere::Keep)
        throw Failure(Failure::Failed,
                      Format("'%' is there already and is not replaced: name another file") % finalPath);
    right.reset(FileLock::create(target, waitMilliseconds));
    if (!right)
        failFile("write", finalPath);
    Utils::Platform::removeLeftParts(target);
    part.reset(NewFile::create(target, like.empty() ? target : like));
    if (!part)
        failFile("write", finalPath);
}

void PendingFile::write(const std::string& bytes) {
    cut(0);
    append(bytes.data(), bytes.size());
}

void PendingFile::append(const void* data, std::size_t size) {
    if (!part->append(data, size))
        failFile("write", finalPath);
}

void PendingFile::patch(std::uint64_t position, const void* data, std::size_t size) {
    if (!part->patch(position, data, size))
        failFile("write", finalPath);
}

void PendingFile::cut(std::uint64_t size) {
    if (!part->resize(size))
        failFile("write", finalPath);
}

void PendingFile::commit() {
    if (part->take(target, rule == IfThere::Replace && right->found(), waitMilliseconds))
        return;
    if (Utils::Platform::lastFileTrouble() == FileTrouble::Exists)
        throw Failure(Failure::Busy,
                      Format("cannot write '%': another program has made it meanwhile") % finalPath);
    failFile("write", finalPath);
}

} // namespace Zentara::Host
