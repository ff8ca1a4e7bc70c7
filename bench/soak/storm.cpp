// zentara_storm SECONDS [SEED [THREADS]]: threads do at once what the headers let them do, in random order, to the same few
// objects, which others of them close, stop and replace in whatever phase they are; cameras come and go meanwhile, and their
// devices fail and hang for a moment. THREADS of them, or 2, 4, 8, 16, 32 and 64 for an equal share of the time each. Ends
// with 1 when an operation throws what it must not, takes too long or in 30 s was never done, or when threads or handles are left.
// The thread sanitizer finds the rest.
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <zentara/core/descriptor_store_interface.h>
#include <zentara/core/plugin_manager.h>
#include <zentara/host/cameras.h>
#include <zentara/host/recording.h>

#include "bench/soak/left_over.h"
#include "support/camera_bus.h"
#include "support/scoped_variable.h"

namespace {

using namespace Zentara;
using namespace Zentara::Host;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Random = std::mt19937;

/// For one operation: it waits for others, whose calls take 10 s each at most, on a machine that is busy with all of them.
constexpr auto patience = 60s;

/// There was nothing to do it to.
struct NothingThere {};

/// A few things of a kind, which all threads use and any of them replaces. Who has one keeps it until he is done with it.
template<typename Thing, std::size_t size>
class Shared {
public:
    [[nodiscard]] std::shared_ptr<Thing> any(Random& random) const {
        const std::lock_guard hold(lock);
        const std::shared_ptr<Thing> thing = things[random() % size];
        if (!thing)
            throw NothingThere();
        return thing;
    }
    void replaceAny(Random& random, std::shared_ptr<Thing> thing) {
        const std::lock_guard hold(lock);
        things[random() % size].swap(thing); // which goes when the lock has been let go
    }
    void clear() {
        for (auto& thing : things)
            thing.reset();
    }

private:
    mutable std::mutex lock;
    std::array<std::shared_ptr<Thing>, size> things;
};

struct Storm {
    Shared<Cameras, 2> cameras;
    Shared<Camera, 4> opened;
    Shared<Stream, 6> streams;
    Shared<Recorder, 2> recorders;
    std::mutex busLock; ///< one at a time writes which cameras are plugged in
    TestSupport::CameraBus bus;
    std::atomic<unsigned> recordings{0};

