#include <zentara/rom/file_accessor.h>

#include <algorithm>
#include <filesystem>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/exceptions.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>

#include "utils/message.h"
#include "utils/platform/new_file.h"

namespace Zentara::ROM {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t ERASED = 0xFF;
constexpr unsigned long WAIT_MILLISECONDS = 1000; ///< for another writer, or a reader that is in the way

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

Bytes readImage(const std::string& fileName) try {
    const std::string contents = Utils::readFile(fileName);
    return {contents.begin(), contents.end()};
} catch (const Utils::UException& failure) {
    throw Plugin::IOPluginException(
        Utils::formatMessage("cannot read flash image %: %", fileName, failure.message()));
}

} // namespace

struct FileAccessor::Impl {
    std::string fileName;  ///< UTF-8, as it was given: a link is followed when it is saved
    Bytes image;           ///< never changes its size
    bool modified = false; ///< the image differs from what was opened or last saved

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
    using namespace Utils::Platform;
    const std::string path = linkedFile(impl->fileName);
    const auto fail = [this] {
        const std::string reason = Utils::getLastError();
        throw Plugin::IOPluginException(
            Utils::formatMessage("cannot save flash image %: %", impl->fileName, reason));
    };
    // The lock for the length of the saving alone: who changes what others change too must look before. The part is
    // flushed and takes the name in one step, so a reader finds the old image or the new one.
    const Owned<FileLock> right(FileLock::create(path, WAIT_MILLISECONDS));
    if (!right)
        fail();
    removeLeftParts(path);
    const Owned<NewFile> file(NewFile::create(path, path));
    if (!file || !file->append(impl->image.data(), impl->image.size()) ||
        !file->take(path, right->found(), WAIT_MILLISECONDS))
        fail();
    impl->modified = false;
}

const std::string& FileAccessor::getFileName() const { return impl->fileName; }
const std::vector<std::uint8_t>& FileAccessor::getImage() const { return impl->image; }
bool FileAccessor::isModified() const { return impl->modified; }

} // namespace Zentara::ROM
