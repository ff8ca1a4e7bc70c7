#include "tools/viewer/errands.h"

#include <utility>

namespace Zentara::Viewer {

Errands::Errands() : thread([this] { run(); }) {}

Errands::~Errands() {
    {
        const std::lock_guard<std::mutex> held(lock);
        isEnding = true;
    }
    changed.notify_all();
    thread.join();
}

void Errands::post(Errand errand) {
    {
        const std::lock_guard<std::mutex> held(lock);
        errands.push_back(std::move(errand));
    }
    changed.notify_all();
}

bool Errands::isDoneWithin(std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> held(lock);
    return changed.wait_for(held, limit, [this] { return errands.empty(); });
}

void Errands::run() {
    std::unique_lock<std::mutex> held(lock);
    for (;;) {
        changed.wait(held, [this] { return isEnding || !errands.empty(); });
        if (isEnding)
            return;
        const Errand errand = std::move(errands.front());
        held.unlock();
        errand();
        held.lock();
        errands.pop_front();
        changed.notify_all();
    }
}

} // namespace Zentara::Viewer
