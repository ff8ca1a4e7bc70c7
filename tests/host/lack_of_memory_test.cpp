// One allocation of an operation finds no memory, on whichever thread it comes: the operation does its work or throws, its
// files are as before or as after it, and the next one, with the same cameras, does its work. A few allocations of each
// operation, spread over all of them; every nth with ZENTARA_TEST_STEP in the environment.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>

#include <gmock/gmock.h>

#include <zentara/host/host.h>
#include <zentara/utils/files.h>

#include "support/camera_bus.h"
#include "support/failing_allocation.h"

namespace Zentara::Host {
namespace {

using namespace std::chrono_literals;
using TestSupport::FailingAllocationAnywhere;

constexpr auto inTime = 20s;
using Files = std::map<std::filesystem::path, std::string>;

/// A directory with a recording and a flash image, and a camera on the bus.
struct Place : TestSupport::CameraBus {
    Place() {
        plug(R"({"model": "ZS570", "serialNumber": "LEFT"})");
        opened.emplace(cameras.emplace().open("LEFT"));
        Flash flash = Flash::create(path("image"));
        flash.apply(flash.planFormat(flash.load()));
        flash.apply(flash.plan(flash.load(), {{1, {77, 1, Bytes(600, 1)}}, {2, {78, 1, Bytes(9, 2)}}}),
                    noBackup);
        flash.backup(path("backup"), FlashImage(flash.area()));
        Stream stream = opened->stream(Kind::Depth);
        Recorder recorder(path("recording"), {stream.info()});
        for (int frames = 0; frames < 2; ++frames)
            recorder.add(0, stream.next(inTime).value());
        recorder.commit();
        files = filesNow();
    }

    [[nodiscard]] Files filesNow() const {
        Files all;
        for (const auto& entry : std::filesystem::directory_iterator(directory))
            if (entry.path().extension() != ".lock") // Windows lets nobody read it while it is held
                all[entry.path()] = Utils::readFile(path(entry.path().filename().string()));
        return all;
    }

    void reset() const {
        for (const auto& [file, bytes] : filesNow())
            if (files.count(file) == 0)
                std::filesystem::remove(file);
        for (const auto& [file, bytes] : files)
            Utils::writeFile(path(file.filename().string()), bytes);
    }

    [[nodiscard]] Frame frame() const { return Recording(path("recording")).at(0, 1); }

