#pragma once

#include <vector>

#include <zentara/export.h>
#include <zentara/guid.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara::IO {

class VideoDeviceProxy;
class xuRequest;

/// The base of every camera chip: binds it to one video device proxy and gives it the operations of the USB
/// Video Class extension unit. All that a chip does to its camera goes through `send` and `recv`, which a
/// test may override to put a chip on something else.
///
///                  initialize(proxy)
///     Unbound ------------------------> Bound
///        ^                                |
///        +---------- dispose() -----------+
///
/// Order of calls: construct the chip, `initialize(proxy)`, any number of commands, `dispose()` before the
/// proxy goes away. A copy shares the binding of the object it was made from and must not outlive that
/// object, in whose destructor the binding goes. An object that is assigned to keeps its own binding for
/// those that share it.
///
/// Separate; each chip says how it locks.
class ZENTARA_API XUInterface {
public:
    XUInterface(const XUInterface& other) noexcept;
    XUInterface& operator=(const XUInterface& other) noexcept;
    virtual ~XUInterface();

    /// Selects the extension unit on the proxy: from now on `send` and `recv` go to it. Does nothing while no proxy is bound.
    virtual void setup(const ::GUID& unit);

    /// Selects the chip's own extension unit.
    virtual void setup() = 0;

    /// Runs the requests front to back through `processCommand`. A list that grows or shrinks meanwhile is
    /// followed as it stands after each request. Stops at the first exception; what was done stays done.
    /// \param list null is an empty list. \throws ArgumentPluginException on reaching a null element.
    virtual void processCommands(const std::vector<Utils::SmartPtr<xuRequest>>* list);

    /// Does what one request says. \throws ArgumentPluginException for a null request.
    virtual void processCommand(Utils::SmartPtr<xuRequest> request) = 0;

    /// SET of `length` bytes. Blocks as the proxy does: 2 s at most when it is proxified.
    /// \throws InvalidOperationPluginException while no proxy is bound; ArgumentPluginException for a
    /// selector or length that the device layer cannot carry (31 and 32 bits); what the proxy throws passes
    /// through.
    virtual void send(unsigned int unit, unsigned long selector, unsigned long length, void* data);

    /// GET of `length` bytes; those in the buffer on entry are part of the question. The flag is handed to
    /// the device unchanged. Blocks and throws as `send`; after a failure the buffer's content is not
    /// defined.
    virtual void recv(unsigned int unit, unsigned long selector, unsigned long length, void* data, bool flag);

    /// Binds the proxy, which must outlive the binding, and selects the chip's extension unit at once. If
    /// that fails the exception passes and the proxy stays bound.
    void initialize(VideoDeviceProxy* proxy);

    /// Forgets the proxy. Sends nothing.
    void dispose() noexcept;

protected:
    XUInterface();

private:
    struct XUInterfacePrivate;

    VideoDeviceProxy& boundProxy(const char* operation) const;

    XUInterfacePrivate* binding;
    /// What this object made and its destructor deletes; null in a copy.
    XUInterfacePrivate* const owned;
};

} // namespace Zentara::IO
