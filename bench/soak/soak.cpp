// zentara_soak MINUTES [SEED [PERCENT]]: uses all cameras side by side as hosts do, through the contract and through the host
// library, with nodes made anew all the time and PERCENT of the calls of a simulated device failing (1 unless given), and
// shows every 10 s what the process holds. Ends with 1 when that grew after the first minute (of three minutes or less: after
// their first third) by more than the husks of the requests that failed, when a camera's nodes were never made or gave no
// frame, or when threads or handles are left at the end.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <zentara/host/cameras.h>
#include <zentara/zentara.h>

#include "bench/soak/left_over.h"
#include "utils/platform/program.h"

namespace {

using namespace Zentara;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Utils::Platform::ResourceUse;

std::atomic<bool> ended{false};
std::atomic<std::uint64_t> callsFailed{0};

/// What a failed request leaves, with its share of those whose failure only the log tells, and what the heap may hold
/// besides.
constexpr std::size_t bytesPerHusk = 400;
constexpr std::size_t slackBytes = 2 << 20;

template<typename Interface>
Utils::SmartPtr<Interface> make(GUID guid) {
    Core::PluginManager* const manager = Core::PluginManager::instance();
    void* made = nullptr;
    try {
        made = manager->createInstance(guid, Interface::getImplType());
    } catch (...) {
        manager->release();
        throw;
    }
    manager->release();
    return Utils::SmartPtr<Interface>::adopt(dynamic_cast<Interface*>(static_cast<Core::Plugin*>(made)));
}

/// Faults of one device: each call of each operation fails with that chance, whatever happened to those before it, and
/// now and then one hangs beyond its caller's patience.
class Faults {
public:
    Faults(unsigned seed, double share) : some(share > 0), random(seed), gap(some ? share : 1) {}

    std::string next() {
        if (!some)
            return {};
        static const char* const operations[] = {
            "create",     "initialize", "dispose",     "threadInitialize",  "threadUninitialize",
            "readBuffer", "open",       "close",       "disable",           "getControlRanges",
            "setControl", "send",       "recv",        "getConfigurations", "enableColor",
            "setup",      "getDefault", "enableDepth", "enableAudio",       "len",
            "setLevel",   "setMute"};
        std::string text;
        for (const char* const operation : operations) {
            for (unsigned call = gap(random); call < callsPlanned; call += 1 + gap(random))
                text +=
                    std::string("throw io at ") + operation + " after " + std::to_string(call) + " times 1\n";
        }
        if (random() % 50 == 0)
            text += "hang 2500 at recv after " + std::to_string(random() % 20) + " times 1\n";
        return text;
    }

private:
    /// More than any operation of a device is called in its life.
    static constexpr unsigned callsPlanned = 1000;

    const bool some;
    std::mt19937 random;
    std::geometric_distribution<unsigned> gap;
};

/// The settings of the device that is made next. They come by a file, whose name stays in the environment: the C
/// library keeps every text that a variable ever had, for somebody may still read it.
class SettingsFile {
public:
    SettingsFile() { Utils::EnvironmentVariable("ZENTARA_SIMULATED").setValue(("@" + path).c_str()); }
    ~SettingsFile() { std::remove(path.c_str()); }
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;

    /// Makes a device with these settings, which it reads then.
    template<typename Step>
    void with(const std::string& settings, Step step) {
        const std::lock_guard hold(lock);
        Utils::writeFile(path, settings);
        step();
    }

private:
    static std::string freshPath() {
        const std::string name = "zentara-soak-" + std::to_string(std::random_device()()) + ".txt";
        const std::u8string whole = (std::filesystem::temp_directory_path() / name).u8string();
        return {whole.begin(), whole.end()};
    }

    const std::string path = freshPath();
    std::mutex lock;
};

struct FoundCamera {
    std::vector<NodeEvent> nodes;
    std::atomic<std::uint64_t> nodesMade{0};
    std::atomic<std::uint64_t> framesRead{0};
};

/// Who uses one camera. The buffer serves all its nodes, so that the heap shows what they leave and not its holes.
struct User {
    User(FoundCamera& used, SettingsFile& file, unsigned seed, double share)
        : camera(used), settings(file), faults(seed, share) {}

