#include <zentara/utils/logger.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <string_view>

#include <zentara/utils/mutex.h>

#include "utils/growing_bytes.h"
#include "utils/immortal.h"
#include "utils/platform/error_text.h"
#include "utils/platform/files.h"
#include "utils/platform/local_time.h"
#include "utils/thread_tag.h"

namespace Zentara::Utils {

namespace {

constexpr std::size_t bannerWidth = 65;
constexpr std::size_t timeTextSize = 200;
constexpr std::size_t usualLine = 800; ///< bytes with all the time's room; longer ones take memory

/// Guards the instance. Never destroyed, for threads log while the process ends.
constinit Immortal<Threading::Mutex> instanceMutexStorage;

/// The labels fill their ten columns; null for a level that is never written.
const char* labelOf(KVLogLevel level) noexcept {
    switch (level) {
    case KVLogLevel_CRITICAL:
        return "CRITICAL: ";
    case KVLogLevel_ERROR:
        return "ERROR:    ";
    case KVLogLevel_WARNING:
        return "WARNING:  ";
    case KVLogLevel_INFO:
        return "INFO:     ";
    case KVLogLevel_DEBUG:
        return "DEBUG:    ";
    case KVLogLevel_VERBOSE:
        return "VERBOSE:  ";
    case KVLogLevel_OFF:
        break;
    }
    return nullptr;
}

/// The local time's text, rendered once a second.
class TimeText {
public:
    /// Empty when the time cannot be converted or rendered.
    std::string_view now() noexcept {
        const std::time_t time = std::time(nullptr);
        if (time != rendered) {
            std::tm fields{};
            size = Platform::localTime(time, fields) ? std::strftime(text, sizeof text, "%c", &fields) : 0;
            rendered = time;
        }
        return {text, size};
    }

private:
    std::time_t rendered = -1;
    std::size_t size = 0;
    char text[timeTextSize];
};

} // namespace

struct Logger::Impl {
    Impl(KVLogLevel wanted, const char* loggerName, const char* target)
        : level(wanted > KVLogLevel_INFO ? KVLogLevel_INFO : wanted), name(loggerName ? loggerName : "") {
        if (level != KVLogLevel_OFF && target)
            openTarget(target);
    }

    ~Impl() {
        if (ownsFile)
            std::fclose(file);
    }

    void openTarget(const std::string& target) {
        if (target == "-" || target == "STDOUT")
            file = stdout;
        else if (target == "STDERR")
            file = stderr;
        else
            file = Platform::openFile(target, Platform::FileMode::AppendText);
        ownsFile = file && file != stdout && file != stderr;
    }

    void writeBanner(const char* event) {
        const Threading::AutoLock lock(mutex);
        const std::string_view time = timeText.now();
        if (!file || time.empty())
            return;
        const std::string frame(bannerWidth, '=');
        writeAtOnce((frame + '\n' + name + event).append(time).append("\n").append(frame).append("\n"));
    }

    /// All but the time is put together before the lock, which the others wait for: the time, of which nobody knows how
    /// long it is, then goes in front.
    void writeLine(const char* label, std::string_view message) {
        GrowingBytes<usualLine> line;
        line.append(timeTextSize, ' ');
        line.append(": ");
        line.append(ThreadTag().text());
        line.append(": ");
        line.append(label);
        line.append(message);
        line.append(1, '\n');
        const Threading::AutoLock lock(mutex);
        const std::string_view time = timeText.now();
        if (time.empty())
            return;
        const std::size_t start = timeTextSize - time.size();
        std::memcpy(line.data() + start, time.data(), time.size());
        writeAtOnce({line.data() + start, line.size() - start});
    }

    /// In one write, so that lines of several processes in one file do not mix, and flushed: the line before a crash is
    /// the one that is wanted.
    void writeAtOnce(std::string_view text) {
        if (ownsFile) {
            Platform::writeThrough(file, text);
        } else { // the program writes there as well, and what it wrote before comes first
            std::fwrite(text.data(), 1, text.size(), file);
            std::fflush(file);
        }
    }

    const KVLogLevel level;
    const std::string name;
    std::FILE* file = nullptr; ///< null while logging is off
    bool ownsFile = false;     ///< false for the standard streams
    Threading::Mutex mutex;    ///< around each line
    TimeText timeText ZENTARA_GUARDED_BY(mutex);
};

Logger* Logger::_instance = nullptr;
Threading::Mutex& Logger::_instanceMutex = instanceMutexStorage.object;

Logger* Logger::instance(KVLogLevel level, const char* name, const char* target) {
    const Platform::LastErrorKeeper keeper;
    const Threading::AutoLock lock(_instanceMutex);
    if (!_instance)
        _instance = new Logger(level, name, target);
    return _instance;
}

void Logger::release() {
    const Platform::LastErrorKeeper keeper;
    const Threading::AutoLock lock(_instanceMutex);
    delete _instance;
    _instance = nullptr;
}

Logger::Logger(KVLogLevel level, const char* name, const char* target) : impl(new Impl(level, name, target)) {
    try {
        impl->writeBanner(" log started ");
    } catch (...) {
        // Without memory there is no banner.
    }
}

Logger::~Logger() {
    try {
        impl->writeBanner(" log ended ");
    } catch (...) {
        // Without memory there is no banner.
    }
    delete impl;
}

void Logger::log(KVLogLevel level, const std::string& message) noexcept {
    if (!impl->file || level > impl->level)
        return;
    const char* label = labelOf(level);
    if (!label)
        return;
    const Platform::LastErrorKeeper keeper;
    try {
        impl->writeLine(label, message);
    } catch (...) {
        // Without memory there is no line.
    }
}

void Logger::critical(const std::string& message) noexcept { log(KVLogLevel_CRITICAL, message); }
void Logger::error(const std::string& message) noexcept { log(KVLogLevel_ERROR, message); }
void Logger::warning(const std::string& message) noexcept { log(KVLogLevel_WARNING, message); }
void Logger::info(const std::string& message) noexcept { log(KVLogLevel_INFO, message); }
void Logger::debug(const std::string&) noexcept {}
void Logger::verbose(const std::string&) noexcept {}

} // namespace Zentara::Utils
