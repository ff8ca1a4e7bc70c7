#include "tools/zentara/console.h"

#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

std::string Console::words() const {
    return "zentara" + (verb.empty() ? "" : " " + verb) + (action.empty() ? "" : " " + action);
}

void tellFailure(Console& console, const ToolFailure& failure) {
    console.err << console.words() << ": " << failure.what() << '\n';
    if (!failure.remedy.empty())
        console.err << failure.remedy << '\n';
    if (!console.json)
        return;
    Json json = beginJson(console);
    json["error"] = {{"code", static_cast<int>(failure.code)},
                     {"message", failure.message},
                     {"cause", orNull(failure.cause)},
                     {"remedy", orNull(failure.remedy)}};
    if (console.lines)
        printOnOneLine(console.out, json);
    else
        print(console.out, json);
}

} // namespace Zentara::Tool
