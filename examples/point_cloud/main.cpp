#include <zentara/host/host.h>

#include <chrono>
#include <iostream>

using namespace Zentara;
using namespace std::chrono_literals;

// Writes a frame of the first camera as a point cloud: point_cloud [FILE.ply]
int main(int argc, char** argv) {
    const char* const file = argc > 1 ? argv[1] : "cloud.ply";
    try {
        Host::Cameras cameras;
        const Host::Camera camera = cameras.open();
        Host::Stream depth = camera.stream(Host::Kind::Depth);
        const auto frame = depth.next(5s);
        if (!frame)
            return 1;
        const Host::PointCloud cloud = frame->lens().pointsOf(*frame);
        cloud.writePly(file);
        std::cout << cloud.points().size() << " points of " << camera.info().label() << " in " << file
                  << '\n';
    } catch (const Host::Failure& failure) {
        std::cerr << failure.what() << '\n' << failure.remedy() << '\n';
        return failure.code();
    }
}