    FoundCamera& camera;
    SettingsFile& settings;
    Faults faults;
    std::vector<std::uint8_t> buffer = std::vector<std::uint8_t>(1 << 21);
};

/// Counts what fails; true when it did not.
bool attempt(const std::function<void()>& step) {
    try {
        step();
        return true;
    } catch (const Zentara::Plugin::PluginException&) {
    } catch (const Host::Failure&) {
    }
    ++callsFailed;
    return false;
}

std::vector<GUID> registered(Core::ImplType type) {
    Core::PluginManager* const manager = Core::PluginManager::instance();
    std::vector<GUID> guids = manager->getGUIDs(type);
    manager->release();
    return guids;
}

/// The store that has the description of the node, which is selected; the last one when none has.
Utils::SmartPtr<Core::DescriptorStoreInterface> storeOf(const NodeEvent& event) {
    Utils::SmartPtr<Core::DescriptorStoreInterface> store;
    for (const GUID& guid : registered(Core::ImplType_DESCRIPTOR_STORE)) {
        if (store)
            store->dispose();
        store = make<Core::DescriptorStoreInterface>(guid);
        store->initialize();
        if (store->selectNodeDescriptor(event.hardwareIds(), event.profile))
            break;
    }
    return store;
}

/// A camera's node from its making to its end.
template<typename Node>
class Life {
public:
    Life(NodeEvent found, User& camerasUser) : event(std::move(found)), user(camerasUser) {
        ready = attempt([&] {
            storeObject = storeOf(event);
            user.settings.with(user.faults.next(), [&] {
                node = make<Node>(storeObject->getDescriptorStore()->getNodeImplGUID());
                node->initialize(&event, storeObject->getDescriptorStore(), nullptr);
            });
            ++user.camera.nodesMade;
        });
    }
    ~Life() {
        if (node)
            attempt([&] { node->dispose(); });
        if (storeObject)
            attempt([&] { storeObject->dispose(); });
    }
    Life(const Life&) = delete;
    Life& operator=(const Life&) = delete;

    void stream(int frames) {
        if (!ready)
            return;
        attempt([&] {
            const auto modes = node->getConfigurations();
            node->enableStreaming(modes.at(static_cast<std::size_t>(frames) % modes.size()));
        });
        for (int i = 0; i < frames && !ended; ++i)
            attempt([&] {
                std::int64_t micros = 0;
                int length = 0;
                const int size = static_cast<int>(user.buffer.size());
                if (node->readBuffer(user.buffer.data(), size, &micros, &length) == ReadBufferStatus_OK)
                    ++user.camera.framesRead;
            });
        if constexpr (std::is_same_v<Node, Core::DepthNodeInterface>)
            askCamera();
        attempt([&] { node->disableStreaming(); });
    }

private:
    void askCamera() {
        attempt([&] { static_cast<void>(node->readTemperatures()); });
        Core::DescriptorStoreRO& store = *storeObject->getDescriptorStore();
        Utils::SmartPtr<IO::LibraryParameterInterpreter> parameters;
        attempt([&] {
            parameters = IO::LibraryParameterInterpreter::create(store.getParameterInterpreterGUID());
            parameters->initialize(*node->getAVDeviceProxy(), event.hardwareIds(),
                                   store.getHardwareVersion());
            static_cast<void>(parameters->getRange());
            static_cast<void>(parameters->getPhaseScaling());
        });
        if (parameters)
            attempt([&] { parameters->dispose(); });
    }

    NodeEvent event;
    User& user;
    Utils::SmartPtr<Core::DescriptorStoreInterface> storeObject;
    Utils::SmartPtr<Node> node;
    bool ready = false;
};

/// As a program does that knows nothing but the host library: finds the camera, reads frames and asks it.
void useHostLibrary(User& user, int frames) {
    attempt([&] {
        Host::Cameras cameras;
        const Host::Camera camera = cameras.open(user.camera.nodes.front().serialNumber);
        const std::vector<Host::NodeInfo>& nodes = camera.info().nodes;
        const Host::Kind kind = nodes.at(static_cast<std::size_t>(frames) % nodes.size()).kind;
        std::optional<Host::Stream> stream;
        user.settings.with(user.faults.next(), [&] { stream = camera.stream(kind); });
        ++user.camera.nodesMade;
        for (int i = 0; i < frames && !ended; ++i)
            user.camera.framesRead += stream->next(2s) ? 1 : 0;
        if (kind == Host::Kind::Depth)
            static_cast<void>(camera.parameters());
    });
}

/// Uses the nodes of one camera one after the other.
void useCamera(FoundCamera& camera, SettingsFile& settings, unsigned seed, double share) {
    User user(camera, settings, seed, share);
    for (int round = 0; !ended; ++round) {
        const NodeEvent& event = camera.nodes[static_cast<std::size_t>(round) % camera.nodes.size()];
        const int frames = 1 + round % 7;
        if (round % 8 == 7) {
            useHostLibrary(user, frames);
            continue;
        }
        switch (event.nodeType) {
        case NodeType_DEPTH:
            Life<Core::DepthNodeInterface>(event, user).stream(frames);
            break;
        case NodeType_COLOR:
            Life<Core::ColorNodeInterface>(event, user).stream(frames);
            break;
        case NodeType_AUDIO:
            Life<Core::AudioNodeInterface>(event, user).stream(frames);
            break;
        default:
            break;
        }
    }
}

/// The nodes that are there, by camera, each as the first store tells of it that has its description.
std::map<std::string, FoundCamera> findCameras() {
    std::map<std::string, FoundCamera> cameras;
    std::set<std::string> known;
    for (const GUID& storeGuid : registered(Core::ImplType_DESCRIPTOR_STORE)) {
        const auto store = make<Core::DescriptorStoreInterface>(storeGuid);
        store->initialize();
        for (const GUID& guid : registered(Core::ImplType_ENUMERATOR)) {
            const auto enumerator = make<IO::EnumeratorInterface>(guid);
            Utils::Collection::Queue<ExternalEvent> events;
            enumerator->initialize(&events, store->getDescriptorStore());
            std::vector<NodeEvent> nodes;
            enumerator->enumerate(nodes);
            for (const NodeEvent& node : nodes)
                if (store->selectNodeDescriptor(node.hardwareIds(), node.profile) &&
                    known.insert(node.path).second)
                    cameras[node.parentPath].nodes.push_back(node);
            enumerator->dispose();
        }
        store->dispose();
    }
    return cameras;
}

/// The most of the time when what is kept for later has been made, beside the least of the end: what comes and goes is in both.
class Watch {
public:
    explicit Watch(std::chrono::seconds whole)
        : time(whole), settled(std::min<std::chrono::seconds>(60s, whole / 3)) {}

