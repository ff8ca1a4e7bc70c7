#include "host/json_differences.h"

namespace Zentara::Host {

namespace {

/// In ASCII: any byte ends it.
std::string asciiOf(const Json& value) { return value.dump(-1, ' ', true, Json::error_handler_t::replace); }

std::string cutJson(const std::string& value) {
    constexpr std::size_t shown = 60;
    return value == "null" ? "nothing" : value.size() > shown ? value.substr(0, shown) + "..." : value;
}

} // namespace

std::vector<ValueChange> differencesBetween(const Json& before, const Json& after) {
    const Json old = before.flatten();
    const Json fresh = after.flatten();
    std::vector<ValueChange> list;
    const auto note = [&list](const std::string& path, const Json& left, const Json& right) {
        if (left != right)
            list.push_back({path.substr(path.empty() ? 0 : 1), asciiOf(left), asciiOf(right)});
    };
    for (const auto& [path, value] : old.items())
        note(path, value, fresh.value(path, Json()));
    for (const auto& [path, value] : fresh.items()) {
        if (!old.contains(path))
            note(path, Json(), value);
    }
    return list;
}

std::string ValueChange::text() const { return path + ": " + cutJson(before) + " -> " + cutJson(after); }

} // namespace Zentara::Host