    const ApplyOptions noBackup{.keeps = false, .backup = {}, .kept = {}};
    const std::filesystem::path directory = TestSupport::TemporaryDirectory::fromUtf8(path());
    Files files;
    std::optional<Cameras> cameras;
    std::optional<Camera> opened; ///< has been used; what is done first to a camera makes and asks its nodes
};

// clang-format off
struct Operation {
    const char* name;
    std::size_t (*work)(Place& place); ///< what it gave, as a number that is the same each time
};

const Operation operations[] = {
    {"Watch", [](Place&) {
         Cameras cameras;
         cameras.watch();
         std::optional<CameraEvent> event;
         try {
             event = cameras.next(inTime);
         } catch (const std::exception&) { // the event comes again
             event = cameras.next(inTime);
         }
         return event.value().camera.controller.size() + cameras.list().size();
     }},
    {"Describe", [](Place& place) {
         const StreamInfo info = place.cameras->open("LEFT").streamInfo(Kind::Depth);
         if (!info.sourceFailure.empty()) // the description stands in, and that is told
             throw Failure(Failure::Failed, info.sourceFailure);
         return info.lens.value().width + info.corrections.modes[0].temperatureParameters.size();
     }},
    {"Parameters", [](Place& place) {
         place.opened->setParameters({{0, 12.5F}, {7, false}});
         return valueText(place.opened->parameter(0).value.value()).size() + place.opened->parameters().size();
     }},
    {"Stream", [](Place& place) {
         Stream stream = place.cameras->open("LEFT").stream(Kind::Depth);
         return std::size_t{stream.next(inTime).value().width()};
     }},
    {"SharedStream", [](Place& place) {
         Stream stream = place.opened->stream(Kind::Color, {.shared = true});
         return std::size_t{stream.next(inTime).value().width()};
     }},
    {"CameraFlash", [](Place& place) { return surveyOf(place.opened->flash().load()).blocks.size(); }},
    {"Record", [](Place& place) {
         const Frame frame = place.frame();
         Recorder recorder(place.path("new"), {frame.info()});
         recorder.add(0, frame);
         recorder.commit();
         return static_cast<std::size_t>(recorder.frames());
     }},
    {"Replay", [](Place& place) {
         const Recording recording(place.path("recording"));
         Stream stream = recording.camera("LEFT", {.speed = 1000}).stream(Kind::Depth, {.keepsAll = true});
         std::size_t frames = 0;
         while (stream.next(inTime))
             ++frames;
         return frames;
     }},
    {"ChangeImage", [](Place& place) {
         Flash flash = Flash::image(place.path("image"), {}, Flash::Access::Write);
         FlashContent wanted = contentOf(flash.load());
         wanted[3] = {79, 1, Bytes(300, 3)};
         const FlashChange change = flash.plan(flash.load(), wanted, {.rebuild = true});
         return flash.apply(change, {.keeps = true, .backup = place.path("kept"), .kept = {}}).size();
     }},
    {"RestoreImage", [](Place& place) {
         Flash flash = Flash::image(place.path("image"), {}, Flash::Access::Write);
         const FlashChange change = flash.planRestore(flash.load(), place.path("backup"), {.damaged = true});
         return flash.apply(change, place.noBackup).size();
     }},
    {"Salvage", [](Place& place) {
         FlashImage image = Flash::image(place.path("image")).load();
         image.write(0, Bytes(64, 0));
         return salvageOf(image).content.size() + surveyOf(image).findings.size();
     }},
    {"Cloud", [](Place& place) {
         const Frame frame = place.frame().corrected();
         const PointCloud cloud = Lens(*frame.info().lens, DepthAlong::Axis, "camera").pointsOf(frame);
         cloud.writePly(place.path("new.ply"));
         return cloud.points().size();
     }},
    {"Picture", [](Place& place) {
         pictureOf(place.frame()).writePng(place.path("new.png"));
         return std::size_t{1};
     }},
};
// clang-format on

bool contains(const Files& files, const Files::value_type& file) {
    return std::find(files.begin(), files.end(), file) != files.end();
}

class HostLackOfMemory : public testing::TestWithParam<Operation> {};
INSTANTIATE_TEST_SUITE_P(Operations, HostLackOfMemory, testing::ValuesIn(operations),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(HostLackOfMemory, LeavesEverythingAsItWas) {
    Place place;
    const std::size_t wanted = GetParam().work(place); // what is made once in a process's life is made here
    place.reset();
    std::size_t all = 0;
    {
        const FailingAllocationAnywhere none(SIZE_MAX);
        EXPECT_EQ(GetParam().work(place), wanted);
        all = FailingAllocationAnywhere::count();
    }
    const Files after = place.filesNow();
    const char* const chosen = std::getenv("ZENTARA_TEST_STEP");
    const std::size_t step = chosen != nullptr ? std::stoul(chosen) : 1 + all / 12;
    for (std::size_t n = 0; n < all; n += step) {
        SCOPED_TRACE(n);
        place.reset();
        try {
            const FailingAllocationAnywhere failing(n);
            EXPECT_EQ(GetParam().work(place), wanted);
        } catch (const Failure& failure) {
            EXPECT_NE(failure.code(), Failure::NoDevice) << failure.what();
        } catch (const std::bad_alloc&) {
        }
        for (const auto& file : place.filesNow())
            EXPECT_TRUE(contains(place.files, file) || contains(after, file)) << file.first;
        place.reset();
        ASSERT_EQ(GetParam().work(place), wanted);
    }
}

} // namespace
} // namespace Zentara::Host
