#pragma once

#include <zentara/io/device_request.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara {
class AudioConfiguration;
}

namespace Zentara::IO {

struct RequestHusk;

/// Asks for the audio mode that the device starts with.
class ZENTARA_API getAudioDefaultConfigurationsRequest : public deviceRequest {
public:
    getAudioDefaultConfigurationsRequest(AVDeviceInterface* device,
                                         Utils::SmartPtr<AudioConfiguration> configuration);

    /// What the device fills; shared with the caller in a direct call, a copy on the worker.
    [[nodiscard]] const Utils::SmartPtr<AudioConfiguration>& getConfiguration() const;

protected:
    ~getAudioDefaultConfigurationsRequest() override;

private:
    friend struct RequestHusk;
    Utils::SmartPtr<AudioConfiguration> configuration; ///< null in a husk
};

/// Sets the input mixer's level.
class ZENTARA_API setAudioLevelRequest : public deviceRequest {
public:
    /// \param level 0 (silent) to 1 (full)
    setAudioLevelRequest(AVDeviceInterface* device, float level);

    [[nodiscard]] float getLevel() const;

protected:
    ~setAudioLevelRequest() override;

private:
    float level; ///< 0 (silent) to 1 (full)
};

/// Mutes the input or opens it again.
class ZENTARA_API setAudioMuteRequest : public deviceRequest {
public:
    setAudioMuteRequest(AVDeviceInterface* device, bool mute);

    [[nodiscard]] bool getMute() const;

protected:
    ~setAudioMuteRequest() override;

private:
    bool mute;
};

} // namespace Zentara::IO
