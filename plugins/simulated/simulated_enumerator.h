#pragma once

#include <string>
#include <vector>

#include <zentara/io/enumerator_interface.h>
#include <zentara/utils/signal.h>

namespace Zentara::Simulated {

/// Finds the one simulated camera: a depth node and an audio node, which are there from the start and stay.
/// Its thread puts one arrival for each into the host's queue, then waits until it is asked to end.
/// The devices behind the nodes are those of the mock video and audio plug-ins. Safe.
class SimulatedEnumerator final : public IO::EnumeratorInterface {
public:
    SimulatedEnumerator();
    ~SimulatedEnumerator() override;

    void enumerate(std::vector<NodeEvent>& nodes) override;
    [[nodiscard]] bool isPresent(const NodeEvent& node) override;
    [[nodiscard]] std::string getBackendName() override;
    void exit() override;
    void* run(void* argument) override;

private:
    void announce(const NodeEvent& node);

    const std::vector<NodeEvent> present;
    Utils::Threading::Signal wake;
};

} // namespace Zentara::Simulated
