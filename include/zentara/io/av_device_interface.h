#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <zentara/core/impl_type.h>
#include <zentara/core/plugin.h>
#include <zentara/export.h>
#include <zentara/guid.h>
#include <zentara/node_event.h>
#include <zentara/read_buffer_status.h>

namespace Zentara::Core {
class DescriptorStoreRO;
}

namespace Zentara::IO {

class deviceRequest;
class disableRequest;

/// What video and audio devices have in common. A back-end plug-in implements one of the two refinements;
/// hosts reach it through a proxy.
///
/// A proxy calls one operation at a time, and in proxified mode all of them on one thread, save for
/// `readBuffer`, `cancelIO`, `initialize` and `dispose`: those run on the caller's thread, the first two also
/// beside another operation. An operation that takes a request reads its arguments from it and writes its
/// results into it. It fails by throwing a plug-in exception or by the request's `setFailure`. It may outlast
/// its caller's patience, so it touches the caller's memory only through the request, and the request only
/// until it returns.
///
/// A proxy takes a device through these states, and back in the end; what a device refuses in which of them, it says
/// itself. Only `initialize`, `open` and a stream are the host's or the node's to ask for.
///
///     Made --threadInitialize--> Prepared --initialize--> Described --open--> Open --enable...--> Streaming
///      |                                                     ^                 |  ^                   |
///      |                                                     +------ close ----+  +- disableStreaming-+
///      +---- gone <--dispose-- <--threadUninitialize--------------- from each of the others
///
/// So a device may be disposed of while it is open, or streams, and ends both then, with its destruction at the latest.
/// One whose camera was pulled out is taken the same way.
///
/// The order of the virtual operations is the boundary to back-ends that are built separately.
class ZENTARA_API AVDeviceInterface : public Core::Plugin {
public:
    ~AVDeviceInterface() override;
    AVDeviceInterface(const AVDeviceInterface&) = delete;
    AVDeviceInterface& operator=(const AVDeviceInterface&) = delete;

    /// The version of the interface classes: 0.1.0. Null pointers are skipped. Safe.
    static void getPluginVersion(int* major, int* minor, int* patch);

    /// Forgets the descriptor store. A back-end that overrides it calls it, too.
    virtual void dispose();

    /// Copies the description of the device and keeps the store, which must live until `dispose`. A back-end
    /// that overrides it calls it, too.
    /// \param store may be null
    /// \throws Zentara::Plugin::ArgumentPluginException if `event` is null
    virtual void initialize(NodeEvent* event, Core::DescriptorStoreRO* store);

    /// Prepares the calling thread for the platform's services. The first call that a proxy makes, before `initialize`.
    virtual void threadInitialize() = 0;

    /// Takes that back, on the same thread.
    virtual void threadUninitialize() = 0;

    /// Cancels the transfer that is in flight. Called on the thread of the caller who gave up, while the
    /// operation runs on another, with the request locked. Must not block.
    /// \return true if the operation will now end soon
    virtual bool cancelIO() = 0;

    /// Waits for the next frame and copies it, or returns within 1 s to say that there is none; `ReadBufferStatus`
    /// says how, and what is thrown instead. Called directly, beside other operations.
    /// \param size of `buffer` in bytes
    /// \param timestamp receives when the frame was taken, in microseconds
    /// \param length receives the frame's bytes
    virtual ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) = 0;

    /// Takes the hardware into use, and gives it back. The request has no arguments.
    virtual void open(deviceRequest* request) = 0;
    virtual void close(deviceRequest* request) = 0;

    /// Ends the stream. The request's flag means what the back-end says it does.
    virtual void disableStreaming(disableRequest* request) = 0;

    /// The path of the device from its description; empty before `initialize`.
    [[nodiscard]] std::string getPath() const;

protected:
    AVDeviceInterface(Core::ImplType type, GUID guid);

    /// What `initialize` was given; all empty and 0 before.
    [[nodiscard]] const NodeEvent& getDescription() const;

    /// Null before `initialize` and after `dispose`.
    [[nodiscard]] Core::DescriptorStoreRO* getDescriptorStore() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::IO
