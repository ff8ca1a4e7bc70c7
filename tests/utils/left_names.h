#pragma once

#include <filesystem>
#include <string>

namespace Zentara::Tests {

/// Whether the system still has a named object whose name holds this text. Where names are no files they go with their
/// last user, and there is none.
inline bool isNameLeft(const std::string& text) {
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm", missing)) {
        if (entry.path().filename().string().find(text) != std::string::npos)
            return true;
    }
    return false;
}

} // namespace Zentara::Tests