    void plug(unsigned which) {
        static constexpr std::array<const char*, 3> there = {R"({"model": "ZS570", "serialNumber": "LEFT"})",
                                                             R"({"model": "ZS570", "serialNumber": "RIGHT"})",
                                                             R"({"model": "ZS258", "serialNumber": "OLD"})"};
        std::string list;
        for (std::size_t camera = 0; camera < there.size(); ++camera)
            if ((which >> camera & 1U) != 0)
                list += (list.empty() ? "" : ", ") + std::string(there[camera]);
        const std::lock_guard hold(busLock);
        bus.plug(list);
    }
    [[nodiscard]] std::string recording(unsigned number) const {
        return bus.path("recording-" + std::to_string(number));
    }
};

std::string anyName(Random& random) {
    static constexpr std::array<const char*, 3> names = {"LEFT", "RIGHT", "OLD"};
    return names[random() % names.size()];
}

/// Looks for plug-ins, and makes one that another thread's may outlive.
void useContract(Storm&, Random& random) {
    Core::PluginManager* const manager = Core::PluginManager::instance();
    void* made = nullptr;
    try {
        const std::vector<GUID> guids = manager->getGUIDs(Core::ImplType_DESCRIPTOR_STORE);
        made = manager->createInstance(guids.at(random() % guids.size()), Core::ImplType_DESCRIPTOR_STORE);
    } catch (...) {
        manager->release();
        throw;
    }
    manager->release();
    const auto store = Utils::SmartPtr<Core::DescriptorStoreInterface>::adopt(
        dynamic_cast<Core::DescriptorStoreInterface*>(static_cast<Core::Plugin*>(made)));
    store->initialize();
    store->dispose();
}

void openStream(Storm& storm, Random& random) {
    StreamOptions options;
    options.started = random() % 4 != 0;
    options.awaitReturn = random() % 2 != 0;
    options.shared = random() % 4 == 0;
    options.keepsAll = random() % 4 == 0;
    const Kind kind = random() % 2 != 0 ? Kind::Depth : Kind::Color;
    storm.streams.replaceAny(random,
                             std::make_shared<Stream>(storm.opened.any(random)->stream(kind, options)));
}

void addFrame(Storm& storm, Random& random) {
    const std::shared_ptr<Stream> stream = storm.streams.any(random);
    const std::optional<Frame> frame = stream->next(200ms);
    if (!frame)
        throw NothingThere();
    storm.recorders.any(random)->add(0, *frame);
}

void playRecording(Storm& storm, Random& random) {
    const unsigned made = storm.recordings;
    if (made == 0)
        throw NothingThere();
    const Recording recording(storm.recording(random() % made));
    storm.opened.replaceAny(random, std::make_shared<Camera>(recording.camera()));
}

struct Operation {
    const char* name;
    unsigned share; ///< of all
    void (*act)(Storm& storm, Random& random);
    std::atomic<unsigned> done{0};
    std::atomic<unsigned> refused{0};
};

// clang-format off
Operation operations[] = {
    {"look for cameras anew", 1, [](Storm& storm, Random& random) {
         const auto cameras = std::make_shared<Cameras>(Cameras::Options{10s, [](const std::string&) {}});
         static_cast<void>(cameras->list());
         storm.cameras.replaceAny(random, cameras);
     }},
    {"list", 2, [](Storm& storm, Random& random) { static_cast<void>(storm.cameras.any(random)->list()); }},
    {"watch", 1, [](Storm& storm, Random& random) { storm.cameras.any(random)->watch(); }},
    {"next event", 2, [](Storm& storm, Random& random) { static_cast<void>(storm.cameras.any(random)->next(20ms)); }},
    {"close cameras", 1, [](Storm& storm, Random& random) { storm.cameras.any(random)->close(); }},
    {"plug", 1, [](Storm& storm, Random& random) { storm.plug(random() % 4 != 0 ? 7U : random() % 8); }},
    {"open", 4, [](Storm& storm, Random& random) {
         storm.opened.replaceAny(random, std::make_shared<Camera>(storm.cameras.any(random)->open(anyName(random))));
     }},
    {"close camera", 1, [](Storm& storm, Random& random) { storm.opened.any(random)->close(); }},
    {"parameters", 1, [](Storm& storm, Random& random) { static_cast<void>(storm.opened.any(random)->parameters()); }},
    {"set parameters", 1, [](Storm& storm, Random& random) { storm.opened.any(random)->setParameters({{0, 12.5F}, {7, false}}); }},
    {"temperatures", 1, [](Storm& storm, Random& random) { static_cast<void>(storm.opened.any(random)->temperatures()); }},
    {"stream's description", 1, [](Storm& storm, Random& random) { static_cast<void>(storm.opened.any(random)->streamInfo(Kind::Depth)); }},
    {"open stream", 4, openStream},
    {"start", 2, [](Storm& storm, Random& random) { storm.streams.any(random)->start(); }},
    {"next", 12, [](Storm& storm, Random& random) { static_cast<void>(storm.streams.any(random)->next(50ms)); }},
    {"latest", 4, [](Storm& storm, Random& random) { static_cast<void>(storm.streams.any(random)->latest(50ms)); }},
    {"poll", 4, [](Storm& storm, Random& random) {
         const std::shared_ptr<Stream> stream = storm.streams.any(random);
         static_cast<void>(stream->poll());
         static_cast<void>(stream->counts().received + stream->sharing().size() + stream->hangsIn().size());
         static_cast<void>(stream->trouble());
     }},
    {"stop", 2, [](Storm& storm, Random& random) { storm.streams.any(random)->stop(); }},
    {"record", 1, [](Storm& storm, Random& random) {
         const StreamInfo info = storm.streams.any(random)->info();
         storm.recorders.replaceAny(random, std::make_shared<Recorder>(storm.bus.path("of-" + std::to_string(random())), std::vector{info}));
     }},
    {"add a frame", 6, addFrame},
    {"end a recording", 1, [](Storm& storm, Random& random) { storm.recorders.any(random)->commit(); }},
    {"drop a recording", 1, [](Storm& storm, Random& random) { storm.recorders.any(random)->discard(); }},
    {"play", 1, playRecording},
    {"plug-ins", 2, useContract},
};
// clang-format on

/// One operation. What was refused was refused in words; anything else ends the storm.
bool act(Storm& storm, Operation& operation, Random& random) {
    const auto began = Clock::now();
    std::string trouble;
    try {
        operation.act(storm, random);
        ++operation.done;
    } catch (const NothingThere&) {
    } catch (const Failure&) {
        ++operation.refused;
    } catch (const std::exception& failure) {
        trouble = failure.what();
    }
    if (Clock::now() - began > patience)
        trouble =
            "it took " +
            std::to_string(std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - began).count()) +
            " s";
    if (!trouble.empty())
        std::fprintf(stderr, "IT FAILED: %s: %s\n", operation.name, trouble.c_str());
    return trouble.empty();
}

