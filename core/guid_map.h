#pragma once

#include <cstddef>
#include <unordered_map>

#include <zentara/guid.h>

namespace Zentara::Core {

/// A GUID is random enough for its first field to be its hash.
struct GuidHash {
    std::size_t operator()(const GUID& guid) const noexcept { return guid.Data1; }
};

struct GuidEqual {
    bool operator()(const GUID& left, const GUID& right) const noexcept { return guidEquals(left, right); }
};

template<typename T>
using GuidMap = std::unordered_map<GUID, T, GuidHash, GuidEqual>;

} // namespace Zentara::Core
