#pragma once

#include <cstdint>
#include <cstring>
#include <iterator>
#include <typeinfo>
#include <utility>
#include <vector>

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/depth_configuration.h>
#include <zentara/io/audio_requests.h>
#include <zentara/io/camera_control_requests.h>
#include <zentara/io/streaming_requests.h>
#include <zentara/io/transfer_requests.h>
#include <zentara/io/xu_device_requests.h>

#include "io/request_husk.h"

/// The requests that point to memory, in the form in which they are queued: they own the memory that the device
/// sees. So a device that answers after its caller has left does not meet the caller's. Inputs are copied when the
/// request is made; results when the caller, after a normal return, has them delivered.
namespace Zentara::IO {

/// Holds what the request's base is about to point to, and so comes before it.
template<typename T>
struct RequestStorage : OwnedMemory {
    explicit RequestStorage(T initial) : stored(std::move(initial)) {}
    void giveBack() noexcept override { stored = T(); }

    T stored;
};

using RequestBytes = RequestStorage<std::vector<std::uint8_t>>;

template<typename Byte, typename Length>
std::vector<std::uint8_t> copyBytes(const Byte* data, Length length) {
    const auto* const first = static_cast<const std::uint8_t*>(data);
    return first && length > 0 ? std::vector<std::uint8_t>(first, first + length)
                               : std::vector<std::uint8_t>();
}

inline void copyBack(const std::vector<std::uint8_t>& stored, void* data) {
    if (!stored.empty())
        std::memcpy(data, stored.data(), stored.size());
}

class OwnedSendRequest final : public RequestBytes, public xuSendRequest {
public:
    OwnedSendRequest(AVDeviceInterface* device, std::uint32_t unitNumber, std::int32_t controlNumber,
                     std::uint32_t byteCount, const void* bytes)
        : RequestBytes(copyBytes(bytes, byteCount)),
          xuSendRequest(device, unitNumber, controlNumber, byteCount, stored.data()) {}
};

class OwnedRecvRequest final : public RequestBytes, public xuRecvRequest {
public:
    OwnedRecvRequest(AVDeviceInterface* device, std::uint32_t unitNumber, std::int32_t controlNumber,
                     std::uint32_t byteCount, void* bytes, bool deviceFlag)
        : RequestBytes(copyBytes(bytes, byteCount)),
          xuRecvRequest(device, unitNumber, controlNumber, byteCount, stored.data(), deviceFlag),
          destination(bytes) {}

    void deliver() const { copyBack(stored, destination); }

private:
    void* destination;
};

class OwnedLenRequest final : public RequestStorage<std::int32_t>, public xuLenRequest {
public:
    OwnedLenRequest(AVDeviceInterface* device, std::uint32_t unitNumber, std::uint32_t controlNumber,
                    std::int32_t* answer)
        : RequestStorage(*answer), xuLenRequest(device, unitNumber, controlNumber, &stored),
          destination(answer) {}

