#pragma once

#include <filesystem>
#include <string>

#include <zentara/utils/files.h>

#include "support/scoped_variable.h"
#include "support/temporary_directory.h"

namespace Zentara::TestSupport {

/// A simulated bus with cameras of the test's own, for one scope.
class CameraBus {
public:
    /// Says which cameras are plugged in: the elements of the file's list.
    void plug(const std::string& cameras) { write(R"({"format": 1, "cameras": [)" + cameras + "]}"); }

    /// As the documentation tells users to: nobody sees half a file.
    void write(const std::string& text) {
        Utils::writeFile(path("new.json"), text);
        std::error_code busy; // on Windows while somebody reads the file
        do {
            std::filesystem::rename(TemporaryDirectory::fromUtf8(path("new.json")),
                                    TemporaryDirectory::fromUtf8(file()), busy);
        } while (busy);
    }

    /// The file that says which cameras are plugged in.
    [[nodiscard]] std::string file() const { return path("cameras.json"); }

    /// A file of the test's own.
    [[nodiscard]] std::string path(const std::string& name = {}) const { return directory.path(name); }

private:
    TemporaryDirectory directory;
    ScopedVariable variable{"ZENTARA_SIMULATED_CAMERAS", file()};
};

} // namespace Zentara::TestSupport
