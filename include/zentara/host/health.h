#pragma once

#include <string>
#include <vector>

#include <zentara/host/export.h>
#include <zentara/host/plugins.h>

namespace Zentara::Host {

/// One thing that was looked at, and what was found. A plain value; its texts are fit for a terminal.
struct HealthFinding {
    /// How bad it is.
    enum class State {
        Well,
        Hint,  ///< nothing is wrong, but somebody may wonder at what comes of it
        Wrong, ///< cameras are not found, cannot be used, or are not what they seem
    };

    /// What was looked at: install-root, plugin-directory, plugin, library-version, library-copy, log, cameras,
    /// camera-permission, camera-holder, usb-speed, microphone, udev-rule or shared-memory.
    std::string check;
    State state = State::Well;
    std::string text;
    std::string remedy; ///< what helps; empty where nothing has to
};

/// Where, and how, is looked.
struct HealthOptions {
    /// How plug-ins are asked.
    PluginQuestions plugins{};
    /// Where the system's own files begin, as of a container or an image that is looked at from outside: with a separator
    /// at its end, UTF-8. What no file tells, such as the install root, is that of this program all the same.
    std::string system = "/";
};

/// The findings, in the order in which one stands on the other. All that was looked at is there, also what is well.
using HealthReport = std::vector<HealthFinding>;

/// Looks at everything that may keep a program from its cameras: the install root, the plug-ins, the versions of the
/// library, the log, the cameras, and on Linux the kernel's video nodes, the rule for udev and what killed programs have left
/// in shared memory. Changes nothing, and streams nothing; what cannot be found out is left out. Lists the cameras, and so
/// takes as long as Cameras::list(). Safe.
[[nodiscard]] ZENTARA_HOST_API HealthReport examine(const HealthOptions& options = {});

} // namespace Zentara::Host
