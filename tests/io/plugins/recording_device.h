#pragma once

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/io/streaming_requests.h>

#include "io/device_script.h"
#include "support/own_exceptions.h"

namespace Testing {

/// The script, and what it has the device throw.
class ObeyedScript {
public:
    void called(int slot, Zentara::IO::deviceRequest* request) {
        script.called(slot, request);
        obey(slot);
    }
    bool cancel() {
        obey(8);
        return script.cancel();
    }
    void obey(int slot) const {
        if (slot == script.throwingSlot)
            Zentara::TestSupport::throwOwn(script.ownException);
    }
    DeviceScript& script = DeviceScript::current();
};

/// The operations that all devices have, reported to the script.
template<typename Interface>
class RecordingDevice : public Interface {
public:
    explicit RecordingDevice(GUID guid) : Interface(guid) { script.script.created(); }
    ~RecordingDevice() override { script.script.destroyed(); }

    void dispose() override {
        Interface::dispose();
        script.called(4, nullptr);
    }
    void initialize(Zentara::NodeEvent* event, Zentara::Core::DescriptorStoreRO* store) override {
        Interface::initialize(event, store);
        script.called(5, nullptr);
    }
    void threadInitialize() override { script.called(6, nullptr); }
    void threadUninitialize() override { script.called(7, nullptr); }
    bool cancelIO() override { return script.cancel(); }
    Zentara::ReadBufferStatus readBuffer(void*, int size, std::int64_t* timestamp, int* length) override {
        script.called(9, nullptr);
        const auto* const store = this->getDescriptorStore();
        *timestamp = store ? store->getNodeHardwareIDs().productId : 1234;
        *length = size + static_cast<int>(this->getPath().size());
        return Zentara::ReadBufferStatus(77);
    }
    void open(Zentara::IO::deviceRequest* request) override { script.called(10, request); }
    void close(Zentara::IO::deviceRequest* request) override { script.called(11, request); }
    void disableStreaming(Zentara::IO::disableRequest* request) override { script.called(12, request); }

protected:
    ObeyedScript script;
};

} // namespace Testing
