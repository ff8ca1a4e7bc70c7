#pragma once

#include <memory>
#include <string>
#include <vector>

#include <zentara/utils/signal.h>

#include "plugins/devices/looking_enumerator.h"
#include "plugins/simulated/simulated_bus.h"

namespace Zentara::Simulated {

/// Finds the nodes of the cameras that hang on the SimulatedBus, at which its thread looks ten times a second; a bus that
/// cannot be read is an error event with the file's path, once for each thing that is wrong with it.
///
/// With a descriptor store only nodes that it describes are found, and described as it says; the store is then for
/// the enumerator alone until `dispose`. Before `initialize` and after `dispose` there is no bus. Safe.
class SimulatedEnumerator final : public Devices::LookingEnumerator {
public:
    SimulatedEnumerator();
    ~SimulatedEnumerator() override;

    [[nodiscard]] std::string getBackendName() override;
    void exit() override;

private:
    void begin() override ZENTARA_REQUIRES(lock);
    void forget() override ZENTARA_REQUIRES(lock);
    [[nodiscard]] std::vector<NodeEvent> find() override ZENTARA_REQUIRES(lock);
    void addTrouble(std::vector<ExternalEvent>& events) override ZENTARA_REQUIRES(lock);
    void awaitNews() override;
    void addNodes(const SimulatedBus::Camera& camera, std::uint32_t port, std::vector<NodeEvent>& nodes)
        ZENTARA_REQUIRES(lock);

    std::unique_ptr<SimulatedBus> bus ZENTARA_GUARDED_BY(lock);
    std::string suspected ZENTARA_GUARDED_BY(lock); ///< what was wrong with it at the last look
    std::string reported ZENTARA_GUARDED_BY(lock);  ///< what the host was told of that
    Utils::Threading::Signal wake;
};

} // namespace Zentara::Simulated
