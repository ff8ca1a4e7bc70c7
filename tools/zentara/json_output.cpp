#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

Json beginJson(const Console& console) {
    Json json{{"schema", jsonSchema}, {"verb", orNull(console.verb)}};
    if (!console.action.empty())
        json["action"] = console.action;
    return json;
}

void print(std::ostream& out, const Json& json) {
    out << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

void printOnOneLine(std::ostream& out, const Json& json) {
    out << json.dump(-1, ' ', false, Json::error_handler_t::replace) << std::endl;
}

} // namespace Zentara::Tool
