// contract_reader NODE FEW MANY: takes MANY frames of colour, 320 x 240 pixels, from the device plug-in through the contract, on its
// own thread and into its own memory, as a host does that has no library above the contract. Prints the processor time of all its
// threads from frame FEW to the last, in milliseconds a frame.
#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <zentara/zentara.h>

using namespace Zentara;

namespace {

/// Of all threads of this process.
double usedMilliseconds() { return static_cast<double>(std::clock()) * 1000 / CLOCKS_PER_SEC; }

/// A device by itself: with a node that is only a path.
struct Camera final : IO::VideoDeviceProxy {
    explicit Camera(const char* path) : VideoDeviceProxy(Core::Guids::V4L2VIDEO_IMPL, true) {
        NodeEvent node;
        node.path = path;
        initialize(&node, nullptr);
        open();
    }
};

void enableStreaming(IO::VideoDeviceProxy& camera) {
    std::vector<Utils::SmartPtr<ColorConfiguration>> modes;
    camera.getConfigurations(modes);
    const auto mode = std::find_if(modes.begin(), modes.end(),
                                   [](const auto& one) { return one->getFrameFormat() == FrameFormat_QVGA; });
    if (mode == modes.end())
        throw std::runtime_error("no mode of 320 x 240 pixels");
    camera.enableStreaming(*mode, {});
}

} // namespace

int main(int argc, char** argv) try {
    if (argc != 4)
        return 2;
    Camera camera(argv[1]);
    enableStreaming(camera);
    const int few = std::atoi(argv[2]);
    const int many = std::atoi(argv[3]);
    std::vector<char> frame(320 * 240 * 2);
    double before = 0;
    for (int taken = 0; taken < many; ++taken) {
        if (taken == few)
            before = usedMilliseconds();
        std::int64_t micros = 0;
        int length = 0;
        const ReadBufferStatus status =
            camera.readBuffer(frame.data(), static_cast<int>(frame.size()), &micros, &length);
        if (status != ReadBufferStatus_OK)
            throw std::runtime_error("no frame: status " + std::to_string(status));
    }
    std::cout << (usedMilliseconds() - before) / (many - few) << '\n';
    camera.disableStreaming(false);
    camera.close();
    return 0;
} catch (const std::exception& failure) {
    std::cerr << "contract_reader: " << failure.what() << '\n';
    return 1;
}