bool rage(Storm& storm, unsigned threads, std::chrono::milliseconds time, unsigned seed) {
    std::vector<Operation*> chances;
    for (Operation& operation : operations)
        chances.insert(chances.end(), operation.share, &operation);
    std::atomic<bool> good{true};
    std::vector<std::thread> running;
    for (unsigned thread = 0; thread < threads; ++thread)
        running.emplace_back([&, until = Clock::now() + time, random = Random(seed + thread)]() mutable {
            while (good && Clock::now() < until)
                if (!act(storm, *chances[random() % chances.size()], random))
                    good = false;
        });
    for (std::thread& thread : running)
        thread.join();
    return good;
}

/// Whether each was done at least once: what is always refused, or finds nothing, tries nothing.
bool tell() {
    bool all = true;
    for (const Operation& operation : operations) {
        std::printf("%-24s %8u done %8u refused%s\n", operation.name, operation.done.load(),
                    operation.refused.load(), operation.done > 0 ? "" : ": NEVER DONE");
        all = all && operation.done > 0;
    }
    return all;
}

/// A recording to play from the beginning on.
void makeRecording(Storm& storm) {
    Stream stream = Cameras().open("LEFT").stream(Kind::Depth);
    Recorder recorder(storm.recording(0), {stream.info()});
    for (int frames = 0; frames < 5; ++frames)
        recorder.add(0, stream.next(10s).value());
    recorder.commit();
    storm.recordings = 1;
}

} // namespace

/// Some times a minute the thread sanitizer begins to count anew, and takes what a thread writes meanwhile for races, which it
/// drops. Each would stay in its list of equal addresses and be compared with all in it, which holds the thread up for minutes.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer asks for it by this name
extern "C" const char* __tsan_default_options() { return "suppress_equal_addresses=0"; }

int main(int argc, char** argv) {
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 0;
    if (seconds < 1) {
        std::fputs("usage: zentara_storm SECONDS [SEED [THREADS]]\n", stderr);
        return 2;
    }
    const unsigned seed = argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 1;
    std::vector<unsigned> counts = {2, 4, 8, 16, 32, 64};
    if (argc > 3)
        counts = {static_cast<unsigned>(std::atoi(argv[3]))};
    std::thread([] {}).join(); // with the first one a sanitizer begins one of its own
    const Utils::Platform::ResourceUse before = Utils::Platform::resourceUse();
    bool good = true;
    {
        Storm storm;
        storm.plug(7);
        makeRecording(storm);
        const TestSupport::ScopedVariable faults(
            "ZENTARA_SIMULATED", "throw io at readBuffer after 60 times 1; hang 150 at readBuffer after 40 "
                                 "times 1; throw io at recv after 150 times 1; hang 50 at dispose");
        for (const unsigned threads : counts)
            good = good && rage(storm, threads,
                                std::chrono::milliseconds(1000 * seconds / static_cast<int>(counts.size())),
                                seed + 1000 * threads);
        storm.streams.clear();
        storm.recorders.clear();
        storm.opened.clear();
        storm.cameras.clear();
    }
    const bool allDone = tell() || seconds < 30; // in a few seconds chance may leave one out
    return nothingIsLeft(before) && good && allDone ? 0 : 1;
}
