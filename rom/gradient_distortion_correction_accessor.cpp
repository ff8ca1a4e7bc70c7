#include <zentara/rom/gradient_distortion_correction_accessor.h>

#include <algorithm>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/exceptions.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>

#include "utils/log_warning.h"
#include "utils/visible_text.h"

namespace Zentara::ROM {

namespace {

constexpr std::uint8_t ERASED = 0xFF;

std::string readWhole(const std::string& fileName) try {
    return Utils::readFile(fileName);
} catch (const Utils::UException&) {
    Utils::logWarning(
        Utils::LogArea_ROM,
        Utils::Format("Even cannot open/read file % containing phase distortion correction values") %
            Utils::visibleText(fileName));
    throw Plugin::IOPluginException("gradient calibration parameter file can not be opened");
}

} // namespace

struct GradientDistortionCorrectionAccessor::Impl {
    std::vector<std::uint8_t> image; ///< grows with what is asked of it

    /// What lies at an address, after growing the image so that it is there.
    std::vector<std::uint8_t>::iterator reach(std::uint32_t address, std::size_t length,
                                              std::uint8_t filler) {
        // With erased flash behind its end a short file reads as one that was not formatted so far.
        image.resize(std::max(image.size(), address + length), filler);
        return image.begin() + static_cast<std::ptrdiff_t>(address);
    }
};

GradientDistortionCorrectionAccessor::GradientDistortionCorrectionAccessor(const std::string& fileName)
    : impl(std::make_unique<Impl>()) {
    if (!fileName.empty())
        GradientDistortionCorrectionAccessor::read(fileName);
}
GradientDistortionCorrectionAccessor::~GradientDistortionCorrectionAccessor() = default;

std::vector<std::uint8_t> GradientDistortionCorrectionAccessor::read(std::uint32_t address,
                                                                     std::uint32_t length) {
    std::vector<std::uint8_t> bytes(length);
    std::copy_n(impl->reach(address, length, ERASED), length, bytes.begin());
    return bytes;
}

void GradientDistortionCorrectionAccessor::write(std::uint32_t address,
                                                 const std::vector<std::uint8_t>& bytes) {
    std::copy(bytes.begin(), bytes.end(), impl->reach(address, bytes.size(), 0));
}

void GradientDistortionCorrectionAccessor::read(const std::string& fileName) {
    const std::string contents = readWhole(fileName);
    impl->image.assign(contents.begin(), contents.end());
}

} // namespace Zentara::ROM
