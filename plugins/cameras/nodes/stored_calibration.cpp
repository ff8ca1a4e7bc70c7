#include "plugins/cameras/nodes/stored_calibration.h"

#include <bit>

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/core/guids.h>
#include <zentara/io/calibration_data.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/rom/accessor.h>
#include <zentara/rom/chunked_memory_manager.h>
#include <zentara/rom/container.h>
#include <zentara/rom/rom.h>

namespace Zentara::Cameras {
namespace {

constexpr std::uint32_t usualChunkSize = 256; // a formatted storage knows its own

/// The camera's memory, for reading.
class ChipMemory final : public ROM::Accessor {
public:
    explicit ChipMemory(IO::CameraChip& source) : chip(source) {}

    std::vector<std::uint8_t> read(std::uint32_t address, std::uint32_t length) override {
        return length == 0 ? std::vector<std::uint8_t>() : chip.readConfiguration(address, length);
    }
    void write(std::uint32_t, const std::vector<std::uint8_t>&) override {
        throw Plugin::NotSupportedPluginException("the node does not write to the camera's memory");
    }

private:
    IO::CameraChip& chip;
};

/// Takes the object if it is of that kind and the first one.
template<typename T>
void take(std::unique_ptr<const ROM::Object>& object, std::unique_ptr<const T>& place) {
    const auto* wanted = dynamic_cast<const T*>(object.get());
    if (wanted == nullptr || place)
        return;
    object.release();
    place.reset(wanted);
}

CameraIntrinsics lensOf(const ROM::IntrinsicsData& data) {
    CameraIntrinsics lens;
    lens.width = data.getWidth();
    lens.height = data.getHeight();
    lens.fx = data.getFx();
    lens.fy = data.getFy();
    lens.cx = data.getCx();
    lens.cy = data.getCy();
    lens.k1 = data.getK1();
    lens.k2 = data.getK2();
    lens.k3 = data.getK3();
    lens.p1 = data.getP1();
    lens.p2 = data.getP2();
    return lens;
}

ExtrinsicParametersInternal extrinsicsOf(const ROM::ExtrinsicsData& data) {
    return {data.getR11(), data.getR12(), data.getR13(), data.getR21(), data.getR22(), data.getR23(),
            data.getR31(), data.getR32(), data.getR33(), data.getT1(),  data.getT2(),  data.getT3()};
}

template<typename T>
void fill(CalibrationBlock<T>& block, std::vector<T> values) {
    block.count = static_cast<std::uint32_t>(values.size());
    block.values = std::move(values);
}

void fillLenses(CalibrationBlock<CameraIntrinsics>& block, const std::vector<ROM::IntrinsicsData>& stored) {
    if (stored.empty())
        return;
    std::vector<CameraIntrinsics> lenses;
    for (const ROM::IntrinsicsData& data : stored)
        lenses.push_back(lensOf(data));
    fill(block, std::move(lenses));
}

/// A record as it stands on flash: algorithm, number of values, the values as big-endian floats.
std::vector<std::uint8_t> recordOf(std::uint8_t algorithm, const std::vector<float>& values) {
    std::vector<std::uint8_t> record{algorithm, static_cast<std::uint8_t>(values.size())};
    for (const float value : values) {
        const auto bits = std::bit_cast<std::uint32_t>(value);
        for (int shift = 24; shift >= 0; shift -= 8)
            record.push_back(static_cast<std::uint8_t>(bits >> shift));
    }
    return record;
}

/// What the store has, or nothing.
template<typename T, typename Question>
void ask(CalibrationBlock<T>& block, Question question) {
    try {
        fill(block, question());
    } catch (const Plugin::NotSupportedPluginException&) {
        // The description has none.
    }
}

} // namespace

StoredObjects readStorage(IO::CameraChip& chip, const ROMElement& place) {
    ChipMemory flash(chip);
    ROM::ChunkedMemoryManager memory(&flash, place.address, place.size, usualChunkSize, true);
    ROM::Container container(&memory);
    ROM::ROM rom(&container);
    rom.initialize();
    StoredObjects objects;
    if (!rom.romInitialized())
        return objects;
    for (const std::uint16_t uid : rom.getUIDs()) {
        std::unique_ptr<const ROM::Object> object(rom.get(uid));
        take(object, objects.info);
        take(object, objects.calibration);
        take(object, objects.configuration);
        take(object, objects.diagnostic);
    }
    return objects;
}

StoredCalibration::StoredCalibration(Core::DescriptorStoreRO* store, const std::string& serialNumber,
                                     const StoredObjects& objects)
    : BaseROMLayout(store), cyclic(store) {
    readDefaults(*store);
    if (!serialNumber.empty())
        setSerialNumber(serialNumber);
    if (objects.info)
        setProductionID(Core::GUID_toString(objects.info->getSystemInfoData().getGUID()));
    if (objects.calibration)
        readLenses(*objects.calibration);
    if (objects.configuration)
        readConfiguration(*objects.configuration);
    if (objects.diagnostic) {
        const ROM::OverheatingDiagnosticData& heat = objects.diagnostic->getOverheatingDiagnosticData();
        storeDiagnosticData({heat.getSoftCounter(), heat.getHardCounter()});
    }
}

void StoredCalibration::setDiagnosticData(DiagnosticData data) { storeDiagnosticData(data); }

short StoredCalibration::phaseOffset(DepthNode::CameraMode mode) const {
    return offsets[mode == DepthNode::CameraMode_1 ? 1 : 0];
}

void StoredCalibration::readDefaults(Core::DescriptorStoreRO& store) {
    ask(stereo.depthIntrinsics, [&] { return store.getDefaultDepthIntrinsicsArray(); });
    ask(stereo.colorIntrinsics, [&] { return store.getDefaultColorIntrinsicsArray(); });
    ask(stereo.extrinsics, [&] { return std::vector{store.getDefaultExtrinsics()}; });
}

void StoredCalibration::readLenses(const ROM::SystemCalibration& stored) {
    fillLenses(stereo.depthIntrinsics, stored.getDepthIntrinsics());
    fillLenses(stereo.colorIntrinsics, stored.getColorIntrinsics());
    lensStored = !stored.getDepthIntrinsics().empty();
    // What was never stored reads as the default.
    extrinsicsStored = stored.getExtrinsics() != ROM::ExtrinsicsData();
    if (extrinsicsStored)
        fill(stereo.extrinsics, std::vector{extrinsicsOf(stored.getExtrinsics())});
    setImageRegistrationCalibration(stereo);
    const ROM::AccelerometerCalibrationData& accelerometer = stored.getAccelerometerCalibration();
    setAccelerometerCalibration({accelerometer.getX(), accelerometer.getY(), accelerometer.getZ()});
}

/// The storage keeps one correction for both camera modes.
void StoredCalibration::readConfiguration(const ROM::Configuration& stored) {
    offsets[0] = stored.getPhaseOffset().getPhaseOffset();
    offsets[1] = stored.getPhaseOffset2().getPhaseOffset();
    setPhaseDelays(IO::CalibrationData(offsets[0], offsets[1]));

    const std::vector<float> temperatures = stored.getTemperatureCalibration().getValues();
    if (!temperatures.empty()) {
        TemperatureCalibration calibration;
        for (SensorValueArray& mode : calibration.modes) {
            for (const float value : temperatures)
                mode.values.push_back({static_cast<std::int32_t>(mode.size()), value}); // sensors 0, 1 ...
        }
        setTemperatureCalibration(calibration);
    }
    const ROM::TemperatureCompensationData temperature = stored.getTemperatureCompensation();
    if (!temperature.getValues().empty()) {
        const std::vector<std::uint8_t> range =
            recordOf(static_cast<std::uint8_t>(temperature.getAlgorithmID()), temperature.getValues());
        // The block has a record for each camera mode, one after the other.
        std::vector<std::uint8_t> ranges = range;
        ranges.insert(ranges.end(), range.begin(), range.end());
        setTemperatureCompensation(
            TemperatureCompensation(static_cast<unsigned int>(ranges.size()), ranges.data()));
    }
    correctionsStored = !temperatures.empty() || !temperature.getValues().empty();
    const ROM::CyclicErrorCorrectionData error = stored.getCyclicErrorCorrection();
    if (!error.getValues().empty()) {
        const std::vector<std::uint8_t> record =
            recordOf(static_cast<std::uint8_t>(error.getAlgorithmID()), error.getValues());
        const std::vector<unsigned char> block =
            cyclicErrorBlock(static_cast<unsigned int>(record.size()), record.data());
        cyclic = CyclicErrorCorrection(block.data());
        correctionsStored = true;
    }
}

} // namespace Zentara::Cameras
