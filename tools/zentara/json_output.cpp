#include "tools/zentara/json_output.h"

#include <zentara/host/visible_text.h>

namespace Zentara::Tool {

Json beginJson(const Console& console) {
    Json json{{"schema", jsonSchema}, {"verb", orNull(console.verb)}};
    if (!console.action.empty())
        json["action"] = console.action;
    return json;
}

Json changesJson(const std::vector<ValueChange>& changes) {
    Json json = Json::array();
    for (const ValueChange& change : changes)
        json.push_back({{"path", change.path},
                        {"before", Json::parse(change.before)},
                        {"after", Json::parse(change.after)}});
    return json;
}

namespace {

/// The text of the object, on a terminal, too: what could act there stands as its number, which JSON reads as the same.
std::string textOf(const Json& json, int indent) {
    const std::string plain = json.dump(indent, ' ', false, Json::error_handler_t::replace);
    std::string text;
    for (std::size_t at = 0; at < plain.size();) {
        std::size_t end = at + 1;
        while (end < plain.size() && (static_cast<unsigned char>(plain[end]) & 0xC0U) == 0x80U)
            ++end; // the rest of a character
        const std::string character = plain.substr(at, end - at);
        const bool isPlain = end == at + 1 && (character == "\n" || (character >= " " && character < "\x7F"));
        if (isPlain || visibleText(character) == character)
            text += character;
        else {
            const std::string escaped = Json(character).dump(-1, ' ', true);
            text.append(escaped, 1, escaped.size() - 2);
        }
        at = end;
    }
    return text;
}

} // namespace

void print(std::ostream& out, const Json& json) { out << textOf(json, 2) << '\n'; }

void printOnOneLine(std::ostream& out, const Json& json) { out << textOf(json, -1) << std::endl; }

} // namespace Zentara::Tool
