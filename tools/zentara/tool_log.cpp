#include "tools/zentara/tool_log.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <random>
#include <system_error>

#include <zentara/utils/format.h>

#include "host/files/paths.h"

namespace Zentara::Tool {

using Utils::Threading::AutoLock;

namespace {

std::atomic<ToolLog*> present = nullptr;

constexpr const char* timeoutMark = "Timeout Exception: ";

/// A name that nobody else has, in the directory for such files; empty when there is none.
std::string temporaryPath() {
    std::error_code error;
    const std::filesystem::path directory = std::filesystem::temp_directory_path(error);
    std::random_device random;
    const std::string name = Utils::Format("zentara-%{:x8}%{:x8}.log") % random() % random();
    const std::u8string text = (directory / name).u8string();
    return error ? std::string() : std::string(text.begin(), text.end());
}

} // namespace

ToolLog::ToolLog(bool isWanted) : wanted(isWanted), path(temporaryPath()) {
    logger = Utils::KVLogger::createInstance(Utils::KVLogLevel_WARNING, "zentara", path.c_str());
    AutoLock hold(lock);
    file.open(pathOf(path), std::ios::binary);
    std::error_code
        open; // some systems remove an open file, and it leaves nothing behind if the process crashes
    std::filesystem::remove(pathOf(path), open);
    present = this;
}

ToolLog::~ToolLog() {
    present = nullptr;
    Utils::KVLogger::release();
    show();
    AutoLock hold(lock);
    file.close();
    std::error_code gone;
    std::filesystem::remove(pathOf(path), gone);
}

ToolLog* ToolLog::current() noexcept { return present; }

std::size_t ToolLog::end() {
    AutoLock hold(lock);
    readOn();
    return text.size();
}

std::string ToolLog::timeoutSince(std::size_t place) {
    AutoLock hold(lock);
    readOn();
    const std::string mark = timeoutMark;
    const std::size_t found = text.find(mark, place);
    if (found == std::string::npos)
        return {};
    const std::size_t from = found + mark.size();
    std::string cause = text.substr(from, text.find('\n', from) - from);
    if (!cause.empty() && cause.back() == '\r')
        cause.pop_back();
    return cause;
}

void ToolLog::show() {
    AutoLock hold(lock);
    if (!wanted || isSilent)
        return;
    readOn();
    std::fwrite(text.data() + shown, 1, text.size() - shown, stderr);
    shown = text.size();
}

void ToolLog::readOn() {
    if (!file.is_open())
        return;
    file.clear();
    file.seekg(readTo); // on Windows a file that was read to its end stays at its end until somebody seeks
    std::array<char, 4096> bytes{};
    do {
        file.read(bytes.data(), bytes.size());
        text.append(bytes.data(), static_cast<std::size_t>(file.gcount()));
        readTo += file.gcount();
    } while (file);
}

ToolLog::Silence::Silence() : exceptions(std::uncaught_exceptions()) {
    if (ToolLog* log = current()) {
        log->show();
        from = log->end();
        AutoLock hold(log->lock);
        log->isSilent = true;
    }
}

ToolLog::Silence::~Silence() {
    ToolLog* log = current();
    if (log == nullptr)
        return;
    AutoLock hold(log->lock);
    log->readOn();
    log->isSilent = false;
    if (std::uncaught_exceptions() == exceptions)
        log->text.erase(from);
}

} // namespace Zentara::Tool
