#include "tools/zentara/cameras/parameter_changes.h"

#include <optional>

#include <zentara/utils/format.h>

#include "tools/zentara/interrupt.h"
#include "tools/zentara/supervisor.h"

namespace Zentara::Tool {

using Utils::Format;

namespace {

/// A camera may round to its steps; nobody is to take what was asked for what is.
void tellRounded(const Camera& camera, int number, const ParameterValue& asked, Console& console) {
    const Parameter now = camera.parameter(number);
    if (now.value && *now.value != asked)
        note(console, Format("parameter %: the camera took % for %") % number % valueText(*now.value) %
                          valueText(asked));
}

} // namespace

/// All are checked before the first is set. A camera can still refuse one: those before it stay, in the order in
/// which they were said, and are named by the failure, or by whoever ends the process meanwhile.
void setOneByOne(const Camera& camera, const std::vector<std::pair<int, ParameterValue>>& settings,
                 Console& console) {
    for (const auto& [number, value] : settings)
        camera.checkParameter(number, value);
    std::string done;
    {
        const InterruptWatch untilAllAreSet;
        std::optional<HalfDone> halfDone;
        for (const auto& [number, value] : settings) {
            try {
                camera.setParameter(number, value);
            } catch (const Failure& failure) {
                throw Failure(failure.code(), failure.what() + (done.empty() ? "; nothing was set"
                                                                             : "; set before it: " + done));
            }
            done += (done.empty() ? "" : ", ") + std::to_string(number);
            halfDone.emplace(std::vector<std::string>{"set before it: " + done});
        }
    }
    for (const auto& [number, value] : settings)
        tellRounded(camera, number, value, console);
}

/// A file is for the camera as a whole: a value that it does not take is named by its place in the file, and none
/// is set.
std::vector<ParameterChange> loadValues(const Camera& camera, const ParameterValues& values,
                                        const std::string& file, bool dryRun, Console& console) {
    for (const auto& [number, value] : values) {
        try {
            camera.checkParameter(number, value);
        } catch (const Failure& failure) {
            throw Failure(failure.code(), Format("'%': /values/%: %") % file % number % failure.message(),
                          failure.cause(), failure.remedy());
        }
    }
    const ParameterValues before = camera.parameterValues();
    if (dryRun)
        return changesBetween(before, values);
    camera.setParameters(values);
    for (const auto& [number, value] : values)
        tellRounded(camera, number, value, console);
    return changesBetween(before, camera.parameterValues());
}

} // namespace Zentara::Tool
