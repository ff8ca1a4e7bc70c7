#include <zentara/rom/intrinsics_data.h>

#include <utility>

#include "rom/big_endian_writer.h"
#include "rom/record.h"

namespace Zentara::ROM {

namespace {
using Lens = CameraIntrinsics;
/// k3 comes last, after the tangential pair: existing cameras carry it so.
constexpr float Lens::*FLASH_ORDER[] = {&Lens::fx, &Lens::fy, &Lens::cx, &Lens::cy, &Lens::k1,
                                        &Lens::k2, &Lens::p1, &Lens::p2, &Lens::k3};
} // namespace

IntrinsicsData::IntrinsicsData(Type camera, std::uint16_t width, std::uint16_t height, float fx, float fy,
                               float cx, float cy, float k1, float k2, float p1, float p2, float k3)
    : type(camera) {
    intrinsics.width = width;
    intrinsics.height = height;
    intrinsics.fx = fx;
    intrinsics.fy = fy;
    intrinsics.cx = cx;
    intrinsics.cy = cy;
    intrinsics.k1 = k1;
    intrinsics.k2 = k2;
    intrinsics.p1 = p1;
    intrinsics.p2 = p2;
    intrinsics.k3 = k3;
}
IntrinsicsData::IntrinsicsData(Type camera, const CameraIntrinsics& lens) : type(camera), intrinsics(lens) {}
IntrinsicsData::IntrinsicsData(const IntrinsicsData& other) = default;
IntrinsicsData& IntrinsicsData::operator=(const IntrinsicsData& other) {
    IntrinsicsData copy(other);
    swap(copy);
    return *this;
}
IntrinsicsData::~IntrinsicsData() = default;

bool IntrinsicsData::operator==(const IntrinsicsData& other) const {
    return type == other.type && intrinsics == other.intrinsics;
}
bool IntrinsicsData::operator!=(const IntrinsicsData& other) const { return !(*this == other); }

void IntrinsicsData::swap(IntrinsicsData& other) noexcept {
    std::swap(type, other.type);
    std::swap(intrinsics, other.intrinsics);
}

IntrinsicsData::Type IntrinsicsData::getType() const { return type; }
std::uint16_t IntrinsicsData::getWidth() const { return intrinsics.width; }
std::uint16_t IntrinsicsData::getHeight() const { return intrinsics.height; }
float IntrinsicsData::getFx() const { return intrinsics.fx; }
float IntrinsicsData::getFy() const { return intrinsics.fy; }
float IntrinsicsData::getCx() const { return intrinsics.cx; }
float IntrinsicsData::getCy() const { return intrinsics.cy; }
float IntrinsicsData::getK1() const { return intrinsics.k1; }
float IntrinsicsData::getK2() const { return intrinsics.k2; }
float IntrinsicsData::getK3() const { return intrinsics.k3; }
float IntrinsicsData::getP1() const { return intrinsics.p1; }
float IntrinsicsData::getP2() const { return intrinsics.p2; }

IntrinsicsData* IntrinsicsData::deserialize(const std::vector<std::uint8_t>& bytes) {
    // The marker says whose lens it is; any other than the depth camera's must be the colour camera's.
    const auto record = viewRecord(bytes);
    const bool depth = record && record->type == static_cast<std::uint8_t>(DEPTH_MARKER);
    BigEndianReader in = openRecord(bytes, depth ? DEPTH_MARKER : COLOR_MARKER, VERSION);
    CameraIntrinsics lens;
    lens.width = in.readU16();
    lens.height = in.readU16();
    for (const auto field : FLASH_ORDER)
        lens.*field = in.readFloat();
    return in.ok() ? new IntrinsicsData(depth ? Type::Depth : Type::Color, lens) : nullptr;
}

std::vector<std::uint8_t> IntrinsicsData::serialize() const {
    BigEndianWriter out(SIZE);
    out.writeU16(intrinsics.width);
    out.writeU16(intrinsics.height);
    for (const auto field : FLASH_ORDER)
        out.writeFloat(intrinsics.*field);
    return makeRecord(type == Type::Depth ? DEPTH_MARKER : COLOR_MARKER, VERSION, out.take());
}

} // namespace Zentara::ROM
