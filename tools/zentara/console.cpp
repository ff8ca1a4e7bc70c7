#include "tools/zentara/console.h"

#include <zentara/host/visible_text.h>

#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

std::string Console::words() const {
    return "zentara" + (verb.empty() ? "" : " " + verb) + (action.empty() ? "" : " " + action);
}

void tellLine(std::ostream& err, const std::string& text) { err << visibleText(text) << std::endl; }

std::string printable(const std::string& text) { return visibleText(text); }

Host::Note notesTo(std::ostream& err) {
    return [&err](const std::string& text) { tellLine(err, "zentara: " + text); };
}

void note(Console& console, const std::string& text) { tellLine(console.err, console.words() + ": " + text); }

void tellFailure(Console& console, const Failure& failure) {
    const std::string message = visibleText(failure.message());
    const std::string cause = visibleText(failure.cause());
    // A long message leaves the cause its room.
    console.err << console.words() << ": " << message << (cause.empty() ? "" : ": ") << cause << '\n';
    for (const std::string& detail : failure.details())
        tellLine(console.err, "  " + detail);
    const std::string remedy = visibleText(remedyOf(failure));
    if (!remedy.empty())
        tellLine(console.err, remedy);
    if (!console.json)
        return;
    Json json = beginJson(console);
    json["error"] = {{"code", static_cast<int>(failure.code())},
                     {"message", message},
                     {"cause", orNull(cause)},
                     {"remedy", orNull(remedy)}};
    if (!failure.details().empty())
        json["error"]["details"] = failure.details();
    if (console.lines)
        printOnOneLine(console.out, json);
    else
        print(console.out, json);
}

} // namespace Zentara::Tool
