#include <zentara/host/output_file.h>

#include <filesystem>
#include <system_error>
#include <utility>

#include <zentara/host/failure.h>
#include <zentara/utils/format.h>

#include "host/files/file_failure.h"
#include "host/files/paths.h"
#include "utils/platform/new_file.h"

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
    const std::filesystem::path target = std::filesystem::canonical(pathOf(path), failure);
    return failure ? path : utf8Of(target);
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

/// "scan.2.zrec" for "scan.zrec".
std::string freeNameBeside(const std::string& path) {
    const std::filesystem::path taken = pathOf(path);
    for (int number = 2;; ++number) {
        std::filesystem::path name = taken;
        name.replace_extension(std::to_string(number));
        name += taken.extension();
        if (std::string text = utf8Of(name); !isThere(text))
            return text;
    }
}

} // namespace

struct OutputFile::Impl {
    Impl(std::string path, IfThere ifThere)
        : finalPath(std::move(path)), target(linkedFile(finalPath)), rule(ifThere) {}

    const std::string finalPath;
    const std::string target; ///< where a link leads
    const IfThere rule;
    Utils::Platform::Owned<FileLock> right; ///< to the target, as long as this lives
    Utils::Platform::Owned<NewFile> part;   ///< null once discarded
    bool isCommitted = false;               ///< it has a name, and stays as it is

    /// \throws Failure (Usage) once it was committed or discarded
    [[nodiscard]] NewFile& writable() const {
        if (!part || isCommitted)
            throw Failure(Failure::Usage, Format("cannot write '%': it is %") % finalPath %
                                              (part ? "complete already" : "given up"));
        return *part;
    }
};

OutputFile::OutputFile(std::string path, const Rules& rules)
    : impl(std::make_unique<Impl>(std::move(path), rules.ifThere)) {
    const std::string& name = impl->finalPath;
    if (name.empty())
        throw Failure(Failure::Usage, "the name of the file is empty");
    const bool isThere = checkPlace(impl->target);
    if (isThere && impl->rule == IfThere::Refuse)
        throw Failure(Failure::Usage,
                      Format("'%' is there already%") % name % (rules.hint.empty() ? "" : "; " + rules.hint));
    if (isThere && impl->rule == IfThere::Keep)
        throw Failure(Failure::Usage,
                      Format("'%' is there already and is not replaced: name another file") % name);
    impl->right.reset(FileLock::create(impl->target, waitMilliseconds));
    if (!impl->right)
        failFile("write", name);
    // Where no file is yet there may be no right to hold: what another program has written so far shows it.
    if (Utils::Platform::removeLeftParts(impl->target) && !impl->right->found())
        throw Failure(Failure::Busy, Format("cannot write '%': another program is writing it") % name);
    impl->part.reset(NewFile::create(impl->target, rules.like.empty() ? impl->target : rules.like));
    if (!impl->part)
        failFile("write", name);
}

OutputFile::~OutputFile() = default;

const std::string& OutputFile::path() const noexcept { return impl->finalPath; }

const std::string& OutputFile::partPath() const noexcept { return impl->part->partPath(); }

void OutputFile::write(std::string_view bytes) {
    cut(0);
    append(bytes.data(), bytes.size());
}

void OutputFile::append(const void* data, std::size_t size) {
    if (!impl->writable().append(data, size))
        failFile("write", impl->finalPath);
}

void OutputFile::patch(std::uint64_t position, const void* data, std::size_t size) {
    if (!impl->writable().patch(position, data, size))
        failFile("write", impl->finalPath);
}

void OutputFile::cut(std::uint64_t size) {
    if (!impl->writable().resize(size))
        failFile("write", impl->finalPath);
}

std::uint64_t OutputFile::size() const noexcept { return impl->part ? impl->part->size() : 0; }

bool OutputFile::isCommitted() const noexcept { return impl->isCommitted; }

void OutputFile::commit() {
    if (impl->isCommitted)
        return;
    NewFile& part = impl->writable();
    const bool replaces = impl->rule == IfThere::Replace && impl->right->found();
    impl->isCommitted = part.take(impl->target, replaces, waitMilliseconds);
    if (impl->isCommitted)
        return;
    if (Utils::Platform::lastFileTrouble() != FileTrouble::Exists)
        failFile("write", impl->finalPath);
    const std::string taken =
        Format("cannot write '%': another program has made it meanwhile") % impl->finalPath;
    const std::string other = freeNameBeside(impl->target);
    impl->isCommitted = part.take(other, false, waitMilliseconds);
    if (impl->isCommitted)
        throw Failure(Failure::Busy, taken,
                      std::string(Format("what was to stand in it is kept in '%'") % other));
    throw Failure(Failure::Busy, taken);
}

void OutputFile::discard() noexcept { impl->part.reset(); }

std::string unusedPath(const std::string& stem, const std::string& ending) {
    std::string path = stem + "." + ending;
    for (int number = 2; isThere(path); ++number)
        path = Format("%-%.%") % stem % number % ending;
    return path;
}

void writeOutputFile(const std::string& path, std::string_view bytes, const OutputFile::Rules& rules) {
    OutputFile file(path, rules);
    file.write(bytes);
    file.commit();
}

} // namespace Zentara::Host
