#pragma once

#include <cstdint>

#include <zentara/camera_controls.h>
#include <zentara/io/device_request.h>
#include <zentara/region_of_interest_internal.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara {
class AudioConfiguration;
class ColorConfiguration;
class DepthBaseConfiguration;
} // namespace Zentara

namespace Zentara::IO {

struct RequestHusk;

/// Starts a depth stream.
class ZENTARA_API enableDepthRequest : public deviceRequest {
public:
    enableDepthRequest(AVDeviceInterface* device, Utils::SmartPtr<DepthBaseConfiguration> configuration);

    [[nodiscard]] const Utils::SmartPtr<DepthBaseConfiguration>& getConfiguration() const;

protected:
    ~enableDepthRequest() override;

private:
    friend struct RequestHusk;
    Utils::SmartPtr<DepthBaseConfiguration> configuration; ///< null in a husk
};

/// Starts a colour stream with the given settings.
class ZENTARA_API enableColorRequest : public deviceRequest {
public:
    enableColorRequest(AVDeviceInterface* device, Utils::SmartPtr<ColorConfiguration> configuration,
                       CameraControls controls);

    [[nodiscard]] const Utils::SmartPtr<ColorConfiguration>& getConfiguration() const;
    [[nodiscard]] const CameraControls& getControls() const;

protected:
    ~enableColorRequest() override;

private:
    friend struct RequestHusk;
    Utils::SmartPtr<ColorConfiguration> configuration; ///< null in a husk
    CameraControls controls;
};

/// Starts an audio stream with the given input level and mute, as the level and mute requests carry them.
class ZENTARA_API enableAudioRequest : public deviceRequest {
public:
    enableAudioRequest(AVDeviceInterface* device, Utils::SmartPtr<AudioConfiguration> configuration,
                       float level, bool mute);

    [[nodiscard]] const Utils::SmartPtr<AudioConfiguration>& getConfiguration() const;
    [[nodiscard]] float getLevel() const;
    [[nodiscard]] bool getMute() const;

protected:
    ~enableAudioRequest() override;

private:
    friend struct RequestHusk;
    Utils::SmartPtr<AudioConfiguration> configuration; ///< null in a husk
    float level;                                       ///< 0 (silent) to 1 (full)
    bool mute;
};

/// Ends the stream. The flag's meaning is the device's; it is handed on unchanged.
class ZENTARA_API disableRequest : public deviceRequest {
public:
    disableRequest(AVDeviceInterface* device, bool flag);

    [[nodiscard]] bool getFlag() const;

protected:
    ~disableRequest() override;

private:
    bool flag;
};

/// Halts the stream without ending it.
class ZENTARA_API pauseStreamingRequest : public deviceRequest {
public:
    explicit pauseStreamingRequest(AVDeviceInterface* device);

protected:
    ~pauseStreamingRequest() override;
};

/// Goes on after a pause.
class ZENTARA_API resumeStreamingRequest : public deviceRequest {
public:
    explicit resumeStreamingRequest(AVDeviceInterface* device);

protected:
    ~resumeStreamingRequest() override;
};

/// Chooses the part of the sensor that is delivered, in pixels.
class ZENTARA_API setDeviceRegionOfInterestRequest : public deviceRequest {
public:
    setDeviceRegionOfInterestRequest(AVDeviceInterface* device, const RegionOfInterestInternal& region);

    [[nodiscard]] const RegionOfInterestInternal& getRegion() const;

protected:
    ~setDeviceRegionOfInterestRequest() override;

private:
    RegionOfInterestInternal region;
};

/// Chooses what the device puts into a frame.
class ZENTARA_API setOutputFormatRequest : public deviceRequest {
public:
    /// What there is to choose from.
    enum OutputFormat : std::int32_t {
        OutputFormat_DEPTH = 0,            ///< 16-bit depth in millimetres
        OutputFormat_DEPTH_CONFIDENCE = 1, ///< a plane of depth, then one of 16-bit confidence
        OutputFormat_RAW_PHASE = 2,        ///< what the sensor measures, before any correction
    };

    setOutputFormatRequest(AVDeviceInterface* device, OutputFormat format);

    [[nodiscard]] OutputFormat getFormat() const;

protected:
    ~setOutputFormatRequest() override;

private:
    OutputFormat format;
};

} // namespace Zentara::IO
