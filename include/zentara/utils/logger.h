#pragma once

#include <string>

#include <zentara/export.h>
#include <zentara/utils/kv_logger.h>

namespace Zentara::Utils {

/// Writes timestamped lines to a file, to standard output or to standard error, framed by a start and an end
/// banner. One for the process, used through KVLogger. A line reads
///
///     LOCAL TIME: [THREADID]: LEVEL:    message
///
/// with the thread identifier in eight hexadecimal digits and the level padded to ten columns, and is
/// flushed. A target that cannot be opened leaves the logger off, silently; a line or a banner whose time the
/// system cannot tell is not written. Safe: lines never mix.
class ZENTARA_API Logger {
public:
    /// Creates the logger on the first call; later calls return it and ignore the arguments.
    /// The arguments are those of KVLogger::createInstance().
    static Logger* instance(KVLogLevel level, const char* name, const char* target);

    /// Destroys the logger, whoever still uses it: its calls are not counted. Without a logger it does
    /// nothing.
    static void release();

    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;

    /// Writes one line if the level is 1 to 4 and not above the logger's own.
    void log(KVLogLevel level, const std::string& message) noexcept;
    void critical(const std::string& message) noexcept;
    void error(const std::string& message) noexcept;
    void warning(const std::string& message) noexcept;
    void info(const std::string& message) noexcept;
    /// The last two accept a message and do nothing.
    void debug(const std::string& message) noexcept;
    void verbose(const std::string& message) noexcept;

protected:
    Logger(KVLogLevel level, const char* name, const char* target);
    virtual ~Logger();

private:
    struct Impl;

    static Logger* _instance;                ///< null without a logger; looked at with the mutex held
    static Threading::Mutex& _instanceMutex; ///< never destroyed

    Impl* impl; ///< owned
};

} // namespace Zentara::Utils
