#include <chrono>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <zentara/external_event.h>
#include <zentara/host/failure.h>
#include <zentara/io/enumerator_interface.h>
#include <zentara/utils/format.h>

#include "host/plugins/check/check_subject.h"

namespace Zentara::Host::Check {
namespace {

using Utils::Format;
using namespace std::chrono_literals;

using Events = Utils::Collection::Queue<ExternalEvent>;

class EnumeratorCheck {
public:
    EnumeratorCheck(Subject& checked, IO::EnumeratorInterface& object)
        : run(checked.run), enumerator(object) {}

    void all() {
        tryUnready("before initialize");
        findStores();
        run.step({operationsPart, "initialize without queue and descriptions"}, Wanted::Either,
                 [this] { enumerator.initialize(nullptr, nullptr); });
        run.step({operationsPart, "dispose after that"}, Wanted::Success, [this] { enumerator.dispose(); });
        run.step({operationsPart, "initialize"}, Wanted::Success,
                 [this] { enumerator.initialize(&events, view()); });
        run.step({operationsPart, "getBackendName"}, Wanted::Success, [this]() -> std::string {
            const std::string name = enumerator.getBackendName();
            if (name.empty())
                throw Finding{StepVerdict::Remark, "no name", "nobody can tell where its cameras come from",
                              "name what it finds cameras on, for people"};
            return name;
        });
        run.step({operationsPart, "enumerate into a list that is not empty"}, Wanted::Success,
                 [this]() -> std::string { return list(); });
        run.step({operationsPart, "isPresent of each"}, Wanted::Success,
                 [this]() -> std::string { return askForEach(); });
        run.step({operationsPart, "isPresent of a node that is not there"}, Wanted::Success,
                 [this]() -> std::string {
                     NodeEvent other;
                     other.path = "a path that no node has";
                     if (enumerator.isPresent(other))
                         throw Finding{StepVerdict::Failed, "true", "a host waits for a camera that has gone",
                                       "compare the event's path with those that are there"};
                     return "false";
                 });
        tryThread();
        end();
    }

private:
    [[nodiscard]] Core::DescriptorStoreRO* view() const { return stores ? &stores->all() : nullptr; }

    void tryUnready(const std::string& when) {
        run.step({operationsPart, "enumerate " + when}, Wanted::Either, [this]() -> std::string {
            std::vector<NodeEvent> found;
            enumerator.enumerate(found);
            return Format("% nodes") % found.size();
        });
        run.step({operationsPart, "isPresent " + when}, Wanted::Either, [this]() -> std::string {
            return std::string(enumerator.isPresent({}) ? "true" : "false");
        });
        run.step({operationsPart, "exit " + when}, Wanted::Success, [this] { enumerator.exit(); });
        run.step({operationsPart, "dispose " + when}, Wanted::Success, [this] { enumerator.dispose(); });
    }

    void findStores() {
        run.step({objectPart, "descriptions of cameras in the install root"}, Wanted::Success, [this] {
            try {
                stores = std::make_unique<CameraStore>();
            } catch (const Failure& failure) {
                throw Finding{
                    StepVerdict::NotRun, failure.what(), "",
                    "put a descriptor store beside it; without one it has no description to select"};
            }
        });
    }

    std::string list() {
        NodeEvent stale;
        stale.path = "left from before";
        std::vector<NodeEvent> found{stale};
        enumerator.enumerate(found);
        std::set<std::pair<std::string, NodeType>> seen;
        for (const NodeEvent& node : found) {
            if (node.path == stale.path)
                throw Finding{StepVerdict::Failed, "the list keeps what was in it",
                              "a host sees cameras that have gone", "clear the list first"};
            if (node.path.empty() || node.parentPath.empty())
                throw Finding{StepVerdict::Failed,
                              Format("node '%' has no path or no parentPath") % node.name,
                              "a host cannot open it, nor tell its camera from another",
                              "fill in both: where the node is, and one text for all nodes of the camera"};
            if (node.nodeType == NodeType_NONE)
                throw Finding{StepVerdict::Failed, Format("node '%' is of no type") % node.path,
                              "no host finds a use for it",
                              "leave out what no description has, and call fillEvent()"};
            if (!seen.insert({node.path, node.nodeType}).second)
                throw Finding{StepVerdict::Failed, Format("path '%' appears twice") % node.path,
                              "a host shows one of the two", "give each node a path of its own"};
        }
        nodes = found;
        return Format("% nodes") % nodes.size();
    }

