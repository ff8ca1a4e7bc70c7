#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/type_marker.h>

namespace Zentara::ROM {

/// The hardware variant of a ZT536 camera: two bytes whose values the camera's plug-in knows. A copyable value. Separate.
class ZENTARA_API ZT536HardwareInfoData {
public:
    static constexpr TypeMarker MARKER = TypeMarker::ZT536HardwareInfoData;
    static constexpr std::uint8_t VERSION = 1;
    static constexpr std::uint32_t SIZE = 1 + 1;
    /// Both 0.
    ZT536HardwareInfoData();
    ZT536HardwareInfoData(std::uint8_t qvgaDepthType, std::uint8_t lensType);
    ZT536HardwareInfoData(const ZT536HardwareInfoData& other);
    ZT536HardwareInfoData& operator=(const ZT536HardwareInfoData& other);
    virtual ~ZT536HardwareInfoData();

    bool operator==(const ZT536HardwareInfoData& other) const;
    bool operator!=(const ZT536HardwareInfoData& other) const;

    std::uint8_t getQvgaDType() const;
    std::uint8_t getLensType() const;

protected:
    friend class SystemInfo;

    /// A new record read from its complete bytes, owned by the caller; null if they are no version 1 record
    /// of this marker or fewer than it needs.
    static ZT536HardwareInfoData* deserialize(const std::vector<std::uint8_t>& bytes);

    virtual std::vector<std::uint8_t> serialize() const;

private:
    void swap(ZT536HardwareInfoData& other) noexcept;

    std::uint8_t qvgaDepthType = 0;
    std::uint8_t lensType = 0;
};

} // namespace Zentara::ROM
