#include <zentara/host/flash_content.h>

#include "host/flash/content_json.h"
#include "host/json_differences.h"

namespace Zentara::Host {

std::vector<std::string> SectionChange::lines() const {
    std::vector<std::string> all{text};
    for (const ValueChange& value : values)
        all.push_back("  " + value.text());
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
            changes.push_back(
                {Kind::Replaced, uid, old + (old == text ? " changes" : " is replaced by " + text),
                 differencesBetween(sectionJson(uid, found->second), sectionJson(uid, section))});
        }
    }
    return changes;
}

} // namespace Zentara::Host
