#include <zentara/rom/zt536_hardware_info_data.h>

#include <utility>

#include "rom/record.h"

namespace Zentara::ROM {

ZT536HardwareInfoData::ZT536HardwareInfoData() = default;
ZT536HardwareInfoData::ZT536HardwareInfoData(std::uint8_t first, std::uint8_t second)
    : qvgaDepthType(first), lensType(second) {}
ZT536HardwareInfoData::ZT536HardwareInfoData(const ZT536HardwareInfoData& other) = default;
ZT536HardwareInfoData& ZT536HardwareInfoData::operator=(const ZT536HardwareInfoData& other) {
    ZT536HardwareInfoData copy(other);
    swap(copy);
    return *this;
}
ZT536HardwareInfoData::~ZT536HardwareInfoData() = default;

bool ZT536HardwareInfoData::operator==(const ZT536HardwareInfoData& other) const {
    return qvgaDepthType == other.qvgaDepthType && lensType == other.lensType;
}
bool ZT536HardwareInfoData::operator!=(const ZT536HardwareInfoData& other) const { return !(*this == other); }

void ZT536HardwareInfoData::swap(ZT536HardwareInfoData& other) noexcept {
    std::swap(qvgaDepthType, other.qvgaDepthType);
    std::swap(lensType, other.lensType);
}

std::uint8_t ZT536HardwareInfoData::getQvgaDType() const { return qvgaDepthType; }
std::uint8_t ZT536HardwareInfoData::getLensType() const { return lensType; }

ZT536HardwareInfoData* ZT536HardwareInfoData::deserialize(const std::vector<std::uint8_t>& bytes) {
    BigEndianReader in = openRecord(bytes, MARKER, VERSION);
    const std::uint8_t first = in.readU8();
    const std::uint8_t second = in.readU8();
    return in.ok() ? new ZT536HardwareInfoData(first, second) : nullptr;
}

std::vector<std::uint8_t> ZT536HardwareInfoData::serialize() const {
    return makeRecord(MARKER, VERSION, {qvgaDepthType, lensType});
}

} // namespace Zentara::ROM
