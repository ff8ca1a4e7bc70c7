#include <zentara/rom/file_accessor.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/exceptions.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>

#include "utils/message.h"
#include "utils/platform/files.h"

namespace Zentara::ROM {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t ERASED = 0xFF;
constexpr const char* ASIDE = ".saving"; ///< ending of the file that is written in place of the image

namespace fs = std::filesystem;

fs::path pathOf(const std::string& utf8) { return fs::path(std::u8string(utf8.begin(), utf8.end())); }

/// Where a link leads in the end: the file is to be replaced, not the link.
std::string linkedFile(const std::string& fileName) {
    std::error_code failure;
    if (!fs::is_symlink(pathOf(fileName), failure))
        return fileName;
    const std::u8string target = fs::canonical(pathOf(fileName), failure).u8string();
    return failure ? fileName : std::string(target.begin(), target.end());
}

/// Who may read the old file may read the new one, and nobody else.
void copyPermissions(const std::string& from, const std::string& to) {
    std::error_code failure;
    const fs::file_status status = fs::status(pathOf(from), failure);
    if (!failure && fs::exists(status))
        fs::permissions(pathOf(to), status.permissions(), failure);
}

void discard(const std::string& fileName) {
    std::error_code ignored;
    fs::permissions(pathOf(fileName), fs::perms::owner_write, fs::perm_options::add, ignored);
    fs::remove(pathOf(fileName), ignored);
}

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

Bytes readImage(const std::string& fileName) try {
    const std::string contents = Utils::readFile(fileName);
    return {contents.begin(), contents.end()};
} catch (const Utils::UException& failure) {
    throw Plugin::IOPluginException(
        Utils::formatMessage("cannot read flash image %: %", fileName, failure.message()));
}

bool writeFlushed(const std::string& fileName, const Bytes& bytes) {
    std::unique_ptr<std::FILE, FileCloser> file(
        Utils::Platform::openFile(fileName, Utils::Platform::FileMode::WriteBinary));
    return file && std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size() &&
           Utils::Platform::flushToDisk(file.get()) && std::fclose(file.release()) == 0;
}

} // namespace

struct FileAccessor::Impl {
    std::string fileName;
    Bytes image;
    bool modified = false;

    /// What lies at an address, all of it inside the image.
    Bytes::iterator at(const char* verb, std::uint32_t address, std::size_t length) {
        if (address > image.size() || length > image.size() - address)
            throw Plugin::IOPluginException(
                Utils::Format("cannot % % bytes at address % of flash image %: it has %") % verb %
                static_cast<unsigned long long>(length) % address % fileName %
                static_cast<unsigned long long>(image.size()));
        return image.begin() + static_cast<std::ptrdiff_t>(address);
    }
};

FileAccessor::FileAccessor(const std::string& fileName)
    : impl(std::make_unique<Impl>(Impl{fileName, readImage(fileName)})) {}
FileAccessor::FileAccessor(const std::string& fileName, std::uint32_t size)
    : impl(std::make_unique<Impl>(Impl{fileName, Bytes(size, ERASED), true})) {}
FileAccessor::~FileAccessor() = default;

std::vector<std::uint8_t> FileAccessor::read(std::uint32_t address, std::uint32_t length) {
    const auto begin = impl->at("read", address, length);
    return {begin, begin + static_cast<std::ptrdiff_t>(length)};
}

void FileAccessor::write(std::uint32_t address, const std::vector<std::uint8_t>& bytes) {
    const auto begin = impl->at("write", address, bytes.size());
    if (std::equal(bytes.begin(), bytes.end(), begin))
        return;
    std::copy(bytes.begin(), bytes.end(), begin);
    impl->modified = true;
}

void FileAccessor::save() {
    const std::string file = linkedFile(impl->fileName);
    const std::string aside = file + ASIDE;
    bool isDone = writeFlushed(aside, impl->image);
    if (isDone) {
        copyPermissions(file, aside);
        isDone = Utils::Platform::replaceFile(aside, file);
    }
    if (!isDone) {
        const std::string reason = Utils::getLastError();
        discard(aside);
        throw Plugin::IOPluginException(
            Utils::formatMessage("cannot save flash image %: %", impl->fileName, reason));
    }
    impl->modified = false;
}

const std::string& FileAccessor::getFileName() const { return impl->fileName; }
const std::vector<std::uint8_t>& FileAccessor::getImage() const { return impl->image; }
bool FileAccessor::isModified() const { return impl->modified; }

} // namespace Zentara::ROM
