#include "ratio_reporter.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <vector>

#include <opencv2/rgbd/depth.hpp>

#include <zentara/host/host.h>

namespace {

using namespace Zentara::Host;

const Bench::Aim cloudAims[] = {
    {"point_cloud_320x240", "plain_loop", 1.1,
     "a point cloud kept as a grid; the peer has the rays in a table"},
    {"point_cloud_640x480", "plain_loop", 1.1, "the same of a larger picture"},
    {"point_cloud_320x240", "opencv", 1.0, "the same against depthTo3d, which ignores distortion"},
    {"point_cloud_640x480", "opencv", 1.0, "the same of a larger picture"}};
const Bench::Aim plyAim{"ply_640x480", "fwrite", 1.2,
                        "a point cloud to a binary PLY file; the peer writes as many bytes"};

/// A lens, a picture of a tilted plane with holes, and the table of rays that the peer works with.
struct Scene {
    Scene(std::uint16_t width, std::uint16_t height)
        : lens({width, height, 0.7F * width, 0.7F * width, 0.5F * width, 0.5F * height, -0.2F, 0.05F, 0,
                0.001F, 0.001F},
               DepthAlong::Axis, "camera") {
        for (unsigned y = 0; y < height; ++y) {
            for (unsigned x = 0; x < width; ++x) {
                rays.push_back(*lens.ray({static_cast<float>(x), static_cast<float>(y)}));
                depth.push_back(static_cast<std::uint16_t>((x + y) % 17 == 0 ? 0 : 800 + x + y));
            }
        }
        cloud = makeCloud();
    }

    [[nodiscard]] PointCloud makeCloud() const {
        return lens.pointsOf(depth, lens.model().width, lens.model().height, {.keepGrid = true});
    }

    Lens lens;
    std::vector<Point> rays;
    std::vector<std::uint16_t> depth;
    PointCloud cloud;
};

Scene& scene(std::int64_t width) {
    static Scene small(320, 240);
    static Scene large(640, 480);
    return width == 320 ? small : large;
}

void cloud(benchmark::State& state) {
    Scene& one = scene(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(one.makeCloud());
}
BENCHMARK(cloud)->Name("point_cloud_320x240/ours")->Arg(320);
BENCHMARK(cloud)->Name("point_cloud_640x480/ours")->Arg(640);

/// What anybody would write who has the rays.
void plainLoop(benchmark::State& state) {
    Scene& one = scene(state.range(0));
    for (auto _ : state) {
        std::vector<Point> points(one.depth.size());
        for (std::size_t i = 0; i < points.size(); ++i) {
            const float metres = one.depth[i] == 0 ? std::numeric_limits<float>::quiet_NaN()
                                                   : static_cast<float>(one.depth[i]) / 1000;
            points[i] = {one.rays[i].x * metres, one.rays[i].y * metres, one.rays[i].z * metres};
        }
        benchmark::DoNotOptimize(points);
    }
}
BENCHMARK(plainLoop)->Name("point_cloud_320x240/plain_loop")->Arg(320);
BENCHMARK(plainLoop)->Name("point_cloud_640x480/plain_loop")->Arg(640);

/// Takes the lens for one without distortion.
void depthTo3d(benchmark::State& state) {
    Scene& one = scene(state.range(0));
    const Zentara::CameraIntrinsics& model = one.lens.model();
    const cv::Mat depth(model.height, model.width, CV_16U, one.depth.data());
    const cv::Matx33f camera(model.fx, 0, model.cx, 0, model.fy, model.cy, 0, 0, 1);
    for (auto _ : state) {
        cv::Mat points;
        cv::rgbd::depthTo3d(depth, camera, points);
        benchmark::DoNotOptimize(points.data);
    }
}
BENCHMARK(depthTo3d)->Name("point_cloud_320x240/opencv")->Arg(320);
BENCHMARK(depthTo3d)->Name("point_cloud_640x480/opencv")->Arg(640);

std::string outputFile() { return (std::filesystem::temp_directory_path() / "zentara-bench.ply").string(); }

void ply(benchmark::State& state) {
    for (auto _ : state) {
        std::ofstream out(outputFile(), std::ios::binary);
        scene(640).cloud.writePly(out);
    }
    std::filesystem::remove(outputFile());
}
BENCHMARK(ply)->Name("ply_640x480/ours");

void plainWrite(benchmark::State& state) {
    const std::vector<char> bytes(scene(640).depth.size() * sizeof(Point));
    for (auto _ : state) {
        std::FILE* const file = std::fopen(outputFile().c_str(), "wb");
        std::fwrite(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
    }
    std::filesystem::remove(outputFile());
}
BENCHMARK(plainWrite)->Name("ply_640x480/fwrite");

} // namespace

int main(int argc, char** argv) { return Bench::runAll(argc, argv); }
