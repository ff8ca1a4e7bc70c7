#pragma once

#include <memory>

#include <zentara/cyclic_error_correction.h>
#include <zentara/io/base_rom_layout.h>
#include <zentara/io/camera_chip.h>
#include <zentara/rom/configuration.h>
#include <zentara/rom/diagnostic.h>
#include <zentara/rom/system_calibration.h>
#include <zentara/rom/system_info.h>
#include <zentara/rom_element.h>

namespace Zentara::Cameras {

/// The data objects of a camera's storage; null for those that it does not hold.
struct StoredObjects {
    std::unique_ptr<const ROM::SystemInfo> info;
    std::unique_ptr<const ROM::SystemCalibration> calibration;
    std::unique_ptr<const ROM::Configuration> configuration;
    std::unique_ptr<const ROM::Diagnostic> diagnostic;
};

/// Reads a camera's storage through its chip; of several objects of a kind the one with the lowest number. A storage
/// that was never formatted holds nothing. \throws what the chip throws
[[nodiscard]] StoredObjects readStorage(IO::CameraChip& chip, const ROMElement& place);

/// The calibration of a described camera: what its storage holds, and the defaults of the descriptor store for the
/// rest. The presence flags tell what came from the storage. Separate.
class StoredCalibration final : public IO::BaseROMLayout {
public:
    /// \param serialNumber as the bus told it
    StoredCalibration(Core::DescriptorStoreRO* store, const std::string& serialNumber,
                      const StoredObjects& objects);

    /// Holds until the storage is read again; nothing is written to the camera.
    void setDiagnosticData(DiagnosticData data) override;

    /// The camera's lens models and extrinsics, or the store's.
    [[nodiscard]] const StereoCameraParametersArray& lenses() const { return stereo; }
    [[nodiscard]] const CyclicErrorCorrection& cyclicErrorCorrection() const { return cyclic; }
    /// Whether that part came from the storage.
    [[nodiscard]] bool holdsLens() const { return lensStored; }
    [[nodiscard]] bool holdsExtrinsics() const { return extrinsicsStored; }
    [[nodiscard]] bool holdsCorrections() const { return correctionsStored; }
    /// Of both camera modes.
    [[nodiscard]] short phaseOffset(DepthNode::CameraMode mode) const;

private:
    void readDefaults(Core::DescriptorStoreRO& store);
    void readLenses(const ROM::SystemCalibration& stored);
    void readConfiguration(const ROM::Configuration& stored);

    StereoCameraParametersArray stereo;
    CyclicErrorCorrection cyclic;
    short offsets[2] = {};
    bool lensStored = false;
    bool extrinsicsStored = false;
    bool correctionsStored = false;
};

} // namespace Zentara::Cameras
