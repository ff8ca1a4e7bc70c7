// zentara_soak MINUTES [SEED [PERCENT]]: uses all simulated cameras side by side as a host does, with nodes made anew
// all the time and PERCENT of the calls of a device failing (1 unless given), and shows every 10 s what the process
// holds. Ends with 1 when that grew after the first minute by more than the husks of the requests that failed.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <zentara/zentara.h>

#include "utils/platform/program.h"

namespace {

using namespace Zentara;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Utils::Platform::ResourceUse;

std::atomic<bool> ended{false};
std::atomic<std::uint64_t> nodesMade{0};
std::atomic<std::uint64_t> framesRead{0};
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

/// Who uses one camera. The buffer serves all its nodes, so that the heap shows what they leave and not its holes.
struct User {
    User(SettingsFile& file, unsigned seed, double share) : settings(file), faults(seed, share) {}

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
        ++callsFailed;
        return false;
    }
}

/// A camera's node from its making to its end.
template<typename Node>
class Life {
public:
    Life(NodeEvent found, User& camerasUser) : event(std::move(found)), user(camerasUser) {
        ready = attempt([&] {
            storeObject = make<Core::DescriptorStoreInterface>(storeGuid());
            storeObject->initialize();
            storeObject->selectNodeDescriptor(event.hardwareIds(), event.profile);
            user.settings.with(user.faults.next(), [&] {
                node = make<Node>(storeObject->getDescriptorStore()->getNodeImplGUID());
                node->initialize(&event, storeObject->getDescriptorStore(), nullptr);
            });
            ++nodesMade;
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
                    ++framesRead;
            });
        if constexpr (std::is_same_v<Node, Core::DepthNodeInterface>)
            askCamera();
        attempt([&] { node->disableStreaming(); });
    }

private:
    static GUID storeGuid() {
        Core::PluginManager* const manager = Core::PluginManager::instance();
        const GUID guid = manager->getGUIDs(Core::ImplType_DESCRIPTOR_STORE).at(0);
        manager->release();
        return guid;
    }

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

/// Uses the nodes of one camera one after the other.
void useCamera(const std::vector<NodeEvent>& nodes, SettingsFile& settings, unsigned seed, double share) {
    User user(settings, seed, share);
    for (int round = 0; !ended; ++round) {
        const NodeEvent& event = nodes[static_cast<std::size_t>(round) % nodes.size()];
        const int frames = 1 + round % 7;
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

/// The nodes that are there, by camera.
std::map<std::string, std::vector<NodeEvent>> findCameras() {
    std::map<std::string, std::vector<NodeEvent>> cameras;
    Core::PluginManager* const manager = Core::PluginManager::instance();
    const auto store =
        make<Core::DescriptorStoreInterface>(manager->getGUIDs(Core::ImplType_DESCRIPTOR_STORE).at(0));
    store->initialize();
    Utils::Collection::Queue<ExternalEvent> events;
    const auto enumerator = make<IO::EnumeratorInterface>(manager->getGUIDs(Core::ImplType_ENUMERATOR).at(0));
    enumerator->initialize(&events, store->getDescriptorStore());
    enumerator->execute();
    for (ExternalEvent event; events.timedPop(event, 2000);) {
        if (event.type == ExternalEventType_NODE_ARRIVED)
            cameras[event.node.parentPath].push_back(event.node);
    }
    enumerator->dispose();
    store->dispose();
    manager->release();
    return cameras;
}

int watch(std::chrono::minutes time) {
    const auto start = Clock::now();
    std::printf("%8s %10s %8s %8s %8s %8s %8s\n", "s", "KiB", "threads", "handles", "nodes", "frames",
                "failed");
    ResourceUse early;
    ResourceUse late;
    std::uint64_t failedEarly = 0;
    for (auto next = start + 10s; next <= start + time; next += 10s) {
        std::this_thread::sleep_until(next);
        const ResourceUse now = Utils::Platform::resourceUse();
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(next - start);
        std::printf("%8lld %10zu %8u %8u %8llu %8llu %8llu\n", static_cast<long long>(seconds.count()),
                    now.residentBytes / 1024, now.threads, now.handles,
                    static_cast<unsigned long long>(nodesMade), static_cast<unsigned long long>(framesRead),
                    static_cast<unsigned long long>(callsFailed));
        std::fflush(stdout);
        // The most of the second minute beside the least of the last one: what comes and goes is in both.
        if (seconds > 60s && seconds <= 120s) {
            early = {std::max(early.residentBytes, now.residentBytes), std::max(early.threads, now.threads),
                     std::max(early.handles, now.handles)};
            failedEarly = callsFailed;
        }
        if (next > start + time - 60s)
            late = late.residentBytes == 0 ? now
                                           : ResourceUse{std::min(late.residentBytes, now.residentBytes),
                                                         std::min(late.threads, now.threads),
                                                         std::min(late.handles, now.handles)};
    }
    const std::size_t allowed = early.residentBytes + slackBytes + (callsFailed - failedEarly) * bytesPerHusk;
    const bool flat =
        late.residentBytes <= allowed && late.threads <= early.threads && late.handles <= early.handles;
    std::printf("%s: %zu KiB, %u threads, %u handles at the end; allowed were %zu KiB, %u and %u\n",
                flat ? "flat" : "it grows", late.residentBytes / 1024, late.threads, late.handles,
                allowed / 1024, early.threads, early.handles);
    return flat ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    const int minutes = argc > 1 ? std::atoi(argv[1]) : 0;
    if (minutes < 3) {
        std::fputs("usage: zentara_soak MINUTES [SEED [PERCENT]], with 3 minutes or more\n", stderr);
        return 2;
    }
    const double percent = argc > 3 ? std::atof(argv[3]) : 1;
    unsigned seed = argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 1;
    const auto cameras = findCameras();
    std::printf("%zu cameras, seed %u, %g %% of the calls fail\n", cameras.size(), seed, percent);
    SettingsFile settings;
    std::vector<std::thread> users;
    for (const auto& camera : cameras)
        users.emplace_back(useCamera, camera.second, std::ref(settings), seed++, percent / 100);
    const int result = users.empty() ? 1 : watch(std::chrono::minutes(minutes));
    ended = true;
    for (std::thread& user : users)
        user.join();
    return result;
}
