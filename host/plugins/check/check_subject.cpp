#include "host/plugins/check/check_subject.h"

#include <cstring>
#include <utility>

#include <zentara/host/failure.h>

namespace Zentara::Host::Check {

bool isSame(const GUID& left, const GUID& right) noexcept {
    return std::memcmp(&left, &right, sizeof left) == 0;
}

OtherThread::OtherThread() : thread([this] { loop(); }) {}

OtherThread::~OtherThread() {
    {
        const std::lock_guard hold(lock);
        ending = true;
    }
    changed.notify_all();
    thread.join();
}

void OtherThread::run(const std::function<void()>& work) {
    std::unique_lock hold(lock);
    task = &work;
    changed.notify_all();
    changed.wait(hold, [this] { return task == nullptr; });
    if (std::exception_ptr failure = std::exchange(thrown, nullptr))
        std::rethrow_exception(std::move(failure));
}

void OtherThread::loop() {
    std::unique_lock hold(lock);
    for (;;) {
        changed.wait(hold, [this] { return ending || task != nullptr; });
        if (task == nullptr)
            return;
        hold.unlock();
        std::exception_ptr failure;
        try {
            (*task)();
        } catch (...) {
            failure = std::current_exception();
        }
        hold.lock();
        thrown = std::move(failure);
        task = nullptr;
        changed.notify_all();
    }
}

FoundNode findNode(Subject& subject,
                   const std::function<bool(const NodeEvent&, Core::DescriptorStoreRO&)>& serves,
                   const char* step) {
    FoundNode found;
    subject.run.step({objectPart, step}, Wanted::Success, [&]() -> std::string {
        const char* const remedy = "put an enumerator and a description that names it into the install root; "
                                   "what needs a camera is tried as far as it goes without";
        try {
            CameraBus bus({});
            for (const CameraEntry& camera : bus.cameras()) {
                for (const NodeEvent& node : camera.nodes) {
                    auto store = std::make_unique<CameraStore>();
                    try {
                        store->select(node);
                    } catch (const Failure&) {
                        continue; // a node of a generic plug-in
                    }
                    if (!serves(node, store->view()))
                        continue;
                    found.event = node;
                    found.store = std::move(store);
                    return node.name + ", " + node.serialNumber;
                }
            }
        } catch (const Failure& failure) {
            throw Finding{StepVerdict::NotRun, failure.what(), "", remedy};
        }
        throw Finding{StepVerdict::NotRun, "none in the install root", "", remedy};
    });
    return found;
}

} // namespace Zentara::Host::Check
