#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace Zentara::TestSupport {

/// An empty directory that goes with its scope. Its name holds a letter outside ASCII, as a user's may.
class TemporaryDirectory {
public:
    TemporaryDirectory() {
        const std::string name = "zentara-t\xC3\xA9st-" + std::to_string(std::random_device()());
        location = std::filesystem::temp_directory_path() / fromUtf8(name);
        std::filesystem::create_directories(location);
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(location, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    /// The path (UTF-8, '/' as separator) of a name in the directory; of the directory itself, with a '/', for none.
    std::string path(const std::string& name = {}) const {
        const std::u8string text = (location / fromUtf8(name)).generic_u8string();
        return std::string(text.begin(), text.end());
    }

    static std::filesystem::path fromUtf8(const std::string& text) {
        return std::filesystem::path(std::u8string(text.begin(), text.end()));
    }

private:
    std::filesystem::path location;
};

} // namespace Zentara::TestSupport