    void deliver() const { *destination = stored; }

private:
    std::int32_t* destination;
};

class OwnedSetupRequest final : public RequestStorage<GUID>, public xuSetupRequest {
public:
    OwnedSetupRequest(AVDeviceInterface* device, const GUID& unitGuid)
        : RequestStorage(unitGuid), xuSetupRequest(device, stored) {}
};

class OwnedControlRangesRequest final : public RequestStorage<CameraControlRanges>,
                                        public getCameraControlRangesRequest {
public:
    OwnedControlRangesRequest(AVDeviceInterface* device, CameraControlRanges& answer)
        : RequestStorage(answer), getCameraControlRangesRequest(device, stored), destination(answer) {}

    void deliver() { destination = std::move(stored); }

private:
    CameraControlRanges& destination;
};

using ColorConfigurations = std::vector<Utils::SmartPtr<ColorConfiguration>>;

/// The device finds an empty list: what the caller has in its own is none of its business.
class OwnedColorConfigurationsRequest final : public RequestStorage<ColorConfigurations>,
                                              public getColorConfigurationsRequest {
public:
    OwnedColorConfigurationsRequest(AVDeviceInterface* device, ColorConfigurations& answer)
        : RequestStorage(ColorConfigurations()), getColorConfigurationsRequest(device, stored),
          destination(answer) {}

    /// A list nobody took may hold objects of the device's own classes, whose code leaves with the device.
    ~OwnedColorConfigurationsRequest() override { stored.clear(); }

    void deliver() {
        destination.insert(destination.end(), std::make_move_iterator(stored.begin()),
                           std::make_move_iterator(stored.end()));
    }

private:
    ColorConfigurations& destination;
};

/// A copy, so that the caller may change its own while a device still reads. A configuration of another class, which
/// only its author could copy, is shared.
template<typename Known, typename Configuration>
Utils::SmartPtr<Configuration> copyConfiguration(const Utils::SmartPtr<Configuration>& configuration) {
    const Configuration* const original = configuration.get();
    if (!original || typeid(*original) != typeid(Known))
        return configuration;
    return Utils::makeRefcounted<Known>(static_cast<const Known&>(*original));
}

/// With commands of its own as well, save for what those point to.
inline Utils::SmartPtr<DepthBaseConfiguration>
copyDepthConfiguration(const Utils::SmartPtr<DepthBaseConfiguration>& configuration) {
    auto copy = copyConfiguration<DepthConfiguration>(configuration);
    if (copy != configuration) {
        for (Utils::SmartPtr<xuRequest>& command : copy->getCommands())
            command = command ? command->clone() : nullptr;
    }
    return copy;
}

class OwnedDepthRequest final : public enableDepthRequest {
public:
    OwnedDepthRequest(AVDeviceInterface* device, const Utils::SmartPtr<DepthBaseConfiguration>& mode)
        : enableDepthRequest(device, copyDepthConfiguration(mode)) {}
};

class OwnedColorRequest final : public enableColorRequest {
public:
    OwnedColorRequest(AVDeviceInterface* device, const Utils::SmartPtr<ColorConfiguration>& mode,
                      CameraControls settings)
        : enableColorRequest(device, copyConfiguration<ColorConfiguration>(mode), std::move(settings)) {}
};

class OwnedAudioRequest final : public enableAudioRequest {
public:
    OwnedAudioRequest(AVDeviceInterface* device, const Utils::SmartPtr<AudioConfiguration>& mode,
                      float inputLevel, bool muted)
        : enableAudioRequest(device, copyConfiguration<AudioConfiguration>(mode), inputLevel, muted) {}
};

class OwnedAudioConfigurationRequest final : public RequestStorage<Utils::SmartPtr<AudioConfiguration>>,
                                             public getAudioDefaultConfigurationsRequest {
public:
    OwnedAudioConfigurationRequest(AVDeviceInterface* device,
                                   const Utils::SmartPtr<AudioConfiguration>& answer)
        : RequestStorage(answer),
          getAudioDefaultConfigurationsRequest(
              device, answer ? Utils::makeRefcounted<AudioConfiguration>(*answer) : nullptr) {}

    /// What is stored is the caller's own, held and not copied: the caller may let go of it first.
    void deliver() const {
        if (stored)
            *stored = *getConfiguration();
    }
};

class OwnedReadControlRequest final : public RequestBytes, public readControlTransferRequest {
public:
    OwnedReadControlRequest(AVDeviceInterface* device, std::uint8_t code, std::uint16_t transferValue,
                            std::uint16_t transferIndex, std::uint8_t* bytes, std::uint16_t byteCount)
        : RequestBytes(copyBytes(bytes, byteCount)),
          readControlTransferRequest(device, code, transferValue, transferIndex, stored.data(), byteCount),
          destination(bytes) {}

    void deliver() const { copyBack(stored, destination); }

private:
    std::uint8_t* destination;
};

class OwnedWriteControlRequest final : public RequestBytes, public writeControlTransferRequest {
public:
    OwnedWriteControlRequest(AVDeviceInterface* device, std::uint8_t code, std::uint16_t transferValue,
                             std::uint16_t transferIndex, const std::uint8_t* bytes, std::uint16_t byteCount)
        : RequestBytes(copyBytes(bytes, byteCount)),
          writeControlTransferRequest(device, code, transferValue, transferIndex, stored.data(), byteCount) {}
};

class OwnedWriteBulkRequest final : public RequestBytes, public writeBulkTransferRequest {
public:
    OwnedWriteBulkRequest(AVDeviceInterface* device, std::uint8_t pipe, const std::uint8_t* bytes,
                          std::int32_t byteCount)
        : RequestBytes(copyBytes(bytes, byteCount)),
          writeBulkTransferRequest(device, pipe, stored.data(), byteCount) {}
};

} // namespace Zentara::IO
