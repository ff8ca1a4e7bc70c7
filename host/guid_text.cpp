#include "host/guid_text.h"

#include <cstddef>

#include <zentara/core/guids.h>
#include <zentara/utils/format.h>

namespace Zentara::Host {

std::string guidText(const GUID& guid) {
    std::string text = Utils::Format("%{:X8}-%{:X4}-%{:X4}-") % guid.Data1 % guid.Data2 % guid.Data3;
    for (std::size_t index = 0; index < 8; ++index) {
        text += std::string(Utils::Format("%{:X2}") % static_cast<unsigned>(guid.Data4[index]));
        text += index == 1 ? "-" : "";
    }
    return text;
}

std::string guidName(const GUID& guid) {
    std::size_t count = 0;
    const Core::WellKnownGuid* known = Core::wellKnownGuids(count);
    for (std::size_t index = 0; index < count; ++index) {
        if (guidEquals(known[index].guid, guid))
            return known[index].name;
    }
    return {};
}

std::string guidLabel(const GUID& guid) {
    const std::string name = guidName(guid);
    return name.empty() ? guidText(guid) : name;
}

} // namespace Zentara::Host