    void run(const std::map<std::string, FoundCamera>& cameras) {
        const auto start = Clock::now();
        std::printf("%8s %10s %8s %8s %8s %8s %8s\n", "s", "KiB", "threads", "handles", "nodes", "frames",
                    "failed");
        for (auto passed = 1s; passed <= time; ++passed) {
            std::this_thread::sleep_until(start + passed);
            const ResourceUse now = Utils::Platform::resourceUse();
            note(now, passed);
            if (passed % 10 == 0s)
                print(now, passed, cameras);
        }
    }

    [[nodiscard]] bool isFlat() const {
        const std::size_t allowed =
            early.residentBytes + slackBytes + (callsFailed - failedEarly) * bytesPerHusk;
        const bool flat =
            late.residentBytes <= allowed && late.threads <= early.threads && late.handles <= early.handles;
        std::printf("%s: %zu KiB, %u threads, %u handles at the end; allowed were %zu KiB, %u and %u\n",
                    flat ? "flat" : "IT GROWS", late.residentBytes / 1024, late.threads, late.handles,
                    allowed / 1024, early.threads, early.handles);
        return flat;
    }

private:
    void note(const ResourceUse& now, std::chrono::seconds passed) {
        if (passed > settled && passed <= 2 * settled) {
            early = {std::max(early.residentBytes, now.residentBytes), std::max(early.threads, now.threads),
                     std::max(early.handles, now.handles)};
            failedEarly = callsFailed;
        }
        if (passed > time - settled)
            late = late.residentBytes == 0 ? now
                                           : ResourceUse{std::min(late.residentBytes, now.residentBytes),
                                                         std::min(late.threads, now.threads),
                                                         std::min(late.handles, now.handles)};
    }

    static void print(const ResourceUse& now, std::chrono::seconds passed,
                      const std::map<std::string, FoundCamera>& cameras) {
        std::uint64_t nodes = 0;
        std::uint64_t frames = 0;
        for (const auto& [path, camera] : cameras) {
            nodes += camera.nodesMade;
            frames += camera.framesRead;
        }
        std::printf("%8lld %10zu %8u %8u %8llu %8llu %8llu\n", static_cast<long long>(passed.count()),
                    now.residentBytes / 1024, now.threads, now.handles,
                    static_cast<unsigned long long>(nodes), static_cast<unsigned long long>(frames),
                    static_cast<unsigned long long>(callsFailed));
        std::fflush(stdout);
    }

    const std::chrono::seconds time;
    const std::chrono::seconds settled;
    ResourceUse early;
    ResourceUse late;
    std::uint64_t failedEarly = 0;
};

/// Every camera has been used: a run in which nothing happened shows nothing.
bool allWereUsed(const std::map<std::string, FoundCamera>& cameras) {
    bool all = !cameras.empty();
    for (const auto& [path, camera] : cameras) {
        std::printf("%s: %llu nodes, %llu frames\n", path.c_str(),
                    static_cast<unsigned long long>(camera.nodesMade),
                    static_cast<unsigned long long>(camera.framesRead));
        all = all && camera.nodesMade > camera.nodes.size() && camera.framesRead > 0;
    }
    if (!all)
        std::puts("NOT ALL CAMERAS WERE USED");
    return all;
}

} // namespace

int main(int argc, char** argv) {
    const int minutes = argc > 1 ? std::atoi(argv[1]) : 0;
    if (minutes < 1) {
        std::fputs("usage: zentara_soak MINUTES [SEED [PERCENT]]\n", stderr);
        return 2;
    }
    const double percent = argc > 3 ? std::atof(argv[3]) : 1;
    unsigned seed = argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 1;
    const ResourceUse before = Utils::Platform::resourceUse();
    auto cameras = findCameras();
    std::printf("%zu cameras, seed %u, %g %% of the calls fail\n", cameras.size(), seed, percent);
    bool good = false;
    {
        SettingsFile settings;
        std::vector<std::thread> users;
        for (auto& [path, camera] : cameras)
            users.emplace_back(useCamera, std::ref(camera), std::ref(settings), seed++, percent / 100);
        Watch watch{std::chrono::minutes(users.empty() ? 0 : minutes)};
        watch.run(cameras);
        ended = true;
        for (std::thread& user : users)
            user.join();
        good = allWereUsed(cameras) && watch.isFlat();
    }
    return nothingIsLeft(before) && good ? 0 : 1;
}
