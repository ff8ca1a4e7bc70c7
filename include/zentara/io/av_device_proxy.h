#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <zentara/export.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/read_buffer_status.h>

namespace Zentara::IO {

class AVDeviceProxyThread;

/// What a host holds in place of a device. It makes the device through the plug-in manager and turns each
/// call into a request. Chosen at construction:
/// - direct: the call runs on the caller's thread under the proxy's mutex, for as long as the device takes;
/// - proxified: it runs on the process-wide worker thread, and the caller waits at most 2 s from its start.
///   The caller's buffers, variables and configurations are copied: what comes back is stored only after a
///   normal return, and a device that answers too late finds nothing of the caller's. What only its author
///   could copy is shared, and must be left alone for as long as the device may use it: a configuration of a
///   class that was derived from one of this library's, and what the commands of a depth configuration point
///   to.
///
/// The device is made, initialised and disposed of on the caller's thread, also in proxified mode, and these three have
/// no limit: a host that must go on whatever a device does gives them a thread of their own. While a device hangs as it
/// is made, it holds its library's mutex, and every call on another device of that plug-in waits for it. The other
/// waits that have no limit are direct calls, `readBuffer`, and a device's own cancel operation.
///
/// A child of fork has no worker: there a proxified proxy throws `Zentara::Plugin::InvalidOperationPluginException`,
/// and its disposal leaves the device to the parent.
///
/// A device's failure is thrown as the plug-in exception that it reported. Operations are safe; construction
/// and destruction are not.
class ZENTARA_API AVDeviceProxy {
public:
    AVDeviceProxy(const AVDeviceProxy&) = delete;
    AVDeviceProxy& operator=(const AVDeviceProxy&) = delete;

    /// Gives back the worker thread.
    virtual ~AVDeviceProxy();

    /// Prepares, and below unprepares, the calling thread: neither goes through the worker, whose thread the constructor
    /// and `dispose` take care of.
    virtual void threadInitialize() = 0;
    virtual void threadUninitialize() = 0;

    /// Calls the device directly, beside other operations and for as long as it takes. The arguments, the result and
    /// what is thrown are those of `AVDeviceInterface::readBuffer`.
    virtual ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) = 0;

    /// Opens the device, and closes it; a device says which operations want it open.
    virtual void open() = 0;
    virtual void close() = 0;

    /// Ends the stream. \param flag its meaning is the device's
    virtual void disableStreaming(bool flag) = 0;

    [[nodiscard]] bool isProxified() const;

    /// The worker; null in direct mode and after `dispose`. Lent: the proxy's reference holds it.
    [[nodiscard]] AVDeviceProxyThread* getProxy() const;

    /// Throws the plug-in exception that belongs to the type; returns for a type that has none. Safe.
    static void PluginException_throw(Zentara::Plugin::PluginExceptionType type, const std::string& message);

protected:
    explicit AVDeviceProxy(bool proxified);

    /// Gives back the worker thread, once.
    virtual void dispose();

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::IO
