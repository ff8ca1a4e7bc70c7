#pragma once

#include <string>
#include <vector>

#include <zentara/utils/files.h>
#include <zentara/utils/kv_logger.h>
#include <zentara/utils/text.h>

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

    /// The messages so far of one level, without time, thread and label.
    std::vector<std::string> warnings() const { return messages("WARNING:  "); }
    std::vector<std::string> infos() const { return messages("INFO:     "); }

private:
    std::vector<std::string> messages(const std::string& label) const {
        const std::string before = "]: " + label;
        std::vector<std::string> found;
        for (const std::string& line : Utils::split(text(), '\n')) {
            const std::size_t position = line.find(before);
            if (position != std::string::npos)
                found.push_back(line.substr(position + before.size()));
        }
        return found;
    }

    TemporaryDirectory directory;

public:
    Utils::KVLogger* const logger;
};

} // namespace Zentara::TestSupport
