// The constants of the exported classes. A client that binds a reference to one needs it from the library,
// and only a constant that is named outside its class is exported on every system.
#include <zentara/rom/accelerometer_calibration_data.h>
#include <zentara/rom/chunked_memory_management_header.h>
#include <zentara/rom/chunked_memory_manager.h>
#include <zentara/rom/container.h>
#include <zentara/rom/container_header.h>
#include <zentara/rom/cyclic_error_correction_data.h>
#include <zentara/rom/extrinsics_data.h>
#include <zentara/rom/gradient_distortion_correction_data.h>
#include <zentara/rom/gradient_distortion_correction_header.h>
#include <zentara/rom/gradient_distortion_correction_store.h>
#include <zentara/rom/intrinsics_data.h>
#include <zentara/rom/memory_block_header.h>
#include <zentara/rom/overheating_diagnostic_data.h>
#include <zentara/rom/phase_offset.h>
#include <zentara/rom/section.h>
#include <zentara/rom/serialized_data_block.h>
#include <zentara/rom/system_info_data.h>
#include <zentara/rom/temperature_calibration_data.h>
#include <zentara/rom/temperature_compensation_data.h>
#include <zentara/rom/zt536_hardware_info_data.h>

namespace Zentara::ROM {

constexpr TypeMarker AccelerometerCalibrationData::MARKER;
constexpr std::uint8_t AccelerometerCalibrationData::VERSION;
constexpr std::uint32_t AccelerometerCalibrationData::SIZE;

constexpr std::uint32_t ChunkedMemoryManagementHeader::SIZE;
constexpr std::uint8_t ChunkedMemoryManagementHeader::STRATEGY;

constexpr std::uint8_t ChunkedMemoryManager::HEADER_VERSION;
constexpr std::uint8_t ChunkedMemoryManager::HEADER_MIN_READOUT_VERSION;

constexpr std::uint8_t Container::HEADER_VERSION;
constexpr std::uint8_t Container::HEADER_MIN_READOUT_VERSION;

constexpr std::uint32_t ContainerHeader::SIZE;

constexpr TypeMarker CyclicErrorCorrectionData::MARKER;
constexpr std::uint8_t CyclicErrorCorrectionData::VERSION;
constexpr std::uint32_t CyclicErrorCorrectionData::MIN_SIZE;

constexpr TypeMarker ExtrinsicsData::MARKER;
constexpr std::uint8_t ExtrinsicsData::VERSION;
constexpr std::uint32_t ExtrinsicsData::SIZE;

constexpr TypeMarker GradientDistortionCorrectionData::MARKER;
constexpr std::uint8_t GradientDistortionCorrectionData::VERSION;
constexpr std::uint32_t GradientDistortionCorrectionData::MIN_SIZE;

constexpr TypeMarker GradientDistortionCorrectionHeader::MARKER;
constexpr std::uint8_t GradientDistortionCorrectionHeader::VERSION;
constexpr std::uint32_t GradientDistortionCorrectionHeader::MIN_SIZE;

constexpr std::uint16_t GradientDistortionCorrectionStore::UID;

constexpr TypeMarker IntrinsicsData::DEPTH_MARKER;
constexpr TypeMarker IntrinsicsData::COLOR_MARKER;
constexpr std::uint8_t IntrinsicsData::VERSION;
constexpr std::uint32_t IntrinsicsData::SIZE;

constexpr std::uint32_t MemoryBlockHeader::SIZE;

constexpr TypeMarker OverheatingDiagnosticData::MARKER;
constexpr std::uint8_t OverheatingDiagnosticData::VERSION;
constexpr std::uint32_t OverheatingDiagnosticData::SIZE;

constexpr TypeMarker PhaseOffset::MARKER;
constexpr TypeMarker PhaseOffset::MARKER2;
constexpr std::uint8_t PhaseOffset::VERSION;
constexpr std::uint32_t PhaseOffset::SIZE;

constexpr std::uint32_t Section::HEADER_SIZE;
constexpr std::uint32_t Section::MIN_SIZE;
constexpr std::uint8_t Section::SECTION_MARKER;
constexpr std::uint8_t Section::FLAG_WRITABLE;

constexpr std::uint32_t SerializedDataBlock::MIN_SIZE;

constexpr TypeMarker SystemInfoData::MARKER;
constexpr std::uint8_t SystemInfoData::VERSION;
constexpr std::uint32_t SystemInfoData::SIZE;

constexpr TypeMarker TemperatureCalibrationData::MARKER;
constexpr std::uint8_t TemperatureCalibrationData::VERSION;
constexpr std::uint32_t TemperatureCalibrationData::MIN_SIZE;

constexpr TypeMarker TemperatureCompensationData::MARKER;
constexpr std::uint8_t TemperatureCompensationData::VERSION;
constexpr std::uint32_t TemperatureCompensationData::MIN_SIZE;

constexpr TypeMarker ZT536HardwareInfoData::MARKER;
constexpr std::uint8_t ZT536HardwareInfoData::VERSION;
constexpr std::uint32_t ZT536HardwareInfoData::SIZE;

} // namespace Zentara::ROM
