#include "host/cameras/node_turn.h"

namespace Zentara::Host {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using Utils::Threading::AutoLock;

bool NodeTurn::awaitReader(milliseconds limit) {
    const auto end = steady_clock::now() + limit;
    AutoLock hold(lock);
    while (owner == nullptr && isOccupied) {
        const auto rest = std::chrono::ceil<milliseconds>(end - steady_clock::now()).count();
        if (rest <= 0)
            return false;
        left.timedWait(static_cast<unsigned long>(rest));
    }
    return true;
}

bool NodeTurn::take(Stream stream) noexcept {
    AutoLock hold(lock);
    if (owner == nullptr)
        owner = stream;
    return owner == stream;
}

bool NodeTurn::giveUp(Stream stream) noexcept {
    AutoLock hold(lock);
    if (owner != stream)
        return false;
    owner = nullptr;
    return true;
}

NodeTurn::Visit::Visit(NodeTurn& of, Stream stream) noexcept : turn(of) {
    AutoLock hold(turn.lock);
    isInside = turn.owner == stream;
    turn.isOccupied = turn.isOccupied || isInside;
}

NodeTurn::Visit::~Visit() {
    if (!isInside)
        return;
    AutoLock hold(turn.lock);
    turn.isOccupied = false;
    turn.left.notifyAll();
}

} // namespace Zentara::Host
