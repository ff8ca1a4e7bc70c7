#include "tools/zentara/pending_file.h"

#include <filesystem>
#include <random>
#include <system_error>
#include <utility>

#include <zentara/utils/files.h>
#include <zentara/utils/format.h>

#include "tools/zentara/exit_code.h"
#include "tools/zentara/paths.h"

namespace Zentara::Tool {

using Utils::Format;

namespace {

/// Two programs that write the same file at once write parts of their own; the later one wins.
std::string partOf(const std::string& path) {
    return Format("%.%{:x8}.part") % path % static_cast<unsigned>(std::random_device()());
}

} // namespace

PendingFile::PendingFile(std::string path) : finalPath(std::move(path)), temporaryPath(partOf(finalPath)) {
    if (finalPath.empty())
        throw ToolFailure(ExitCode_USAGE, "the name of the file is empty");
    std::error_code ignored;
    const auto status = std::filesystem::status(pathOf(finalPath), ignored);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        throw ToolFailure(ExitCode_FAILED, Format("cannot write '%': it is there and no file") % finalPath);
    write({});
    pending = true;
}

PendingFile::~PendingFile() { discard(); }

void PendingFile::write(const std::string& bytes) {
    attempt("write '" + finalPath + "'", [&] { Utils::writeFile(temporaryPath, bytes); });
}

void PendingFile::discard() noexcept {
    std::error_code ignored;
    if (pending)
        std::filesystem::remove(pathOf(temporaryPath), ignored);
    pending = false;
}

void PendingFile::commit() {
    std::error_code error;
    std::filesystem::rename(pathOf(temporaryPath), pathOf(finalPath), error);
    if (error)
        throw ToolFailure(ExitCode_FAILED, Format("cannot rename '%' to '%': %") % temporaryPath % finalPath %
                                               error.message());
    pending = false;
}

} // namespace Zentara::Tool
