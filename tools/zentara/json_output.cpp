#include "tools/zentara/json_output.h"

#include <algorithm>

#include "utils/platform/utf8.h"
#include "utils/visible_text.h"

namespace Zentara::Tool {

Json beginJson(const Console& console) {
    Json json{{"schema", jsonSchema}, {"verb", orNull(console.verb)}};
    if (!console.action.empty())
        json["action"] = console.action;
    return json;
}

namespace {

/// The text of the object, on a terminal, too: what could act there stands as its number, which JSON reads as the same.
std::string textOf(const Json& json, int indent) {
    const std::string plain = json.dump(indent, ' ', false, Json::error_handler_t::replace);
    std::string text;
    for (std::size_t at = 0; at < plain.size();) {
        const std::size_t start = at;
        std::uint32_t character = 0;
        if (!Utils::Platform::decodeUtf8(plain, at, character) || plain[start] == '\n' ||
            !Utils::isTreacherous(character)) {
            at = std::max(at, start + 1);
            text.append(plain, start, at - start);
            continue;
        }
        const std::string escaped = Json(plain.substr(start, at - start)).dump(-1, ' ', true);
        text.append(escaped, 1, escaped.size() - 2);
    }
    return text;
}

} // namespace

void print(std::ostream& out, const Json& json) { out << textOf(json, 2) << '\n'; }

void printOnOneLine(std::ostream& out, const Json& json) { out << textOf(json, -1) << std::endl; }

} // namespace Zentara::Tool
