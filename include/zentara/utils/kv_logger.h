#pragma once

#include <cstdint>
#include <string>

#include <zentara/export.h>

namespace Zentara::Utils {

namespace Threading {
class Mutex;
}

/// Severity of a log message; the smaller, the more severe.
enum KVLogLevel : std::int32_t {
    KVLogLevel_OFF = 0,      ///< as a logger's level: nothing; no message has it
    KVLogLevel_CRITICAL = 1, ///< the process cannot go on as it should
    KVLogLevel_ERROR = 2,    ///< something was not done
    KVLogLevel_WARNING = 3,  ///< done, but not as it should be; every plug-in exception logs one
    KVLogLevel_INFO = 4,     ///< what a reader of the log may want to know
    KVLogLevel_DEBUG = 5,    ///< never written, as the next one
    KVLogLevel_VERBOSE = 6
};

/// The process-wide log that everything here writes to. Each message goes to the Logger (file or standard
/// stream) and, for levels 1 to 4, to the Windows event log or the system log, source "ZentaraSDK".
///
/// Counted: the first createInstance() makes the instance; each createInstance(), and each instance() that
/// returned one, is paired with one release(), the last of which destroys it. Safe, at process
/// exit too. Logging never throws, never reports a failure of its own and leaves the thread's last system
/// error as it was.
class ZENTARA_API KVLogger {
public:
    /// Creates the instance if there is none, otherwise returns the existing one and ignores the arguments.
    /// \param level   most verbose level written by the Logger, above 4 taken as 4. 0 turns the Logger off,
    ///                while levels 1 to 4 still go to the system's log.
    /// \param name    appears in the start and end banners.
    /// \param target  "-" or "STDOUT", "STDERR", or the path (UTF-8) of a file to append to; null for none.
    static KVLogger* createInstance(KVLogLevel level, const char* name, const char* target);

    /// The existing instance with its count raised, or null if none was created.
    static KVLogger* instance();

    /// Gives back one count. Without an instance it does nothing.
    static void release();

    KVLogger(const KVLogger&) = delete;
    KVLogger& operator=(const KVLogger&) = delete;

    /// One line. \param message UTF-8
    void log(KVLogLevel level, std::string message) noexcept;
    void critical(std::string message) noexcept;
    void error(std::string message) noexcept;
    void warning(std::string message) noexcept;
    void info(std::string message) noexcept;
    /// The last two never produce output anywhere.
    void debug(std::string message) noexcept;
    void verbose(std::string message) noexcept;

protected:
    virtual ~KVLogger();

private:
    struct Impl;

    KVLogger(KVLogLevel level, const char* name, const char* target);

    static KVLogger* m_instance;              ///< null, or counted; looked at with the mutex held
    static Threading::Mutex& m_instanceMutex; ///< never destroyed, for logging goes on at process exit

    Impl* impl; ///< owned
};

} // namespace Zentara::Utils
