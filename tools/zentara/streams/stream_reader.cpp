#include "tools/zentara/streams/stream_reader.h"

#include <utility>

#include <zentara/utils/format.h>

#include "tools/zentara/exit_code.h"

namespace Zentara::Tool {

using Utils::Format;

namespace {

constexpr std::size_t firstBytes = 1 << 20; // it grows when a frame does not fit
constexpr int mostBytes = 1 << 26;

} // namespace

StreamReader::StreamReader(StreamSource& from, Take taker, Utils::Threading::Signal& ended)
    : label(from.label()), source(from), buffer(firstBytes), take(std::move(taker)), wake(ended),
      thread(this, nullptr, "zentara stream") {}

StreamReader::~StreamReader() { join(); }

void StreamReader::start() { thread.start(false); }

void StreamReader::halt() {
    Utils::Threading::AutoLock hold(taking);
    halted = true;
}

void StreamReader::join() { thread.wait(); }

void StreamReader::rethrow() const {
    if (failure)
        std::rethrow_exception(failure);
}

void* StreamReader::run(void*) {
    try {
        readUnits();
    } catch (...) {
        failure = std::current_exception();
    }
    done = true;
    wake.set();
    return nullptr;
}

void StreamReader::readUnits() {
    for (;;) {
        std::int64_t micros = 0;
        int length = 0;
        ReadBufferStatus status = ReadBufferStatus_OK;
        attempt(Format("read unit % from %") % units.load() % label, [&] {
            status = source.read(buffer.data(), static_cast<int>(buffer.size()), &micros, &length);
        });
        switch (status) {
        case ReadBufferStatus_OK:
            if (!takeUnit(length, micros))
                return;
            break;
        case ReadBufferStatus_TIMEOUT:
        case ReadBufferStatus_FAILED:
            break; // whether nothing comes any more is for the supervisor to say
        case ReadBufferStatus_TOO_SMALL:
            makeRoom(length);
            break;
        case ReadBufferStatus_NOT_STREAMING:
            return;
        case ReadBufferStatus_DISCONNECTED:
            throw Failure(Failure::NoDevice, Format("% was unplugged after % units") % label % units.load());
        default:
            throw Failure(Failure::Failed,
                          Format("reading from % ended with status %") % label % static_cast<int>(status));
        }
    }
}

bool StreamReader::takeUnit(int length, std::int64_t micros) {
    if (length < 0 || static_cast<std::size_t>(length) > buffer.size())
        throw Failure(Failure::Failed,
                      Format("% delivered % bytes into a buffer of %") % label % length % buffer.size());
    Utils::Threading::AutoLock hold(taking);
    if (halted)
        return false;
    const bool more = take(buffer.data(), static_cast<std::size_t>(length), micros);
    ++units;
    return more;
}

void StreamReader::makeRoom(int length) {
    if (length <= 0 || static_cast<std::size_t>(length) <= buffer.size() || length > mostBytes)
        throw Failure(Failure::Failed, Format("% wants a buffer of % bytes and does not take one of %") %
                                           label % length % buffer.size());
    buffer.resize(static_cast<std::size_t>(length));
}

} // namespace Zentara::Tool
