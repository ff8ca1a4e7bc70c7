#include <zentara/rom/object.h>

#include <zentara/rom/configuration.h>
#include <zentara/rom/diagnostic.h>
#include <zentara/rom/gradient_distortion_correction.h>
#include <zentara/rom/system_calibration.h>
#include <zentara/rom/system_info.h>

namespace Zentara::ROM {

Object::Object() = default;
Object::Object(const Object& other) = default;
Object& Object::operator=(const Object& other) = default;
Object::~Object() = default;

Object* Object::deserialize(ContainerSectionType type, const std::vector<std::uint8_t>& bytes) {
    // Without a default, so that the compiler names a type that is missing here. A section may hold any other byte.
    switch (type) {
    case ContainerSectionType::SystemInfo:
        return SystemInfo::deserialize(bytes);
    case ContainerSectionType::SystemCalibration:
        return SystemCalibration::deserialize(bytes);
    case ContainerSectionType::Configuration:
        return Configuration::deserialize(bytes);
    case ContainerSectionType::Diagnostic:
        return Diagnostic::deserialize(bytes);
    case ContainerSectionType::GradientDistortionCorrection:
        return GradientDistortionCorrection::deserialize(bytes);
    }
    return nullptr;
}

} // namespace Zentara::ROM