    std::string askForEach() {
        for (const NodeEvent& node : nodes)
            if (!enumerator.isPresent(node))
                throw Finding{StepVerdict::Failed,
                              Format("false for '%', which enumerate has just listed") % node.path,
                              "a host takes the camera for pulled out", "answer from what enumerate lists"};
        return Format("% nodes") % nodes.size();
    }

    void tryThread() {
        run.step({threadsPart, "execute"}, Wanted::Success, [this] { enumerator.execute(); });
        run.step({threadsPart, "execute a second time"}, Wanted::Success, [this] { enumerator.execute(); });
        run.step({threadsPart, "enumerate on another thread while its own runs"}, Wanted::Success,
                 [this]() -> std::string {
                     OtherThread other;
                     std::vector<NodeEvent> found;
                     for (int round = 0; round < 20; ++round)
                         other.run([&] { enumerator.enumerate(found); });
                     return Format("% nodes") % found.size();
                 });
        run.step({threadsPart, "an arrival in the queue for each node that is there"}, Wanted::Success,
                 [this]() -> std::string { return awaitArrivals(); });
        run.step({threadsPart, "exit on another thread"}, Wanted::Success,
                 [this] { OtherThread().run([this] { enumerator.exit(); }); });
        run.step({threadsPart, "its thread ends soon"}, Wanted::Success, [this] {
            for (const auto end = std::chrono::steady_clock::now() + 1s; enumerator.running();) {
                if (std::chrono::steady_clock::now() > end)
                    throw Finding{
                        StepVerdict::Failed, "it still runs after 1 s",
                        "dispose() waits for it, perhaps for ever",
                        "look at exitRequested() in run(), and override exit() to wake what waits there"};
                std::this_thread::sleep_for(2ms);
            }
        });
        run.step({threadsPart, "execute after that"}, Wanted::Success, [this] { enumerator.execute(); });
    }

    std::string awaitArrivals() {
        std::set<std::pair<std::string, NodeType>> missing;
        for (const NodeEvent& node : nodes)
            missing.insert({node.path, node.nodeType});
        ExternalEvent event;
        const auto end = std::chrono::steady_clock::now() + 1500ms;
        while (!missing.empty() && std::chrono::steady_clock::now() < end)
            if (events.timedPop(event, 100) && event.type == ExternalEventType_NODE_ARRIVED)
                missing.erase({event.node.path, event.node.nodeType});
        if (!missing.empty())
            throw Finding{StepVerdict::Failed, Format("none came of '%'") % missing.begin()->first,
                          "a host that waits for cameras never sees it",
                          "let run() begin with the arrivals of what is there"};
        return Format("% arrivals") % nodes.size();
    }

    void end() {
        run.step({endingPart, "dispose while its thread runs"}, Wanted::Success,
                 [this] { enumerator.dispose(); });
        run.step({endingPart, "dispose a second time"}, Wanted::Success, [this] { enumerator.dispose(); });
        run.step({endingPart, "initialize once more"}, Wanted::Success,
                 [this] { enumerator.initialize(&events, view()); });
        run.step({endingPart, "execute once more"}, Wanted::Success, [this] { enumerator.execute(); });
        run.step({endingPart, "dispose once more"}, Wanted::Success, [this] { enumerator.dispose(); });
    }

    CheckRun& run;
    IO::EnumeratorInterface& enumerator;
    std::unique_ptr<CameraStore> stores;
    Events events;
    std::vector<NodeEvent> nodes;
};

} // namespace

void checkEnumerator(Subject& subject, Core::Plugin& object) {
    if (auto* const enumerator = dynamic_cast<IO::EnumeratorInterface*>(&object))
        EnumeratorCheck(subject, *enumerator).all();
}

} // namespace Zentara::Host::Check
