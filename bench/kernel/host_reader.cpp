// host_reader CAMERA FEW MANY: takes MANY frames of colour, 320 x 240 pixels, from the host library, as a program does that uses it.
// Prints the processor time of all its threads from frame FEW to the last, in milliseconds a frame.
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <iostream>

#include <zentara/host/host.h>

namespace {

/// Of all threads of this process.
double usedMilliseconds() { return static_cast<double>(std::clock()) * 1000 / CLOCKS_PER_SEC; }

} // namespace

int main(int argc, char** argv) try {
    if (argc != 4)
        return 2;
    Zentara::Host::Cameras cameras;
    const Zentara::Host::Camera camera = cameras.open(argv[1]);
    Zentara::Host::Stream stream = camera.stream(Zentara::Host::Kind::Color, {.mode = "320x240"});
    const int few = std::atoi(argv[2]);
    const int many = std::atoi(argv[3]);
    std::size_t bytes = 0;
    double before = 0;
    for (int taken = 0; taken < many; ++taken) {
        if (taken == few)
            before = usedMilliseconds();
        const auto frame = stream.next(std::chrono::seconds(2));
        if (!frame)
            return 1;
        bytes += frame->bytes().size();
    }
    std::cout << (usedMilliseconds() - before) / (many - few) << '\n';
    stream.stop();
    std::cerr << bytes << " bytes, " << stream.counts().lostByDevice << " lost\n";
    return 0;
} catch (const std::exception& failure) {
    std::cerr << "host_reader: " << failure.what() << '\n';
    return 1;
}
