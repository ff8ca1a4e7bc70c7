#include "host/json_differences.h"

namespace Zentara::Host {

Json differencesBetween(const Json& before, const Json& after) {
    const Json old = before.flatten();
    const Json fresh = after.flatten();
    Json list = Json::array();
    const auto note = [&list](const std::string& path, const Json& left, const Json& right) {
        if (left != right)
            list.push_back({{"path", path.substr(path.empty() ? 0 : 1)}, {"before", left}, {"after", right}});
    };
    for (const auto& [path, value] : old.items())
        note(path, value, fresh.value(path, Json()));
    for (const auto& [path, value] : fresh.items()) {
        if (!old.contains(path))
            note(path, Json(), value);
    }
    return list;
}

std::string cutJson(const std::string& value) {
    constexpr std::size_t shown = 60;
    return value == "null" ? "nothing" : value.size() > shown ? value.substr(0, shown) + "..." : value;
}

std::string differencesText(const Json& differences) {
    const auto text = [](const Json& value) { // ASCII: any byte ends it
        return cutJson(value.dump(-1, ' ', true, Json::error_handler_t::replace));
    };
    std::string lines;
    for (const Json& change : differences)
        lines += change["path"].get<std::string>() + ": " + text(change["before"]) + " -> " +
                 text(change["after"]) + '\n';
    return lines;
}

} // namespace Zentara::Host
