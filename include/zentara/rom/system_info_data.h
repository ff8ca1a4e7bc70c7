#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/guid.h>
#include <zentara/rom/type_marker.h>

namespace Zentara::ROM {

/// The camera's identity: 16 bytes, a GUID with its numbers big-endian. A copyable value. Separate.
class ZENTARA_API SystemInfoData {
public:
    static constexpr TypeMarker MARKER = TypeMarker::SystemInfoData;
    static constexpr std::uint8_t VERSION = 1;
    static constexpr std::uint32_t SIZE = 4 + 2 + 2 + 8;
    /// The identity of a camera that stores none: {1024966D-1634-4756-9ABC-999791591F45}.
    SystemInfoData();
    explicit SystemInfoData(const GUID& guid);
    SystemInfoData(const SystemInfoData& other);
    SystemInfoData& operator=(const SystemInfoData& other);
    virtual ~SystemInfoData();

    bool operator==(const SystemInfoData& other) const;
    bool operator!=(const SystemInfoData& other) const;

    GUID getGUID() const;

protected:
    friend class SystemInfo;

    /// A new record read from its complete bytes, owned by the caller; null if they are no version 1 record
    /// of this marker or fewer than it needs.
    static SystemInfoData* deserialize(const std::vector<std::uint8_t>& bytes);

    virtual std::vector<std::uint8_t> serialize() const;

private:
    void swap(SystemInfoData& other) noexcept;

    GUID guid; ///< numbers in the machine's byte order, whatever the flash has
};

} // namespace Zentara::ROM
