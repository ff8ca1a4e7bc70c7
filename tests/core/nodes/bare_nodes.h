#pragma once

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/core/audio_node_interface.h>
#include <zentara/core/color_node_interface.h>
#include <zentara/core/depth_node_interface.h>
#include <zentara/depth_base_configuration.h>
#include <zentara/io/audio_device_proxy.h>
#include <zentara/io/video_device_proxy.h>

namespace Testing {

using namespace Zentara;

/// Nodes that have only what a node must have.
class BareDepthNode : public Core::DepthNodeInterface {
public:
    explicit BareDepthNode(GUID guid) : DepthNodeInterface(guid) {}

    void enableStreaming(Utils::SmartPtr<DepthBaseConfiguration> configuration) override {
        getAVDeviceProxy()->enableStreaming(configuration);
    }
    void disableStreaming() override { getAVDeviceProxy()->disableStreaming(true); }
    TemperatureCompensation getTemperatureCompensation() override { return {}; }
    std::vector<Utils::SmartPtr<DepthBaseConfiguration>> getConfigurations() override { return {}; }
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override {
        return getAVDeviceProxy()->readBuffer(buffer, size, timestamp, length);
    }
};

class BareColorNode : public Core::ColorNodeInterface {
public:
    explicit BareColorNode(GUID guid) : ColorNodeInterface(guid) {}

    void enableStreaming(Utils::SmartPtr<ColorConfiguration>) override {}
    void disableStreaming() override {}
    std::vector<Utils::SmartPtr<ColorConfiguration>> getConfigurations() override { return {}; }
    CameraControlRanges getCameraControlRanges() override { return {}; }
    void setCameraControl(CameraControlsEnum, CameraControlValue) override {}
    CameraControls getCameraControls() override { return {}; }
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override {
        return getAVDeviceProxy()->readBuffer(buffer, size, timestamp, length);
    }
};

class BareAudioNode : public Core::AudioNodeInterface {
public:
    explicit BareAudioNode(GUID guid) : AudioNodeInterface(guid) {}

    void enableStreaming(Utils::SmartPtr<AudioConfiguration>) override {}
    void disableStreaming() override {}
    std::vector<Utils::SmartPtr<AudioConfiguration>> getConfigurations() override { return {}; }
    Utils::SmartPtr<AudioConfiguration> getDefaultConfiguration() override { return {}; }
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override {
        return getAVDeviceProxy()->readBuffer(buffer, size, timestamp, length);
    }
};

} // namespace Testing
