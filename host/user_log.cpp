#include "host/user_log.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <exception>
#include <string_view>
#include <utility>
#include <vector>

#include <zentara/host/failure.h>
#include <zentara/host/nearest_word.h>
#include <zentara/utils/environment_variable.h>
#include <zentara/utils/log_area.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/text.h>

#include "host/files/file_failure.h"
#include "utils/platform/files.h"

namespace Zentara::Host {

using Utils::KVLogger;
using Utils::KVLogLevel;
using Utils::LogArea;
using Utils::Threading::AutoLock;

namespace {

constexpr const char* variableName = "ZENTARASDK_LOG";

/// At the place of their numbers.
constexpr std::array<std::string_view, 5> levelNames{"off", "critical", "error", "warning", "info"};
constexpr std::array<std::string_view, 5> areaNames{"devices", "plugins", "chips", "rom", "streams"};
using Levels = std::array<KVLogLevel, areaNames.size()>;

struct Wish {
    Levels levels{};
    std::string target = "STDERR";

    [[nodiscard]] bool isStandardStream() const {
        return target == "-" || target == "STDOUT" || target == "STDERR";
    }
};

/// The number of a name. \throws Failure
template<std::size_t Count>
std::size_t numberOf(const std::string& word, const std::array<std::string_view, Count>& names,
                     const char* what, const std::string& value) {
    const auto found = std::find(names.begin(), names.end(), word);
    if (found != names.end())
        return static_cast<std::size_t>(found - names.begin());
    const std::vector<std::string> known(names.begin(), names.end());
    const std::string nearest = nearestWord(word, known);
    throw Failure(Failure::Usage, std::string("cannot log as ") + variableName + "=" + value + " says",
                  "there is no " + std::string(what) + " '" + word + "'",
                  (nearest.empty() ? "" : "did you mean '" + nearest + "'? ") + std::string(what) + "s are " +
                      Utils::join(known, ", ") + "; LEVEL[,AREA=LEVEL...][@TARGET]");
}

Wish wishOf(const std::string& value) {
    Wish wish;
    const std::size_t sign = value.find('@');
    if (sign != std::string::npos)
        wish.target = value.substr(sign + 1);
    if (wish.target.empty())
        throw Failure(Failure::Usage, std::string("cannot log as ") + variableName + "=" + value + " says",
                      "the target after '@' is empty", "name a file, STDERR, or - for standard output");
    std::array<bool, areaNames.size()> isNamed{};
    auto rest = Utils::KVLogLevel_OFF;
    for (const std::string& word : Utils::split(value.substr(0, sign), ',')) {
        const std::size_t equals = word.find('=');
        const std::size_t begin = equals == std::string::npos ? 0 : equals + 1;
        const auto level = static_cast<KVLogLevel>(numberOf(word.substr(begin), levelNames, "level", value));
        if (equals == std::string::npos) {
            rest = level;
            continue;
        }
        const std::size_t area = numberOf(word.substr(0, equals), areaNames, "area", value);
        wish.levels.at(area) = level;
        isNamed.at(area) = true;
    }
    for (std::size_t area = 0; area < areaNames.size(); ++area) {
        if (!isNamed.at(area))
            wish.levels.at(area) = rest;
    }
    return wish;
}

/// The logger itself leaves out what it cannot write, silently; a user who asked for it is to know.
void checkTarget(const Wish& wish) {
    if (wish.isStandardStream())
        return;
    try {
        std::FILE* const file = Utils::Platform::openFile(wish.target, Utils::Platform::FileMode::AppendText);
        if (file == nullptr)
            failFile("write the log to", wish.target);
        std::fclose(file);
    } catch (const Failure& failure) {
        throw Failure(failure.code(), failure.message(), failure.cause(),
                      std::string(variableName) + " names the file");
    }
}

/// The log of this process, if it is on. Never destroyed: threads log while the process ends.
struct UserLog {
    Utils::Threading::Mutex lock;
    bool isDecided ZENTARA_GUARDED_BY(lock) = false; ///< the variable was followed, or there is none
    Wish wish; ///< of one that is on; written before `isOn`, constant from then on
    std::atomic<bool> isOn{false};
    Utils::Threading::Mutex earLock; ///< held while the ear is told
    LogEar ear ZENTARA_GUARDED_BY(earLock);
};

UserLog& userLog() {
    static UserLog& log = *new UserLog;
    return log;
}

bool passes(LogArea area, KVLogLevel level, const std::string& message) {
    UserLog& log = userLog();
    if (level <= Utils::KVLogLevel_WARNING) {
        try {
            AutoLock hold(log.earLock);
            if (log.ear)
                log.ear(message);
        } catch (const std::exception&) {
            // Without memory nobody is told.
        }
    }
    const auto index = static_cast<std::size_t>(area);
    return index < log.wish.levels.size() && level <= log.wish.levels[index];
}

/// Ends the log with its banner when the program ends, and takes the filter away before the library may be unloaded.
struct End {
    ~End() {
        if (!userLog().isOn.exchange(false))
            return;
        KVLogger::release();
        Utils::setLogFilter(nullptr);
    }
};

void begin(UserLog& log, const std::string& value) ZENTARA_REQUIRES(log.lock) {
    Wish wish = wishOf(value);
    checkTarget(wish);
    if (KVLogger* own = KVLogger::instance()) {
        own->warning(std::string(variableName) + " is not followed: the program logs already");
        KVLogger::release();
        return;
    }
    log.wish = std::move(wish);
    Utils::setLogFilter(&passes);
    const KVLogLevel most = *std::max_element(log.wish.levels.begin(), log.wish.levels.end());
    static_cast<void>(KVLogger::createInstance(most, "zentara", log.wish.target.c_str()));
    log.isOn = true;
    static const End atTheEnd;
}

} // namespace

void beginUserLog() {
    UserLog& log = userLog();
    AutoLock hold(log.lock);
    if (log.isDecided)
        return;
    Utils::EnvironmentVariable variable(variableName);
    if (variable.isDefined())
        begin(log, variable.getValue());
    log.isDecided = true;
}

void passOverUserLog() {
    AutoLock hold(userLog().lock);
    userLog().isDecided = true;
}

std::optional<std::string> userLogTarget() {
    UserLog& log = userLog();
    return log.isOn ? std::optional(log.wish.target) : std::nullopt;
}

void logInfo(const std::string& text) noexcept {
    if (!userLog().isOn)
        return;
    try {
        if (KVLogger* log = KVLogger::instance()) {
            log->info(text);
            KVLogger::release();
        }
    } catch (const std::exception&) {
        // Without memory there is no line.
    }
}

void listenToUserLog(LogEar ear) {
    AutoLock hold(userLog().earLock);
    userLog().ear = std::move(ear);
}

} // namespace Zentara::Host
