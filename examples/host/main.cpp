#include <zentara/host/host.h>

#include <iostream>

using namespace Zentara::Host;

// Tells how far away the middle of the picture is, in ten frames of the first camera that is plugged in.
int main() {
    try {
        Cameras cameras;
        Camera camera = cameras.open(); // or of a name: cameras.open("SIM0570")
        Stream depth = camera.stream(Kind::Depth);
        for (int count = 0; count < 10; ++count) {
            const auto frame = depth.next(std::chrono::seconds(2));
            if (!frame) // the camera has ended its stream
                break;
            std::cout << frame->number() << ": " << frame->bytes().size() << " bytes at "
                      << frame->deviceMicros() << " us, "
                      << frame->metres(frame->width() / 2, frame->height() / 2) << " m in the middle\n";
        }
        return 0;
    } catch (const Failure& failure) { // says what is missing where there is no camera, or no plug-in
        std::cerr << failure.what() << '\n' << failure.remedy() << '\n';
        return failure.code();
    }
}
