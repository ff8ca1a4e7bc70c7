#include <zentara/host/frame.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include <zentara/compression_type.h>
#include <zentara/host/failure.h>
#include <zentara/host/stream_info.h>
#include <zentara/utils/format.h>

#include "host/streams/depth_correction.h"
#include "host/streams/frame_draft.h"
#include "host/streams/frame_memory.h"
#include "host/streams/yuy2.h"

namespace Zentara::Host {

using Utils::Format;

namespace {

constexpr float metresOfMillimetre = 0.001F;
constexpr float missing = std::numeric_limits<float>::quiet_NaN();

std::string frameText(const FrameData& frame) {
    return Format("frame % of %") % frame.number % frame.context->info.camera.label();
}

std::size_t pixelsOf(const FrameData& frame) noexcept {
    const Mode& mode = frame.context->info.mode;
    return std::size_t{mode.width} * mode.height;
}

void requireKind(const FrameData& frame, Kind kind, const char* wanted) {
    const Kind own = frame.context->info.mode.kind;
    if (own != kind)
        throw Failure(Failure::Usage, Format("cannot take % from %") % wanted % frameText(frame),
                      Format("it is of the kind %") % kindName(own));
}

/// A plane of a depth frame; empty for one that the frame does not have.
std::span<const std::uint16_t> planeOf(const FrameData& frame, std::size_t index) {
    requireKind(frame, Kind::Depth, "depth");
    const std::size_t pixels = pixelsOf(frame);
    const std::size_t bytes = pixels * sizeof(std::uint16_t);
    if (frame.length < bytes || bytes == 0)
        throw Failure(Failure::Failed, Format("frame % has % bytes; its depth alone takes %") % frame.number %
                                           frame.length % bytes);
    if (index >= frame.length / bytes)
        return {};
    return {reinterpret_cast<const std::uint16_t*>(frame.bytes() + index * bytes), pixels};
}

std::size_t pixelAt(const FrameData& frame, std::uint32_t x, std::uint32_t y) {
    const Mode& mode = frame.context->info.mode;
    if (x >= mode.width || y >= mode.height)
        throw Failure(Failure::Usage, Format("cannot look at pixel %, % of %") % x % y % frameText(frame),
                      Format("it has % x %, counted from 0") % mode.width % mode.height);
    return std::size_t{y} * mode.width + x;
}

void requirePlaces(const FrameData& frame, std::size_t given, std::size_t needed) {
    if (given != needed)
        throw Failure(Failure::Usage, "cannot store the values of " + frameText(frame),
                      Format("there are % places for %") % given % needed);
}

bool anyPhase(std::span<const std::uint16_t> phase) {
    return std::any_of(phase.begin(), phase.end(), [](std::uint16_t step) { return step != 0; });
}

DepthCorrection correctionOf(const FrameData& frame) {
    return {*frame.context, {frame.temperatures.data(), frame.temperatureCount}, anyPhase(planeOf(frame, 2))};
}

/// Depth along the axis for all pixels. \param unit of a value as delivered \param nothing where there is none
void fillAxial(const FrameData& frame, std::span<float> places, float unit, float nothing) {
    const auto plane = planeOf(frame, 0);
    requirePlaces(frame, places.size(), plane.size());
    for (std::size_t i = 0; i < plane.size(); ++i)
        places[i] = plane[i] == 0 ? nothing : static_cast<float>(plane[i]) * unit;
    if (frame.context->info.depthAlong == DepthAlong::Axis)
        return;
    const std::vector<float>& shares = frame.context->axisShares();
    for (std::size_t i = 0; i < plane.size(); ++i)
        places[i] = plane[i] == 0 || std::isnan(shares[i]) ? nothing : places[i] * shares[i];
}

} // namespace

Frame::Frame(std::shared_ptr<const StreamInfo> about, std::span<const std::byte> content, std::uint64_t place,
             std::int64_t micros)
    : data(nullptr) {
    FrameDraft draft(std::make_shared<const StreamContext>(*about), content.size(), "make a frame");
    if (!content.empty())
        std::memcpy(draft.bytes(), content.data(), content.size());
    draft.fields().number = place;
    draft.fields().deviceMicros = micros;
    *this = std::move(draft).finish(content.size());
}

Frame::Frame(const Frame& other) noexcept : data(other.data) {
    if (data != nullptr)
        data->uses.fetch_add(1, std::memory_order_relaxed);
}

Frame::Frame(Frame&& other) noexcept : data(std::exchange(other.data, nullptr)) {}

Frame& Frame::operator=(const Frame& other) noexcept { return *this = Frame(other); }

Frame& Frame::operator=(Frame&& other) noexcept {
    if (this != &other)
        FrameMemory::instance().release(std::exchange(data, std::exchange(other.data, nullptr)));
    return *this;
}

Frame::~Frame() { FrameMemory::instance().release(data); }

Kind Frame::kind() const noexcept { return data->context->info.mode.kind; }
const StreamInfo& Frame::info() const& noexcept { return data->context->info; }
std::uint64_t Frame::number() const noexcept { return data->number; }
std::uint64_t Frame::droppedBefore() const noexcept { return data->droppedBefore; }
bool Frame::isFirstAfterReturn() const noexcept { return data->isFirstAfterReturn; }
std::int64_t Frame::deviceMicros() const noexcept { return data->deviceMicros; }
std::int64_t Frame::hostMicros() const noexcept { return data->hostMicros; }
std::uint32_t Frame::width() const noexcept { return data->context->info.mode.width; }
std::uint32_t Frame::height() const noexcept { return data->context->info.mode.height; }

std::span<const std::byte> Frame::bytes() const& noexcept {
    return {std::as_const(*data).bytes(), data->length};
}

std::span<const std::uint16_t> Frame::depth() const& { return planeOf(*data, 0); }
std::span<const std::uint16_t> Frame::confidence() const& { return planeOf(*data, 1); }
std::span<const std::uint16_t> Frame::phase(std::size_t index) const& {
    return index > std::numeric_limits<std::size_t>::max() - 2 ? std::span<const std::uint16_t>()
                                                               : planeOf(*data, index + 2);
}

bool Frame::valid(std::uint32_t x, std::uint32_t y) const {
    const auto plane = planeOf(*data, 0);
    return plane[pixelAt(*data, x, y)] != 0;
}

float Frame::metres(std::uint32_t x, std::uint32_t y) const {
    const auto plane = planeOf(*data, 0);
    const std::size_t pixel = pixelAt(*data, x, y);
    if (plane[pixel] == 0)
        return missing;
    const float along = static_cast<float>(plane[pixel]) * (info().millimetresPerUnit * metresOfMillimetre);
    return info().depthAlong == DepthAlong::Axis ? along : along * data->context->axisShares()[pixel];
}

float Frame::millimetres(std::uint32_t x, std::uint32_t y) const {
    const auto plane = planeOf(*data, 0);
    const std::size_t pixel = pixelAt(*data, x, y);
    const float along = static_cast<float>(plane[pixel]) * info().millimetresPerUnit;
    if (plane[pixel] == 0 || info().depthAlong == DepthAlong::Axis)
        return along;
    const float share = data->context->axisShares()[pixel];
    return share > 0 ? along * share : 0;
}

std::vector<float> Frame::metres() const {
    std::vector<float> values(planeOf(*data, 0).size());
    metres(values);
    return values;
}

void Frame::metres(std::span<float> places) const {
    fillAxial(*data, places, info().millimetresPerUnit * metresOfMillimetre, missing);
}

std::vector<float> Frame::millimetres() const {
    std::vector<float> values(planeOf(*data, 0).size());
    millimetres(values);
    return values;
}

void Frame::millimetres(std::span<float> places) const {
    fillAxial(*data, places, info().millimetresPerUnit, 0);
}

const Lens& Frame::lens() const& { return data->context->lens(); }

std::span<const SensorValue> Frame::temperatures() const& noexcept {
    return {data->temperatures.data(), data->temperatureCount};
}

Frame Frame::corrected() const {
    const auto plane = planeOf(*data, 0);
    if ((data->corrections & Correction_TRIED) != 0)
        return *this;
    const DepthCorrection correction = correctionOf(*data);
    if (correction.parts().empty())
        return *this;
    FrameDraft draft(*this, "correct " + frameText(*data));
    draft.fields().corrections = static_cast<std::uint8_t>(correction.possible() | Correction_TRIED);
    std::memcpy(draft.bytes(), bytes().data(), data->length);
    if (correction.possible() != 0)
        correction.apply(plane, planeOf(*data, 2), reinterpret_cast<std::uint16_t*>(draft.bytes()));
    return std::move(draft).finish(data->length);
}

std::vector<std::string> Frame::corrections() const {
    std::vector<std::string> words;
    if ((data->corrections & Correction_TRIED) == 0)
        return words;
    const DepthCorrection correction = correctionOf(*data);
    for (const DepthCorrection::Part& part : correction.parts()) {
        if ((data->corrections & part.bit) != 0)
            words.emplace_back(part.name);
    }
    return words;
}

std::vector<std::string> Frame::uncorrected() const {
    std::vector<std::string> words;
    if (kind() != Kind::Depth)
        return words;
    const bool tried = (data->corrections & Correction_TRIED) != 0;
    const DepthCorrection correction = correctionOf(*data);
    for (const DepthCorrection::Part& part : correction.parts()) {
        if ((data->corrections & part.bit) == 0)
            words.push_back(std::string(part.name) + ": " +
                            (part.trouble.empty() || !tried ? "not applied" : part.trouble));
    }
    return words;
}

std::vector<std::uint8_t> Frame::rgb() const {
    requireKind(*data, Kind::Color, "colour");
    std::vector<std::uint8_t> values(3 * pixelsOf(*data));
    rgb(values);
    return values;
}

void Frame::rgb(std::span<std::uint8_t> places) const {
    requireKind(*data, Kind::Color, "colour");
    const std::size_t pixels = pixelsOf(*data);
    requirePlaces(*data, places.size(), 3 * pixels);
    if (info().mode.compression != CompressionType_NONE)
        throw Failure(Failure::Failed, "cannot take the colours of " + frameText(*data),
                      Format("it is compressed (mode %), which is not decoded") % info().mode.name,
                      "Stream in a mode without compression, or decode bytes() yourself.");
    if (data->length < 2 * pixels || pixels == 0)
        throw Failure(Failure::Failed, Format("colour frame % has % bytes; its pixels take %") %
                                           data->number % data->length % (2 * pixels));
    rgbOfYuy2(reinterpret_cast<const std::uint8_t*>(data->bytes()), pixels, places.data());
}

std::span<const std::int16_t> Frame::samples() const& {
    requireKind(*data, Kind::Audio, "samples");
    if (info().mode.bitsPerSample != 16)
        throw Failure(Failure::Failed, "cannot take the samples of " + frameText(*data),
                      Format("they have % bits, not 16") % info().mode.bitsPerSample,
                      "bytes() has them as they came.");
    const std::size_t channels = static_cast<std::size_t>(std::max(1, info().mode.channels));
    return {reinterpret_cast<const std::int16_t*>(data->bytes()), data->length / (2 * channels) * channels};
}

} // namespace Zentara::Host
