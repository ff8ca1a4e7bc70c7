#pragma once

#include <cstdint>
#include <string>

#include <zentara/export.h>
#include <zentara/utils/kv_logger.h>

namespace Zentara::Utils {

/// What a line of the log is about. No line shows it: it is there for a filter to choose by.
enum LogArea : std::int32_t {
    LogArea_DEVICES = 0, ///< cameras, and the calls into their devices: what no scope says otherwise
    LogArea_PLUGINS = 1, ///< what is found in the plug-in directory, loaded and made
    LogArea_CHIPS = 2,   ///< registers, buses and firmware of the cameras' controllers
    LogArea_ROM = 3,     ///< the storage of calibration, and what is read from it
    LogArea_STREAMS = 4, ///< frames, from the beginning of a stream to its end
};

/// What this thread logs while it lives is about that area, the innermost scope's. Bound.
class ZENTARA_API LogAreaScope final {
public:
    explicit LogAreaScope(LogArea area) noexcept;
    ~LogAreaScope();
    LogAreaScope(const LogAreaScope&) = delete;
    LogAreaScope& operator=(const LogAreaScope&) = delete;

    /// That of the calling thread. Safe.
    [[nodiscard]] static LogArea current() noexcept;

private:
    const LogArea outer;
};

/// Says whether a message is to be written. Called on the thread that logs, with no lock held; must not throw, and not log.
using LogFilter = bool (*)(LogArea area, KVLogLevel level, const std::string& message);

/// From now on every message of KVLogger is put before the filter, whatever its level; what that refuses goes nowhere.
/// Null, as at first, lets all pass. A thread may be in the filter of before when this returns, so that one has to stay.
/// Safe.
ZENTARA_API void setLogFilter(LogFilter filter) noexcept;

} // namespace Zentara::Utils
