#include <zentara/io/xu_interface.h>

#include <cstddef>
#include <cstdint>
#include <limits>

#include <zentara/io/video_device_proxy.h>
#include <zentara/io/xu_request.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

namespace Zentara::IO {

using Utils::Format;

namespace {

/// `unsigned long` has 64 bits on some systems and 32 on others; the device layer carries less.
template<typename Narrow>
Narrow narrowed(unsigned long value, const char* what) {
    const auto wide = static_cast<std::uint64_t>(value);
    if (wide > static_cast<std::uint64_t>(std::numeric_limits<Narrow>::max())) {
        throw Plugin::ArgumentPluginException(Format("extension-unit % % is above %") % what % wide %
                                              std::numeric_limits<Narrow>::max());
    }
    return static_cast<Narrow>(value);
}

} // namespace

struct XUInterface::XUInterfacePrivate {
    VideoDeviceProxy* proxy = nullptr; ///< not owned; null while nothing is bound
};

XUInterface::XUInterface() : binding(new XUInterfacePrivate), owned(binding) {}

XUInterface::XUInterface(const XUInterface& other) noexcept : binding(other.binding), owned(nullptr) {}

// What it owned stays: copies may still share it.
XUInterface& XUInterface::operator=(const XUInterface& other) noexcept {
    binding = other.binding;
    return *this;
}

XUInterface::~XUInterface() { delete owned; }

void XUInterface::setup(const ::GUID& unit) {
    if (binding->proxy)
        binding->proxy->xuSetup(unit);
}

void XUInterface::processCommands(const std::vector<Utils::SmartPtr<xuRequest>>* list) {
    // A command may change the list, so its size is asked anew each time.
    for (std::int32_t i = 0; list && i < static_cast<std::int32_t>(list->size()); ++i) {
        const Utils::SmartPtr<xuRequest> request = (*list)[static_cast<std::size_t>(i)];
        if (!request)
            throw Plugin::ArgumentPluginException(Format("request % of the command list is null") % i);
        processCommand(request);
    }
}

void XUInterface::send(unsigned int unit, unsigned long selector, unsigned long length, void* data) {
    VideoDeviceProxy& proxy = boundProxy("send");
    proxy.send(unit, narrowed<std::int32_t>(selector, "selector"), narrowed<std::uint32_t>(length, "length"),
               data);
}

void XUInterface::recv(unsigned int unit, unsigned long selector, unsigned long length, void* data,
                       bool flag) {
    VideoDeviceProxy& proxy = boundProxy("recv");
    proxy.recv(unit, narrowed<std::int32_t>(selector, "selector"), narrowed<std::uint32_t>(length, "length"),
               data, flag);
}

void XUInterface::initialize(VideoDeviceProxy* proxy) {
    binding->proxy = proxy;
    setup();
}

void XUInterface::dispose() noexcept { binding->proxy = nullptr; }

VideoDeviceProxy& XUInterface::boundProxy(const char* operation) const {
    if (!binding->proxy) {
        throw Plugin::InvalidOperationPluginException(
            Format("extension-unit %: no video device is bound; call initialize() first") % operation);
    }
    return *binding->proxy;
}

} // namespace Zentara::IO
