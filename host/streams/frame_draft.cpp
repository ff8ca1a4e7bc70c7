#include "host/streams/frame_draft.h"

#include <utility>

#include <zentara/host/failure.h>

#include "host/streams/frame_memory.h"

namespace Zentara::Host {

FrameDraft FrameDraft::tryTake(std::shared_ptr<const StreamContext> stream, std::size_t bytes) noexcept {
    FrameData* const block = FrameMemory::instance().take(bytes);
    if (block == nullptr)
        return {};
    block->context = std::move(stream);
    block->number = 0;
    block->droppedBefore = 0;
    block->deviceMicros = 0;
    block->hostMicros = 0;
    block->takenMicros = 0;
    block->isFirstAfterReturn = false;
    block->corrections = 0;
    block->temperatureCount = 0;
    return FrameDraft(block);
}

FrameDraft::FrameDraft(std::shared_ptr<const StreamContext> stream, std::size_t bytes,
                       const std::string& what)
    : FrameDraft(tryTake(std::move(stream), bytes)) {
    if (data == nullptr)
        throw FrameMemory::instance().shortage(what, bytes);
}

FrameDraft::FrameDraft(const Frame& like, const std::string& what)
    : FrameDraft(like.data->context, like.data->length, what) {
    const FrameData& source = *like.data;
    data->number = source.number;
    data->droppedBefore = source.droppedBefore;
    data->deviceMicros = source.deviceMicros;
    data->hostMicros = source.hostMicros;
    data->takenMicros = source.takenMicros;
    data->isFirstAfterReturn = source.isFirstAfterReturn;
    data->corrections = source.corrections;
    data->temperatures = source.temperatures;
    data->temperatureCount = source.temperatureCount;
}

FrameDraft::FrameDraft(FrameDraft&& other) noexcept : data(std::exchange(other.data, nullptr)) {}

FrameDraft& FrameDraft::operator=(FrameDraft&& other) noexcept {
    if (this != &other)
        FrameMemory::instance().release(std::exchange(data, std::exchange(other.data, nullptr)));
    return *this;
}

FrameDraft::~FrameDraft() { FrameMemory::instance().release(data); }

FrameDraft FrameDraft::reclaim(Frame&& frame) noexcept {
    FrameData* const block = frame.data;
    // Nobody can make a copy meanwhile: the only handle is ours.
    if (block == nullptr || block->uses.load(std::memory_order_acquire) != 1)
        return {};
    frame.data = nullptr;
    return FrameDraft(block);
}

Frame FrameDraft::finish(std::size_t length) && noexcept {
    data->length = length;
    return Frame(std::exchange(data, nullptr));
}

} // namespace Zentara::Host
