#include <zentara/rom/system_info.h>

#include "rom/record.h"

namespace Zentara::ROM {

SystemInfo::SystemInfo(const SystemInfoData& info, const ZT536HardwareInfoData& hardware)
    : systemInfo(info), hardwareInfo(hardware) {}
SystemInfo::SystemInfo(const SystemInfo& other) = default;
SystemInfo& SystemInfo::operator=(const SystemInfo& other) = default;
SystemInfo::~SystemInfo() = default;

ContainerSectionType SystemInfo::getType() const { return ContainerSectionType::SystemInfo; }
const SystemInfoData& SystemInfo::getSystemInfoData() const { return systemInfo; }
const ZT536HardwareInfoData& SystemInfo::getZT536HardwareInfoData() const { return hardwareInfo; }

std::vector<std::uint8_t> SystemInfo::serialize() const {
    std::vector<std::uint8_t> bytes = systemInfo.serialize();
    append(bytes, hardwareInfo.serialize());
    return bytes;
}

SystemInfo* SystemInfo::deserialize(const std::vector<std::uint8_t>& bytes) {
    SystemInfoData info;
    ZT536HardwareInfoData hardware;
    readRecords(bytes, {{SystemInfoData::MARKER, "SystemInfoData",
                         [&](const auto& record) { return keep(info, SystemInfoData::deserialize(record)); }},
                        {ZT536HardwareInfoData::MARKER, "ZT536HardwareInfoData", [&](const auto& record) {
                             return keep(hardware, ZT536HardwareInfoData::deserialize(record));
                         }}});
    return new SystemInfo(info, hardware);
}

} // namespace Zentara::ROM
