#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Zentara::Viewer {

/// What the user wants to see. Empty texts are for what was not said.
struct ViewWishes {
    std::vector<std::string> cameras;
    bool all = false;
    std::string mode;      ///< of depth
    std::string colorMode; ///< the same of colour
    std::string play;
    bool share = false;
    bool corrected = false;
    bool cloud = false;
    bool bare = false;         ///< without the panel
    std::vector<double> range; ///< millimetres: near and far; none for the usual one
    double scale = 0;          ///< 0: the desktop's
    std::vector<double> size;  ///< of the window, pixels; none for the usual one
    std::string output;        ///< where snapshots and recordings go
    std::string snapshot;
    double seconds = 0; ///< after which the window is closed; 0: never
};

/// Adds the options to a program, or to a verb that starts it. \param wishes outlives the program
void addViewOptions(CLI::App& command, ViewWishes& wishes);

/// What the window tells below all options: keys, the mouse.
[[nodiscard]] const char* viewFooter() noexcept;

/// What was given of these options, as words of a command line again.
[[nodiscard]] std::vector<std::string> wordsOf(const CLI::App& command);

} // namespace Zentara::Viewer
