#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include <zentara/utils/kv_logger.h>

namespace Testing {

/// Collects what the library logs while this object lives. One at a time in a process, and no other log.
class CapturedLog final {
public:
    CapturedLog()
        : path(std::filesystem::temp_directory_path() /
               ("zentara-log-" + std::to_string(std::random_device()()) + ".txt")) {
        Zentara::Utils::KVLogger::createInstance(Zentara::Utils::KVLogLevel_INFO, "test",
                                                 path.string().c_str());
    }
    ~CapturedLog() {
        Zentara::Utils::KVLogger::release();
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    /// The messages so far, without time, thread and level.
    [[nodiscard]] std::vector<std::string> warnings() const { return messages("]: WARNING: "); }
    [[nodiscard]] std::vector<std::string> infos() const { return messages("]: INFO:    "); }

private:
    [[nodiscard]] std::vector<std::string> messages(const std::string& label) const {
        std::vector<std::string> found;
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);) {
            if (!line.empty() && line.back() == '\r')
                line.pop_back();
            const std::size_t position = line.find(label);
            // Labels are padded to ten columns after the "]: ".
            if (position != std::string::npos)
                found.push_back(line.substr(position + 3 + 10));
        }
        return found;
    }

    std::filesystem::path path;
};

} // namespace Testing
