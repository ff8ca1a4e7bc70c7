#include "tools/zentara/stream_reader.h"

#include <utility>

#include <zentara/utils/format.h>

#include "tools/zentara/exit_code.h"

namespace Zentara::Tool {

StreamReader::StreamReader(std::string name, IO::AVDeviceProxy& source, std::size_t unitBytes, Take taker,
                           Utils::Threading::Signal& ended)
    : label(std::move(name)), proxy(source), buffer(unitBytes), take(std::move(taker)), wake(ended),
      thread(this, nullptr, "zentara stream") {}

StreamReader::~StreamReader() { join(); }

void StreamReader::start() { thread.start(false); }

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
        attempt(Utils::Format("read unit % from %") % units.load() % label, [&] {
            status = proxy.readBuffer(buffer.data(), static_cast<int>(buffer.size()), &micros, &length);
        });
        switch (status) {
        case ReadBufferStatus_OK:
            break;
        case ReadBufferStatus_TIMEOUT:
        case ReadBufferStatus_FAILED:
            continue; // whether nothing comes any more is for the supervisor to say
        case ReadBufferStatus_NOT_STREAMING:
            return;
        case ReadBufferStatus_DISCONNECTED:
            throw ToolFailure(ExitCode_NO_DEVICE,
                              Utils::Format("% was unplugged after % units") % label % units.load());
        default:
            throw ToolFailure(ExitCode_FAILED,
                              Utils::Format("reading from % ended with status %, % bytes wanted") % label %
                                  static_cast<int>(status) % length);
        }
        if (length < 0 || static_cast<std::size_t>(length) > buffer.size())
            throw ToolFailure(ExitCode_FAILED, Utils::Format("% delivered % bytes into a buffer of %") %
                                                   label % length % buffer.size());
        const bool more = take(buffer.data(), static_cast<std::size_t>(length), micros);
        ++units;
        if (!more)
            return;
    }
}

} // namespace Zentara::Tool
