#pragma once

#include <string>

#include <zentara/utils/files.h>
#include <zentara/utils/kv_logger.h>

#include "support/temporary_directory.h"

namespace Zentara::TestSupport {

/// Sends the log to a file of its own while it lives.
class LogCapture {
public:
    explicit LogCapture(Utils::KVLogLevel level = Utils::KVLogLevel_INFO)
        : logger(Utils::KVLogger::createInstance(level, "test", path().c_str())) {}
    ~LogCapture() { Utils::KVLogger::release(); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::string path() const { return directory.path("log.txt"); }

    /// Everything written so far, banners included, with '\n' at the line ends.
    std::string text() const {
        std::string contents = Utils::readFile(path());
        std::erase(contents, '\r');
        return contents;
    }

private:
    TemporaryDirectory directory;

public:
    Utils::KVLogger* const logger;
};

} // namespace Zentara::TestSupport
