#include <zentara/host/flash_content.h>

#include "host/flash/content_json.h"
#include "host/json_differences.h"

namespace Zentara::Host {
namespace {

/// In ASCII: it may be cut anywhere.
std::string jsonText(const Json& value) { return value.dump(-1, ' ', true, Json::error_handler_t::replace); }

std::vector<ValueChange> valuesBetween(std::uint16_t uid, const FlashSection& before,
                                       const FlashSection& after) {
    std::vector<ValueChange> values;
    for (const Json& value : differencesBetween(sectionJson(uid, before), sectionJson(uid, after)))
        values.push_back(
            {value["path"].get<std::string>(), jsonText(value["before"]), jsonText(value["after"])});
    return values;
}

} // namespace

std::vector<std::string> SectionChange::lines() const {
    std::vector<std::string> all{text};
    for (const ValueChange& value : values)
        all.push_back("  " + value.path + ": " + cutJson(value.before) + " -> " + cutJson(value.after));
    return all;
}

std::vector<SectionChange> changesBetween(const FlashContent& before, const FlashContent& after) {
    using Kind = SectionChange::Kind;
    std::vector<SectionChange> changes;
    for (const auto& [uid, section] : before)
        if (after.count(uid) == 0)
            changes.push_back({Kind::Erased, uid, sectionText(uid, section) + " is erased", {}});
    for (const auto& [uid, section] : after) {
        const auto found = before.find(uid);
        const std::string text = sectionText(uid, section);
        if (found == before.end()) {
            changes.push_back({Kind::Added, uid, text + " is added", {}});
        } else if (!(found->second == section)) {
            const std::string old = sectionText(uid, found->second);
            changes.push_back({Kind::Replaced, uid,
                               old + (old == text ? " changes" : " is replaced by " + text),
                               valuesBetween(uid, found->second, section)});
        }
    }
    return changes;
}

} // namespace Zentara::Host
