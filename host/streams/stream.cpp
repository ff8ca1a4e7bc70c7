#include <zentara/host/stream.h>

#include <utility>

#include "host/streams/shared_source.h"
#include "host/streams/stream_core.h"
#include "host/streams/stream_source.h"

namespace Zentara::Host {

Stream openStream(StreamSetup setup, const StreamOptions& options) {
    if (options.shared)
        setup.open = [open = std::move(setup.open)] { return shareSource(open()); };
    auto core = std::make_shared<Stream::Core>(std::move(setup), options);
    Stream stream(std::move(core));
    if (options.started)
        stream.start();
    return stream;
}

Stream::Stream(std::shared_ptr<Core> made) noexcept : core(std::move(made)) {}
Stream::Stream(Stream&& other) noexcept = default;

Stream& Stream::operator=(Stream&& other) noexcept {
    if (this != &other) {
        if (core)
            Core::end(std::move(core));
        core = std::move(other.core);
    }
    return *this;
}

Stream::~Stream() {
    if (core)
        Core::end(std::move(core));
}

void Stream::start() { core->start(); }

std::optional<Frame> Stream::next(std::chrono::milliseconds limit, const GoOn& goOn) {
    return core->take(limit, false, goOn);
}
std::optional<Frame> Stream::latest(std::chrono::milliseconds limit, const GoOn& goOn) {
    return core->take(limit, true, goOn);
}

std::optional<Frame> Stream::poll() { return core->poll(); }
void Stream::wake(std::shared_ptr<Utils::Threading::Signal> signal) { core->wake(std::move(signal)); }

void Stream::stop() { core->stop(); }

const StreamInfo& Stream::info() const noexcept { return core->info(); }
const std::string& Stream::label() const noexcept { return core->label(); }
Stream::State Stream::state() const noexcept { return core->state(); }
std::string Stream::sharing() const { return core->sharing(); }

StreamCounts Stream::counts() const noexcept { return core->counts(); }
std::optional<Failure> Stream::trouble() const { return core->failure(); }
std::string Stream::hangsIn() const { return core->hangsIn(); }

} // namespace Zentara::Host
