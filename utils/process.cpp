#include <zentara/utils/process.h>

#include <algorithm>
#include <vector>

#include <zentara/utils/text.h>

#include "utils/platform/directory.h"
#include "utils/platform/process.h"

namespace Zentara::Utils {

bool findProcess(const std::string& name) {
    if (name.empty()) // as a process that is just being made may be called
        return false;
    std::vector<std::string> running;
    Platform::listProcesses(running); // none where they cannot be listed
    return std::any_of(running.begin(), running.end(), [&name](const std::string& candidate) {
        return Platform::fileNamesIgnoreCase() ? toLower(candidate) == toLower(name) : candidate == name;
    });
}

bool findSimilarProcess(const std::string& name, std::string& found) {
    if (name.empty())
        return false;
    const std::string wanted = toLower(name);
    std::vector<std::string> running;
    Platform::listProcesses(running);
    const auto similar =
        std::find_if(running.begin(), running.end(), [&wanted](const std::string& candidate) {
            return toLower(candidate).find(wanted) != std::string::npos;
        });
    if (similar == running.end())
        return false;
    found = *similar;
    return true;
}

} // namespace Zentara::Utils
