// plugin_device NODE STEP...: takes the steps with a device of the plug-in for video nodes ("/dev/video0") or microphones ("hw:1,0"),
// and with nothing above it. What is read goes to standard output, a line for each reading to standard error: its status, its
// time in microseconds and its bytes. Steps: start, stop, read=COUNT, sleep=MILLISECONDS; of video region=X,Y,WIDTH,HEIGHT, pause
// and resume; of sound start=CHANNELS,BITS,RATE, level=FROM_0_TO_1, and mute=1 or 0. Pictures are 320 x 240 pixels, sound is in the
// usual mode unless told.
#include <cstdio>
#include <iostream>
#include <thread>

#include <zentara/zentara.h>

using namespace Zentara;

namespace {

/// A device by itself: with a node that is only a path.
template<typename Proxy>
struct Device final : Proxy {
    Device(const GUID& guid, const std::string& path) : Proxy(guid, false) {
        NodeEvent node;
        node.path = path;
        this->initialize(&node, nullptr);
        this->open();
    }
};

void take(IO::VideoDeviceProxy& camera, const std::string& step, const char* value) {
    std::vector<Utils::SmartPtr<ColorConfiguration>> modes;
    RegionOfInterestInternal part;
    if (step == "region" &&
        std::sscanf(value, "%u,%u,%u,%u", &part.x, &part.y, &part.width, &part.height) == 4)
        return camera.setRegionOfInterest(part);
    if (step != "start")
        return step == "pause" ? camera.pauseStreaming() : camera.resumeStreaming();
    camera.getConfigurations(modes);
    camera.enableStreaming(
        *std::find_if(modes.begin(), modes.end(),
                      [](const auto& mode) { return mode->getFrameFormat() == FrameFormat_QVGA; }),
        {});
}

void take(IO::AudioDeviceProxy& microphone, const std::string& step, const char* value) {
    if (step != "start")
        return step == "mute" ? microphone.setMute(*value == '1')
                              : microphone.setInputMixerLevel(std::stof(value));
    auto mode = Utils::makeRefcounted<AudioConfiguration>();
    microphone.getDefaultConfiguration(mode);
    int channels = 0, bits = 0, rate = 0;
    if (std::sscanf(value, "%d,%d,%d", &channels, &bits, &rate) == 3)
        mode = Utils::makeRefcounted<AudioConfiguration>(channels, bits, rate);
    microphone.enableStreaming(mode, 1, false);
}

void read(IO::AVDeviceProxy& device, int count) {
    for (std::vector<char> bytes(1 << 20); count > 0; --count) {
        std::int64_t micros = 0;
        int length = 0;
        const int status = device.readBuffer(bytes.data(), 1 << 20, &micros, &length);
        std::cerr << status << ' ' << micros << ' ' << length << '\n';
        std::cout.write(bytes.data(), status == ReadBufferStatus_OK ? length : 0);
    }
}

template<typename Proxy>
void takeAll(Device<Proxy> device, char** steps) {
    for (; *steps != nullptr; ++steps) {
        const std::string all = *steps;
        const std::string step = all.substr(0, all.find('='));
        const char* const value = *steps + std::min(step.size() + 1, all.size());
        if (step == "sleep")
            std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(value)));
        else if (step == "read")
            read(device, std::stoi(value));
        else if (step == "stop")
            device.disableStreaming(false);
        else
            take(device, step, value);
    }
}

} // namespace

int main(int, char** arguments) try {
    if (std::string(arguments[1]).rfind("/dev/video", 0) == 0)
        takeAll<IO::VideoDeviceProxy>({Core::Guids::V4L2VIDEO_IMPL, arguments[1]}, arguments + 2);
    else
        takeAll<IO::AudioDeviceProxy>({Core::Guids::ALSAAUDIO_IMPL, arguments[1]}, arguments + 2);
    return std::cout.flush() ? 0 : 1;
} catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return 1;
}
