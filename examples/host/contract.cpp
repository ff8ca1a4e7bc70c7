#include <zentara/zentara.h>

#include <iostream>
#include <vector>

using namespace Zentara;

// Reads one frame of depth from the first video device that has one, by the contract's classes alone.
int main() {
    Core::PluginManager* manager = Core::PluginManager::instance();
    const std::vector<GUID> devices = manager->getGUIDs(Core::ImplType_VIDEO_DEVICE);
    if (devices.empty())
        std::cerr << "no video device plug-in in '" << Core::getPluginDirectory() << "'\n";
    for (const GUID& guid : devices)
        try {
            IO::VideoDeviceProxy camera(guid, true);
            camera.open();
            camera.enableStreaming(Utils::makeRefcounted<DepthConfiguration>(
                FrameFormat_QVGA, 60, DepthNode::CameraMode_0, false, 0));
            std::vector<std::uint16_t> frame(2 * 320 * 240);
            std::int64_t micros = 0;
            int bytes = 0;
            camera.readBuffer(frame.data(), static_cast<int>(frame.size() * sizeof frame[0]), &micros,
                              &bytes);
            std::cout << Core::GUID_toString(guid) << ": " << bytes << " bytes at " << micros << " us\n";
            camera.disableStreaming(false);
            camera.close();
            break;
        } catch (const Zentara::Plugin::PluginException& failure) { // its camera is not plugged in
            std::cout << Core::GUID_toString(guid) << ": " << failure.message() << '\n';
        }
    manager->release();
}
