#pragma once

#include <memory>
#include <string>
#include <vector>

#include <zentara/io/enumerator_interface.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/signal.h>
#include <zentara/utils/thread_annotations.h>

#include "plugins/simulated/simulated_bus.h"

namespace Zentara::Simulated {

/// Finds the nodes of the cameras that hang on the SimulatedBus. Its thread puts what is there at first into the
/// host's queue, then looks at the bus ten times a second and tells what went and what came; a bus that cannot be
/// read is an error event with the file's path, once for each thing that is wrong with it.
///
/// With a descriptor store only nodes that it describes are found, and described as it says; the store is then for
/// the enumerator alone until `dispose`. Before `initialize` and after `dispose` there is no bus. Safe.
class SimulatedEnumerator final : public IO::EnumeratorInterface {
public:
    SimulatedEnumerator();
    ~SimulatedEnumerator() override;

    /// A second call replaces the first, whose thread it ends.
    void initialize(Utils::Collection::Queue<ExternalEvent>* events, Core::DescriptorStoreRO* store) override;
    void dispose() override;
    void enumerate(std::vector<NodeEvent>& nodes) override;
    [[nodiscard]] bool isPresent(const NodeEvent& node) override;
    [[nodiscard]] std::string getBackendName() override;
    void exit() override;
    void* run(void* argument) override;

private:
    void forget() ZENTARA_REQUIRES(lock);
    void look() ZENTARA_REQUIRES(lock);
    void addNodes(const SimulatedBus::Camera& camera, std::uint32_t port, std::vector<NodeEvent>& nodes)
        ZENTARA_REQUIRES(lock);
    std::vector<ExternalEvent> changes() ZENTARA_REQUIRES(lock);
    void reportTrouble(std::vector<ExternalEvent>& events) ZENTARA_REQUIRES(lock);

    Utils::Threading::Mutex lock; ///< never held while the queue is used
    std::unique_ptr<SimulatedBus> bus ZENTARA_GUARDED_BY(lock);
    std::vector<NodeEvent> present ZENTARA_GUARDED_BY(lock);   ///< at the last look
    std::vector<NodeEvent> announced ZENTARA_GUARDED_BY(lock); ///< what the host was told
    std::string suspected ZENTARA_GUARDED_BY(lock);            ///< what was wrong at the last look
    std::string reported ZENTARA_GUARDED_BY(lock);
    Utils::Threading::Signal wake;
};

} // namespace Zentara::Simulated
