#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <zentara/core/impl_type.h>
#include <zentara/core/plugin.h>
#include <zentara/core/profile.h>
#include <zentara/export.h>
#include <zentara/external_event.h>
#include <zentara/guid.h>
#include <zentara/node_event.h>
#include <zentara/node_type.h>
#include <zentara/utils/queue.h>
#include <zentara/utils/runnable.h>

namespace Zentara::Core {
class DescriptorStoreRO;
}

namespace Zentara::IO {

/// What an enumerator back-end implements: it finds cameras on a bus, tells which are there, and from its own
/// thread puts arrivals and removals into its host's queue.
///
/// Used in this order: `initialize`, `execute`, `dispose`. The back-end's `run` is the body of the thread; it
/// returns soon after `exitRequested` turns true. `execute`, `exit` and `dispose` are safe.
///
///              initialize              execute                 exit
///     Made -----------------> Ready -------------> Running -----------> Ending
///      ^                      |   ^                   |                   |
///      +------- dispose ------+   +---- run returns --+-------------------+
///
/// `dispose` takes it back from each of them, and waits until the thread has ended. `enumerate` and `isPresent` answer
/// from Ready on: a host that only wants to know what is there never calls `execute`.
class ZENTARA_API EnumeratorInterface : public Core::Plugin, public Utils::Threading::Runnable {
public:
    explicit EnumeratorInterface(GUID guid);
    EnumeratorInterface(const EnumeratorInterface&) = delete;
    EnumeratorInterface& operator=(const EnumeratorInterface&) = delete;

    /// `dispose` must have been called: the back-end's part of the object, in which the thread runs, is gone
    /// here.
    ~EnumeratorInterface() override;

    /// `Core::ImplType_ENUMERATOR`. Safe.
    [[nodiscard]] static Core::ImplType getImplType();

    /// The version of the interface classes: 0.1.0. Null pointers are skipped. Safe.
    static void getPluginVersion(int* major, int* minor, int* patch);

    /// Keeps the host's event queue and the store; both must live until `dispose`.
    virtual void initialize(Utils::Collection::Queue<ExternalEvent>* events, Core::DescriptorStoreRO* store);

    /// Stops the thread, waits for it, and forgets queue and store. The wait has no limit: a `run` that does not
    /// heed its exit request holds the caller up for ever. On the enumerator's own thread it does not wait.
    virtual void dispose();

    /// Starts the thread, named "DeviceEnumerator". Does nothing while it lives; one that has ended is
    /// replaced.
    virtual void execute();

    /// Replaces the list's content by the nodes that are there now. A snapshot, which the caller owns: never blocks.
    virtual void enumerate(std::vector<NodeEvent>& nodes) = 0;

    /// Whether the node is there now.
    [[nodiscard]] virtual bool isPresent(const NodeEvent& node) = 0;

    /// What finds the nodes, for people.
    [[nodiscard]] virtual std::string getBackendName() = 0;

    // Stands after the operations of the plug-in side: an override of the second base's operation takes a new
    // slot in the table of the first.
    /// Asks the thread to end, without waiting. A back-end whose `run` waits for something overrides it to
    /// wake it, and calls it.
    void exit() override;

protected:
    /// Null before `initialize` and after `dispose`.
    [[nodiscard]] Utils::Collection::Queue<ExternalEvent>* getEventQueue() const;
    [[nodiscard]] Core::DescriptorStoreRO* getDescriptorStore() const;

    // These four ask the descriptor store; without one there is no node.

    /// The type of the node that was selected last.
    [[nodiscard]] NodeType getNodeType();

    /// The flags of that node: those of a depth or a colour node, 0 for any other.
    [[nodiscard]] std::uint64_t getNodeFlags();

    /// Fills in what that node's description tells: type, profile, name, the four identifying values and the node
    /// index. The rest, where the node was found, stays as it is.
    /// \throws Zentara::Plugin::ArgumentPluginException if `event` is null
    void fillEvent(NodeEvent* event);

    /// Selects the description that belongs to the event's four identifying values.
    /// \return whether there is one
    /// \throws Zentara::Plugin::ArgumentPluginException if `event` is null
    bool selectNodeDescriptor(NodeEvent* event, Core::Profile profile);

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::IO
