#include "plugins/simulated/usb/camera_shape.h"

#include "plugins/descriptions/wire.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

constexpr PictureSize picture{frameWidth, frameHeight};
constexpr PictureSize pictureWithConfidence{frameWidth, 2 * frameHeight};

constexpr std::uint16_t plainVendor = 0xFFFE;
constexpr std::uint16_t plainProduct = 0x2160;

} // namespace

CameraShape shapeOf(const CameraDescription& description, const Firmware* firmware) {
    CameraShape shape;
    const auto& identity = description.nodes.front().profiles.front().descriptor.hardwareIds;
    shape.vendorId = static_cast<std::uint16_t>(identity.vendorId);
    shape.productId = static_cast<std::uint16_t>(identity.productId);
    shape.revision = static_cast<std::uint16_t>(identity.revision);
    shape.vendorName = description.vendorName;
    shape.productName = description.productName;
    shape.serialNumber = description.serialNumber;
    shape.streams = {{{{Coding::Y16, {pictureWithConfidence, picture}}}, false, firmware != nullptr},
                     {{{Coding::Yuy2, {picture}}}, true, false}};
    if (firmware != nullptr)
        shape.extension = {firmware->guid(), static_cast<std::uint8_t>(firmware->unit()),
                           firmware->selectors()};
    return shape;
}

CameraShape plainShape(bool oneInterface) {
    CameraShape shape;
    shape.vendorId = plainVendor;
    shape.productId = static_cast<std::uint16_t>(plainProduct + oneInterface);
    shape.revision = 0x0100;
    shape.vendorName = "Plain";
    shape.productName = oneInterface ? "Plain camera, one interface" : "Plain camera";
    shape.serialNumber = oneInterface ? "PLAIN1" : "PLAIN2";
    const VideoFormat color{Coding::Mjpeg, {picture}};
    const VideoFormat depth{Coding::Z16, {picture}};
    if (oneInterface)
        shape.streams = {{{color, depth}, true, false}};
    else
        shape.streams = {{{color}, true, false}, {{depth}, false, false}};
    return shape;
}

} // namespace Zentara::Simulated
