#include "host/streams/frame_queue.h"

#include <utility>

#include "host/streams/frame_draft.h"

namespace Zentara::Host {

std::size_t FrameQueue::push(Frame frame) noexcept {
    const bool drops = full();
    if (drops)
        dropOldest();
    frames[(first + count) % frames.size()].emplace(std::move(frame));
    ++count;
    return drops ? 1 : 0;
}

Frame FrameQueue::pop(bool newest, std::uint64_t& dropped) noexcept {
    while (newest && count > 1) {
        dropOldest();
        ++dropped;
    }
    Frame frame = removeFirst();
    if (lostBefore == 0)
        return frame;
    // Nobody else has the frame yet, so it may still be changed.
    const std::size_t length = frame.bytes().size();
    FrameDraft draft = FrameDraft::reclaim(std::move(frame));
    draft.fields().droppedBefore += std::exchange(lostBefore, 0);
    return std::move(draft).finish(length);
}

void FrameQueue::dropOldest() noexcept { lostBefore += 1 + removeFirst().droppedBefore(); }

void FrameQueue::clear() noexcept {
    while (count > 0)
        dropOldest();
}

Frame FrameQueue::removeFirst() noexcept {
    Frame frame = std::move(*frames[first]);
    frames[first].reset();
    first = (first + 1) % frames.size();
    --count;
    return frame;
}

} // namespace Zentara::Host
