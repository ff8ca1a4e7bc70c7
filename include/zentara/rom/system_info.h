#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/object.h>
#include <zentara/rom/system_info_data.h>
#include <zentara/rom/zt536_hardware_info_data.h>

namespace Zentara::ROM {

/// Section type 1: the camera's identity and hardware variant. A copyable value. Separate.
class ZENTARA_API SystemInfo : public Object {
public:
    SystemInfo(const SystemInfoData& systemInfo, const ZT536HardwareInfoData& hardwareInfo);
    SystemInfo(const SystemInfo& other);
    SystemInfo& operator=(const SystemInfo& other);
    ~SystemInfo() override;

    ContainerSectionType getType() const override;
    std::vector<std::uint8_t> serialize() const override;

    const SystemInfoData& getSystemInfoData() const;
    const ZT536HardwareInfoData& getZT536HardwareInfoData() const;

protected:
    friend class Object;

    /// Never null; owned by the caller.
    static SystemInfo* deserialize(const std::vector<std::uint8_t>& bytes);

private:
    SystemInfoData systemInfo;
    ZT536HardwareInfoData hardwareInfo;
};

} // namespace Zentara::ROM
