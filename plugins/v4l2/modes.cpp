#include "plugins/v4l2/modes.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <linux/videodev2.h>

#include <zentara/four_cc.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

#include "plugins/linux/fourcc_text.h"

namespace Zentara::V4l2 {

using Utils::Format;

namespace {

// What a driver could list without end.
constexpr std::uint32_t mostFormats = 64;
constexpr std::uint32_t mostSizes = 64;
constexpr std::uint32_t mostRates = 32;

constexpr std::array<FrameFormat, 5> named{FrameFormat_VGA, FrameFormat_QQVGA, FrameFormat_QVGA,
                                           FrameFormat_HD720, FrameFormat_HD1080};
constexpr std::array<std::uint32_t, 5> usualRates{30, 60, 25, 15, 10}; // frames a second, of a range

bool within(const v4l2_frmsize_stepwise& range, FrameSize size) {
    const auto fits = [](std::uint32_t value, std::uint32_t least, std::uint32_t most, std::uint32_t step) {
        return value >= least && value <= most && (step == 0 || (value - least) % step == 0);
    };
    return fits(size.width, range.min_width, range.max_width, range.step_width) &&
           fits(size.height, range.min_height, range.max_height, range.step_height);
}

std::vector<FrameSize> sizesOf(const DeviceFile& file, std::uint32_t fourCC) {
    std::vector<FrameSize> sizes;
    for (std::uint32_t index = 0; index < mostSizes; ++index) {
        v4l2_frmsizeenum size{};
        size.index = index;
        size.pixel_format = fourCC;
        if (file.control(VIDIOC_ENUM_FRAMESIZES, size) < 0)
            break;
        if (size.type == V4L2_FRMSIZE_TYPE_DISCRETE) {
            sizes.push_back({size.discrete.width, size.discrete.height});
            continue;
        }
        for (const FrameFormat format : named) {
            if (within(size.stepwise, frameSize(format)))
                sizes.push_back(frameSize(format));
        }
        break;
    }
    return sizes;
}

void addRates(const DeviceFile& file, DriverMode mode, std::vector<DriverMode>& modes) {
    for (std::uint32_t index = 0; index < mostRates; ++index) {
        v4l2_frmivalenum interval{};
        interval.index = index;
        interval.pixel_format = mode.fourCC;
        interval.width = mode.size.width;
        interval.height = mode.size.height;
        if (file.control(VIDIOC_ENUM_FRAMEINTERVALS, interval) < 0) {
            if (index == 0)
                modes.push_back(mode);
            return;
        }
        if (interval.type == V4L2_FRMIVAL_TYPE_DISCRETE) {
            mode.numerator = interval.discrete.numerator;
            mode.denominator = interval.discrete.denominator;
            if (mode.rate() > 0)
                modes.push_back(mode);
            continue;
        }
        const auto seconds = [](const v4l2_fract& time) {
            return time.denominator == 0 ? 0.0 : static_cast<double>(time.numerator) / time.denominator;
        };
        for (const std::uint32_t rate : usualRates) {
            if (1.0 / rate >= seconds(interval.stepwise.min) &&
                1.0 / rate <= seconds(interval.stepwise.max)) {
                mode.numerator = 1;
                mode.denominator = rate;
                modes.push_back(mode);
            }
        }
        return;
    }
}

bool isCompressed(std::uint32_t fourCC) { return canDeliver(fourCC, Delivery::Compressed); }

bool fourCCFits(std::uint32_t fourCC, const WantedStream& wanted) {
    if (!canDeliver(fourCC, wanted.delivery))
        return false;
    if (wanted.delivery == Delivery::Compressed)
        return (fourCC == V4L2_PIX_FMT_H264) == (wanted.compression == CompressionType_H264);
    return wanted.fourCC == 0 || wanted.delivery == Delivery::Color || fourCC == kernelFourCC(wanted.fourCC);
}

/// What a description knows may come as planes below each other.
bool sizeFits(FrameSize size, const WantedStream& wanted) {
    if (wanted.size == FrameSize() || size == wanted.size)
        return true;
    return wanted.delivery == Delivery::Depth && wanted.fourCC != 0 && size.width == wanted.size.width &&
           size.height != 0 && size.height % wanted.size.height == 0;
}

/// The better one comes first.
int rank(const DriverMode& mode, const WantedStream& wanted) {
    return (mode.fourCC == kernelFourCC(wanted.fourCC) ? 0 : 2) + (isCompressed(mode.fourCC) ? 1 : 0);
}

std::string listOf(const std::vector<DriverMode>& modes) {
    std::string text;
    std::size_t count = 0;
    for (const DriverMode& mode : modes) {
        if (++count > 12)
            return text + ", and more";
        text += text.empty() ? "" : ", ";
        text += Format("% %x%@%") % Linux::fourCCText(mode.fourCC) % mode.size.width % mode.size.height %
                mode.rate();
    }
    return text.empty() ? "nothing" : text;
}

} // namespace

int DriverMode::rate() const noexcept {
    return numerator == 0
               ? 0
               : static_cast<int>((std::uint64_t{denominator} + numerator / 2) / numerator % 1'000'000);
}

std::uint32_t kernelFourCC(std::uint32_t described) noexcept {
    return described == fourCCCode('Y', 'U', 'Y', '2') ? V4L2_PIX_FMT_YUYV : described;
}

std::vector<DriverMode> modesOf(const DeviceFile& file) {
    std::vector<DriverMode> modes;
    for (std::uint32_t index = 0; index < mostFormats; ++index) {
        v4l2_fmtdesc format{};
        format.index = index;
        format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        const int result = file.control(VIDIOC_ENUM_FMT, format);
        if (result == -EINVAL)
            break;
        if (result < 0)
            file.fail("ask for the formats", -result);
        for (const FrameSize size : sizesOf(file, format.pixelformat)) {
            const auto first = static_cast<std::ptrdiff_t>(modes.size());
            addRates(file, {format.pixelformat, size, 0, 0}, modes);
            std::stable_sort(
                modes.begin() + first, modes.end(),
                [](const DriverMode& left, const DriverMode& right) { return left.rate() > right.rate(); });
        }
    }
    return modes;
}

DriverMode chooseMode(const DeviceFile& file, const std::vector<DriverMode>& modes,
                      const WantedStream& wanted) {
    const DriverMode* best = nullptr;
    for (const DriverMode& mode : modes) {
        const bool rateFits = wanted.rate == 0 || mode.rate() == 0 || mode.rate() == wanted.rate;
        if (fourCCFits(mode.fourCC, wanted) && sizeFits(mode.size, wanted) && rateFits &&
            (best == nullptr || rank(mode, wanted) < rank(*best, wanted)))
            best = &mode;
    }
    if (best == nullptr)
        throw Plugin::ConfigurationPluginException(Format("%: the camera has no mode %; it offers %") %
                                                   file.path() % wanted.name % listOf(modes));
    return *best;
}

} // namespace Zentara::V4l2
