#pragma once

#include <vector>

#include <zentara/io/enumerator_interface.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/thread_annotations.h>

namespace Zentara::Devices {

/// An enumerator that looks at its bus whenever it is asked, and again and again on its thread, which puts what is there at
/// first into the host's queue, then tells what went and what came.
///
/// A node stays while its path, its type and its four identifying values do; then it keeps its number among the cameras
/// of its kind, and a new one gets the lowest that is free. One that stays and is described in another way has gone and
/// come. A bus says the rest: what is there, and how long to wait for news of it. Safe.
class LookingEnumerator : public IO::EnumeratorInterface {
public:
    /// A second call replaces the first, whose thread it ends.
    void initialize(Utils::Collection::Queue<ExternalEvent>* events, Core::DescriptorStoreRO* store) override;
    void dispose() override;
    void enumerate(std::vector<NodeEvent>& nodes) override;
    [[nodiscard]] bool isPresent(const NodeEvent& node) override;
    /// A thread that is started anew tells everything. What it finds no memory for it tells after the next look.
    void* run(void* argument) override;

protected:
    /// Whoever derives from it calls dispose() when it is destroyed, and wakes what waits in awaitNews() in exit().
    explicit LookingEnumerator(GUID guid);

    /// A bus is wanted, after initialize().
    virtual void begin() ZENTARA_REQUIRES(lock) {}
    /// Nothing of the bus or the store is used after this, until the next begin().
    virtual void forget() ZENTARA_REQUIRES(lock) {}
    /// What is there now; its numbers among cameras of its kind need not be told. Nothing before begin().
    [[nodiscard]] virtual std::vector<NodeEvent> find() ZENTARA_REQUIRES(lock) = 0;
    /// Adds what the host is to know besides, after a look of the thread.
    virtual void addTrouble(std::vector<ExternalEvent>&) ZENTARA_REQUIRES(lock) {}
    /// Until there may be something new, or exit().
    virtual void awaitNews() = 0;

    /// What was said of a node at the last look; null for one that was not there.
    [[nodiscard]] const NodeEvent* before(const NodeEvent& node) const ZENTARA_REQUIRES(lock);

    /// An event of this moment.
    [[nodiscard]] static ExternalEvent makeEvent(ExternalEventType type, const NodeEvent& node);

    mutable Utils::Threading::Mutex lock; ///< never held while the queue is used

private:
    void look() ZENTARA_REQUIRES(lock);
    void addNews(std::vector<ExternalEvent>& events);
    void addChanges(std::vector<ExternalEvent>& events) ZENTARA_REQUIRES(lock);

    std::vector<NodeEvent> present ZENTARA_GUARDED_BY(lock);   ///< at the last look
    std::vector<NodeEvent> announced ZENTARA_GUARDED_BY(lock); ///< what the host was told
};

} // namespace Zentara::Devices
