#include "host/guid_text.h"

#include <cstddef>

#include <zentara/core/guids.h>
#include <zentara/utils/format.h>

namespace Zentara::Host {

std::string guidText(const GUID& guid) {
    Utils::Format text("%{:X8}-%{:X4}-%{:X4}-%{:X2}%{:X2}-%{:X2}%{:X2}%{:X2}%{:X2}%{:X2}%{:X2}");
    text % guid.Data1 % guid.Data2 % guid.Data3;
    for (const unsigned byte : guid.Data4)
        text % byte;
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
