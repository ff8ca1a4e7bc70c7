#include <zentara/rom/system_info_data.h>

#include <utility>

#include "rom/big_endian_writer.h"
#include "rom/record.h"

namespace Zentara::ROM {

namespace {
// The well-known identifier of what has none, spelled out: the ROM knows no plug-ins.
constexpr GUID DEFAULT_GUID = {0x1024966D, 0x1634, 0x4756, {0x9A, 0xBC, 0x99, 0x97, 0x91, 0x59, 0x1F, 0x45}};
} // namespace

SystemInfoData::SystemInfoData() : guid(DEFAULT_GUID) {}
SystemInfoData::SystemInfoData(const GUID& identity) : guid(identity) {}
SystemInfoData::SystemInfoData(const SystemInfoData& other) = default;
SystemInfoData& SystemInfoData::operator=(const SystemInfoData& other) {
    SystemInfoData copy(other);
    swap(copy);
    return *this;
}
SystemInfoData::~SystemInfoData() = default;

bool SystemInfoData::operator==(const SystemInfoData& other) const { return guidEquals(guid, other.guid); }
bool SystemInfoData::operator!=(const SystemInfoData& other) const { return !(*this == other); }

void SystemInfoData::swap(SystemInfoData& other) noexcept { std::swap(guid, other.guid); }

GUID SystemInfoData::getGUID() const { return guid; }

SystemInfoData* SystemInfoData::deserialize(const std::vector<std::uint8_t>& bytes) {
    BigEndianReader in = openRecord(bytes, MARKER, VERSION);
    GUID guid{};
    guid.Data1 = in.readU32();
    guid.Data2 = in.readU16();
    guid.Data3 = in.readU16();
    for (auto& byte : guid.Data4)
        byte = in.readU8();
    return in.ok() ? new SystemInfoData(guid) : nullptr;
}

std::vector<std::uint8_t> SystemInfoData::serialize() const {
    BigEndianWriter out(SIZE);
    out.writeU32(guid.Data1);
    out.writeU16(guid.Data2);
    out.writeU16(guid.Data3);
    out.writeBytes(guid.Data4);
    return makeRecord(MARKER, VERSION, out.take());
}

} // namespace Zentara::ROM
