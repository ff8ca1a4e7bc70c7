#include <zentara/host/library_log.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <random>
#include <system_error>
#include <utility>

#include <zentara/utils/format.h>
#include <zentara/utils/kv_logger.h>
#include <zentara/utils/mutex.h>

#include "host/files/paths.h"
#include "host/user_log.h"

namespace Zentara::Host {

using Utils::Threading::AutoLock;

namespace {

constexpr const char* timeoutMark = "Timeout Exception: ";

/// A name that nobody else has, in the directory for such files; empty when there is none.
std::string temporaryPath() {
    std::error_code error;
    const std::filesystem::path directory = std::filesystem::temp_directory_path(error);
    std::random_device random;
    const std::string name = Utils::Format("zentara-%{:x8}%{:x8}.log") % random() % random();
    return error ? std::string() : utf8Of(directory / name);
}

} // namespace

struct LibraryLog::Impl {
    /// While the user has a log of his own, everything goes there, and what is heard of it stands here.
    const bool isHeard = userLogTarget().has_value();
    const std::string path = isHeard ? std::string() : temporaryPath();
    Utils::Threading::Mutex lock;
    bool isLogging ZENTARA_GUARDED_BY(lock) = true;     ///< the logger is held; once false it stays so
    std::ifstream file ZENTARA_GUARDED_BY(lock);        ///< not open where somebody logs already
    std::streamoff readTo ZENTARA_GUARDED_BY(lock) = 0; ///< up to which the file was read
    std::string text ZENTARA_GUARDED_BY(lock);          ///< what was read and not forgotten

    void readOn() ZENTARA_REQUIRES(lock) {
        if (!file.is_open())
            return;
        file.clear();
        // On Windows a file that was read to its end stays at its end until somebody seeks.
        file.seekg(readTo);
        std::array<char, 4096> bytes{};
        do {
            file.read(bytes.data(), bytes.size());
            text.append(bytes.data(), static_cast<std::size_t>(file.gcount()));
            readTo += file.gcount();
        } while (file);
    }
};

LibraryLog::LibraryLog(const std::string& program) : impl(std::make_unique<Impl>()) {
    if (impl->isHeard) {
        listenToUserLog([this](const std::string& message) {
            AutoLock hold(impl->lock);
            impl->text += message + '\n';
        });
        return;
    }
    static_cast<void>(
        Utils::KVLogger::createInstance(Utils::KVLogLevel_WARNING, program.c_str(), impl->path.c_str()));
    AutoLock hold(impl->lock);
    impl->file.open(pathOf(impl->path), std::ios::binary);
    // Some systems remove an open file, and it leaves nothing behind if the process crashes.
    std::error_code open;
    std::filesystem::remove(pathOf(impl->path), open);
}

LibraryLog::~LibraryLog() {
    stop();
    if (impl->isHeard)
        return;
    AutoLock hold(impl->lock);
    impl->file.close();
    std::error_code gone;
    std::filesystem::remove(pathOf(impl->path), gone);
}

void LibraryLog::stop() {
    if (impl->isHeard)
        return listenToUserLog({});
    AutoLock hold(impl->lock);
    if (std::exchange(impl->isLogging, false))
        Utils::KVLogger::release();
}

std::size_t LibraryLog::end() const {
    AutoLock hold(impl->lock);
    impl->readOn();
    return impl->text.size();
}

std::string LibraryLog::since(std::size_t place) const {
    AutoLock hold(impl->lock);
    impl->readOn();
    return place < impl->text.size() && !impl->isHeard ? impl->text.substr(place) : std::string();
}

std::string LibraryLog::timeoutSince(std::size_t place) const {
    std::string text;
    {
        AutoLock hold(impl->lock);
        impl->readOn();
        text = impl->text.substr(std::min(place, impl->text.size()));
    }
    const std::string mark = timeoutMark;
    const std::size_t found = text.find(mark);
    if (found == std::string::npos)
        return {};
    const std::size_t from = found + mark.size();
    std::string cause = text.substr(from, text.find('\n', from) - from);
    if (!cause.empty() && cause.back() == '\r') // lines of a text file on Windows
        cause.pop_back();
    return cause;
}

void LibraryLog::forget(std::size_t place) {
    AutoLock hold(impl->lock);
    impl->readOn();
    if (place < impl->text.size())
        impl->text.erase(place);
}

} // namespace Zentara::Host
