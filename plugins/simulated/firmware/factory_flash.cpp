#include "plugins/simulated/firmware/factory_flash.h"

#include <algorithm>
#include <cmath>

#include <zentara/rom/accessor.h>
#include <zentara/rom/chunked_memory_manager.h>
#include <zentara/rom/configuration.h>
#include <zentara/rom/container.h>
#include <zentara/rom/diagnostic.h>
#include <zentara/rom/gradient_distortion_correction.h>
#include <zentara/rom/rom.h>
#include <zentara/rom/section.h>
#include <zentara/rom/system_calibration.h>
#include <zentara/rom/system_info.h>

namespace Zentara::Simulated {

namespace {

constexpr std::uint8_t readOnly = 0;
constexpr std::uint8_t writable = ROM::Section::FLAG_WRITABLE;
constexpr int tableWidth = 40; ///< one value for 8 by 8 pixels of a picture of 320 by 240
constexpr int tableHeight = 30;

/// The memory itself as flash.
class Memory final : public ROM::Accessor {
public:
    explicit Memory(Bytes& target) : bytes(target) {}

    Bytes read(std::uint32_t address, std::uint32_t length) override {
        return {bytes.begin() + address, bytes.begin() + address + length};
    }
    void write(std::uint32_t address, const Bytes& written) override {
        std::copy(written.begin(), written.end(), bytes.begin() + address);
    }

private:
    Bytes& bytes;
};

ROM::SystemInfo systemInfo(std::uint8_t seed) {
    const ::GUID camera{0x5A540000U + seed, 0x0536, 0x4001, {0x80, 0x53, 0x36, 0, 0, 0, 0, seed}};
    return {ROM::SystemInfoData(camera), ROM::ZT536HardwareInfoData(1, 2)};
}

ROM::SystemCalibration systemCalibration() {
    using Lens = ROM::IntrinsicsData;
    const Lens::Type depth = Lens::Type::Depth;
    const ExtrinsicParametersInternal& pose = factoryExtrinsics;
    return {
        ROM::AccelerometerCalibrationData(0.01F, -0.02F, 0.98F),
        ROM::ExtrinsicsData(pose.r11, pose.r12, pose.r13, pose.r21, pose.r22, pose.r23, pose.r31, pose.r32,
                            pose.r33, pose.t1, pose.t2, pose.t3),
        {Lens(depth, factoryDepthLens),
         Lens(depth, 160, 120, 112.25F, 112.125F, 80.25F, 59.875F, -0.17F, 0.11F, 0.0005F, -0.0003F, -0.02F)},
        {Lens(Lens::Type::Color, 1280, 720, 915.5F, 915.25F, 641.5F, 358.75F, 0.03F, -0.09F, 0, 0, 0.05F)}};
}

ROM::Configuration configuration(std::uint8_t seed) {
    return {ROM::TemperatureCalibrationData({25, 0.125F}), ROM::PhaseOffset(ROM::PhaseOffset::MARKER, seed),
            ROM::PhaseOffset(ROM::PhaseOffset::MARKER2, -24),
            ROM::TemperatureCompensationData(ROM::TemperatureAlgorithmID{1}, {0.5F, -2.5F}),
            ROM::CyclicErrorCorrectionData(ROM::CyclicErrorAlgorithmID{1}, {1.5F, -0.75F, 0.25F, 0.125F})};
}

/// Least in the middle, more towards the corners.
Bytes correctionTable(double strength) {
    Bytes values;
    for (int y = 0; y < tableHeight; ++y)
        for (int x = 0; x < tableWidth; ++x) {
            const double distance =
                std::hypot(2.0 * x / (tableWidth - 1) - 1, 2.0 * y / (tableHeight - 1) - 1);
            values.push_back(static_cast<std::uint8_t>(16 + strength * distance * distance));
        }
    return values;
}

ROM::GradientDistortionCorrection correction(std::uint8_t seed) {
    return {ROM::GradientDistortionCorrectionHeader(1, 1400000000, 2, "ZT536-" + std::to_string(seed)),
            {{10, correctionTable(40)}, {30, correctionTable(90)}}};
}

} // namespace

Bytes factoryFlash(std::uint8_t seed) {
    // A pattern all around, by which a read in the wrong place is noticed; the storage's own place is erased, and formatted.
    Bytes bytes = patternFlash(seed);
    std::fill_n(bytes.begin() + romStart, romSize, std::uint8_t{0xFF});
    Memory memory(bytes);
    ROM::ChunkedMemoryManager manager(&memory, romStart, romSize, romChunkSize, true);
    ROM::Container container(&manager);
    ROM::ROM rom(&container);
    rom.initialize();
    rom.initializeRom();
    const ROM::SystemInfo info = systemInfo(seed);
    const ROM::SystemCalibration calibration = systemCalibration();
    const ROM::Configuration settings = configuration(seed);
    const ROM::Diagnostic diagnostic(ROM::OverheatingDiagnosticData(0, 0));
    const ROM::GradientDistortionCorrection distortion = correction(seed);
    rom.set(1, &info, readOnly);
    rom.set(2, &calibration, writable);
    rom.set(3, &settings, writable);
    rom.set(4, &diagnostic, writable);
    rom.set(5, &distortion, writable);
    return bytes;
}

} // namespace Zentara::Simulated
