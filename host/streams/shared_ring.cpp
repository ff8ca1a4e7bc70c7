#include "host/streams/shared_ring.h"

#include <algorithm>
#include <bit>
#include <utility>

#include <zentara/host/failure.h>
#include <zentara/utils/format.h>
#include <zentara/utils/shared_memory_manager.h>

#include "host/streams/rounded_up.h"
#include "utils/platform/fnv.h"

namespace Zentara::Host {

using Utils::SharedMemoryManager;

namespace {

constexpr std::size_t slotSensors = 8;
constexpr int mostTries = 64; // to read what is overwritten again and again

// Words of a ring: these, then the slots.
constexpr std::size_t ringFirst = 0; // number of its first frame
constexpr std::size_t ringNext = 1;  // one more than that of the newest
constexpr std::size_t ringWords = 8;

// Words of a slot: these, then the bytes.
constexpr std::size_t slotState = 0; // 2 n + 1 while frame n is written, 2 n + 2 while it is there
constexpr std::size_t slotMicros = 1;
constexpr std::size_t slotLength = 2;
constexpr std::size_t slotTemperatureCount = 3;
constexpr std::size_t slotTemperatures =
    4; // the sensor in the upper half, the bits of its value in the lower
constexpr std::size_t slotWords = slotTemperatures + slotSensors;

// Words of a board.
constexpr std::size_t boardOwner = 0;
constexpr std::size_t boardState = 1; // odd while the rest is written
constexpr std::size_t boardNoticeOwner = 2;
constexpr std::size_t boardRing = 3;
constexpr std::size_t boardSlots = 4;
constexpr std::size_t boardRoom = 5;
constexpr std::size_t boardModeLength = 6;
constexpr std::size_t boardMode = 8;
constexpr std::size_t boardBytes = 4096;

// What a reader takes from another program is held against these.
constexpr std::uint64_t mostSlots = 1024;
constexpr std::uint64_t mostRingBytes = std::uint64_t{1} << 30;

std::size_t ringBytes(std::size_t slots, std::size_t room) {
    return (ringWords + slots * (slotWords + room / SharedBlock::wordBytes)) * SharedBlock::wordBytes;
}

std::size_t inWholeWords(std::size_t bytes) { return roundedUp(bytes, SharedBlock::wordBytes); }

/// Names may not hold everything that a path does.
std::string digestOf(const std::string& text) {
    return Utils::Format("%{:x16}") % Utils::Platform::fnvSum(text.begin(), text.end());
}

std::string lifeOf(std::uint64_t owner) { return "zentara-frames-" + std::to_string(owner); }

std::uint64_t packed(const SensorValue& value) {
    return std::uint64_t{static_cast<std::uint32_t>(value.sensorId)} << 32 |
           std::bit_cast<std::uint32_t>(value.value);
}

SensorValue unpacked(std::uint64_t word) {
    return {static_cast<std::int32_t>(word >> 32),
            std::bit_cast<float>(static_cast<std::uint32_t>(word & 0xFFFFFFFF))};
}

} // namespace

// The ring ----------------------------------------------------------------------------------------------------------

SharedRing::SharedRing(std::uint64_t id, std::size_t slots, std::size_t room)
    : name(id), count(slots), bytes(room), block("frames-" + std::to_string(id), ringBytes(slots, room)) {}

std::size_t SharedRing::slot(std::uint64_t number) const noexcept {
    return ringWords +
           static_cast<std::size_t>(number % count) * (slotWords + bytes / SharedBlock::wordBytes);
}

void SharedRing::begin(std::uint64_t first) const noexcept {
    block.word(ringFirst).store(first);
    block.word(ringNext).store(first);
}

std::uint64_t SharedRing::next() const noexcept {
    return block.word(ringNext).load(std::memory_order_acquire);
}

void SharedRing::give(std::uint64_t number, const SharedFrame& frame, const std::byte* from) const noexcept {
    const std::size_t at = slot(number);
    block.word(at + slotState).store(2 * number + 1, std::memory_order_relaxed);
    // Each of these stores releases: who sees one of them sees that the slot is being written.
    const auto store = [&](std::size_t index, std::uint64_t value) {
        block.word(at + index).store(value, std::memory_order_release);
    };
    store(slotMicros, static_cast<std::uint64_t>(frame.micros));
    store(slotLength, frame.length);
    const std::size_t sensors = std::min(frame.temperatures.size(), slotSensors);
    store(slotTemperatureCount, sensors);
    for (std::size_t index = 0; index < sensors; ++index)
        store(slotTemperatures + index, packed(frame.temperatures.values[index]));
    block.write(at + slotWords, from, frame.length);
    store(slotState, 2 * number + 2);
    block.word(ringNext).store(number + 1, std::memory_order_release);
}

SharedRing::Found SharedRing::take(std::uint64_t& number, SharedFrame& frame,
                                   std::span<std::byte> place) const {
    for (int tries = 0; tries < mostTries; ++tries) {
        const std::uint64_t end = next();
        if (number >= end)
            return Found::Nothing;
        // The slot behind the newest frame is the one that is written next.
        const std::uint64_t kept = std::min<std::uint64_t>(end, count - 1);
        number = std::max({number, end - kept, block.word(ringFirst).load(std::memory_order_relaxed)});
        const std::size_t at = slot(number);
        const std::uint64_t whole = 2 * number + 2;
        if (block.word(at + slotState).load(std::memory_order_acquire) != whole)
            continue;
        const auto load = [&](std::size_t index) {
            return block.word(at + index).load(std::memory_order_acquire);
        };
        frame.micros = static_cast<std::int64_t>(load(slotMicros));
        frame.length = static_cast<std::size_t>(load(slotLength));
        const std::size_t sensors = std::min<std::size_t>(load(slotTemperatureCount), slotSensors);
        frame.temperatures.values.clear();
        for (std::size_t index = 0; index < sensors; ++index)
            frame.temperatures.values.push_back(unpacked(load(slotTemperatures + index)));
        const bool fits = frame.length <= std::min(place.size(), bytes);
        if (fits)
            block.read(at + slotWords, place.data(), frame.length);
        if (block.word(at + slotState).load(std::memory_order_relaxed) != whole)
            continue; // it was overwritten meanwhile: nothing of it holds
        if (frame.length > bytes)
            throw Failure(Failure::Failed, "cannot read a shared frame",
                          Utils::Format("it says that it has % bytes, in a place for %") % frame.length %
                              bytes);
        return fits ? Found::Frame : Found::TooSmall;
    }
    return Found::Nothing;
}

// The board ---------------------------------------------------------------------------------------------------------

SharedBoard::SharedBoard(const std::string& place) : block("board-" + digestOf(place), boardBytes) {
    static_assert((boardMode + modeWords) * SharedBlock::wordBytes <= boardBytes);
}

bool SharedBoard::lives(std::uint64_t owner) {
    return Utils::UniqueInstance(lifeOf(owner).c_str()).isAnotherInstanceRunning();
}

bool SharedBoard::stands(std::uint64_t owner) const {
    return block.word(boardOwner).load(std::memory_order_acquire) == owner && lives(owner);
}

std::optional<SharedBoard::Notice> SharedBoard::look() const {
    const std::uint64_t before = block.word(boardState).load(std::memory_order_acquire);
    const auto load = [this](std::size_t index) { return block.word(index).load(std::memory_order_acquire); };
    Notice notice{load(boardNoticeOwner), load(boardRing), load(boardSlots), load(boardRoom), {}};
    notice.mode.resize(static_cast<std::size_t>(
        std::min<std::uint64_t>(load(boardModeLength), modeWords * SharedBlock::wordBytes)));
    block.read(boardMode, reinterpret_cast<std::byte*>(notice.mode.data()), notice.mode.size());
    const bool whole = before % 2 == 0 && block.word(boardState).load(std::memory_order_relaxed) == before;
    const bool sound = notice.ring == 0 || (notice.slots >= 2 && notice.slots <= mostSlots &&
                                            notice.room % SharedBlock::wordBytes == 0 &&
                                            notice.room <= mostRingBytes / notice.slots);
    if (!whole || !sound || notice.owner == 0 || !stands(notice.owner))
        return {};
    return notice;
}

bool SharedBoard::claim(std::uint64_t owner) const {
    std::uint64_t present = block.word(boardOwner).load(std::memory_order_acquire);
    return (present == 0 || !lives(present)) &&
           block.word(boardOwner).compare_exchange_strong(present, owner);
}

void SharedBoard::post(const Notice& notice) const noexcept {
    // Odd, also where the last one was killed as it wrote.
    const std::uint64_t state = block.word(boardState).load(std::memory_order_relaxed) | 1;
    block.word(boardState).store(state, std::memory_order_relaxed);
    const auto store = [this](std::size_t index, std::uint64_t value) {
        block.word(index).store(value, std::memory_order_release);
    };
    store(boardNoticeOwner, notice.owner);
    store(boardRing, notice.ring);
    store(boardSlots, notice.slots);
    store(boardRoom, notice.room);
    const std::size_t length = std::min(notice.mode.size(), modeWords * SharedBlock::wordBytes);
    store(boardModeLength, length);
    block.write(boardMode, reinterpret_cast<const std::byte*>(notice.mode.data()), length);
    store(boardState, state + 1);
}

void SharedBoard::leave(std::uint64_t owner) const noexcept {
    block.word(boardOwner).compare_exchange_strong(owner, 0);
}

// Giving and reading ------------------------------------------------------------------------------------------------

std::unique_ptr<FrameGiver> FrameGiver::make(std::shared_ptr<SharedBoard> board, std::string mode,
                                             std::size_t slots, std::size_t usualBytes) {
    const std::uint64_t id = SharedMemoryManager::getUniqueID();
    std::unique_ptr<FrameGiver> made(
        new FrameGiver(std::move(board), id, std::move(mode), slots, usualBytes));
    if (!made->board->claim(id))
        return nullptr;
    made->board->post({id, 0, 0, 0, made->mode});
    return made;
}

FrameGiver::FrameGiver(std::shared_ptr<SharedBoard> on, std::uint64_t owner, std::string name,
                       std::size_t mostFrames, std::size_t usualBytes)
    : board(std::move(on)), id(owner), alive(lifeOf(owner).c_str()), mode(std::move(name)), slots(mostFrames),
      room(inWholeWords(usualBytes)) {}

FrameGiver::~FrameGiver() { board->leave(id); }

void FrameGiver::give(const SharedFrame& frame, const std::byte* from) {
    if (!ring || frame.length > ring->room()) {
        room = std::max(room, inWholeWords(frame.length));
        if (room > mostRingBytes / slots)
            throw Failure(Failure::Failed, "cannot share frames",
                          Utils::Format("% of % bytes are too much") % slots % room);
        auto made = std::make_unique<SharedRing>(SharedMemoryManager::getUniqueID(), slots, room);
        made->begin(given);
        board->post({id, made->id(), slots, room, mode});
        ring = std::move(made);
    }
    ring->give(given++, frame, from);
}

std::unique_ptr<FrameReader> FrameReader::make(std::shared_ptr<SharedBoard> board, const std::string& mode) {
    const auto notice = board->look();
    if (!notice || notice->mode != mode)
        return nullptr;
    return std::unique_ptr<FrameReader>(new FrameReader(std::move(board), notice->owner));
}

SharedRing::Found FrameReader::take(SharedFrame& frame, std::span<std::byte> place, std::uint64_t& missed) {
    if (!ring)
        return SharedRing::Found::Nothing;
    const std::uint64_t wanted = *next;
    const SharedRing::Found found = ring->take(*next, frame, place);
    if (found == SharedRing::Found::Frame)
        missed += (*next)++ - wanted;
    else if (found == SharedRing::Found::TooSmall)
        missed += *next - wanted;
    return found;
}

bool FrameReader::goesOn() {
    const auto notice = board->look();
    if (!notice || notice->owner != owner)
        return board->stands(owner); // it may be posting just now
    if (notice->ring != 0 && (!ring || ring->id() != notice->ring)) {
        ring = std::make_unique<SharedRing>(notice->ring, static_cast<std::size_t>(notice->slots),
                                            static_cast<std::size_t>(notice->room));
        if (!next)
            next = ring->next(); // what comes from now on
    }
    return true;
}

} // namespace Zentara::Host
