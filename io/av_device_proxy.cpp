#include <zentara/io/av_device_proxy.h>

#include <utility>

#include <zentara/io/av_device_proxy_thread.h>

namespace Zentara::IO {

struct AVDeviceProxy::Impl {
    bool proxified;
    AVDeviceProxyThread* thread; ///< one reference is this one's; null in direct mode and once given back
};

AVDeviceProxy::AVDeviceProxy(bool proxified)
    : impl(new Impl{proxified, proxified ? AVDeviceProxyThread::instance() : nullptr}) {}

AVDeviceProxy::~AVDeviceProxy() { AVDeviceProxy::dispose(); }

bool AVDeviceProxy::isProxified() const { return impl->proxified; }

AVDeviceProxyThread* AVDeviceProxy::getProxy() const { return impl->thread; }

void AVDeviceProxy::PluginException_throw(Plugin::PluginExceptionType type, const std::string& message) {
    Plugin::throwPluginException(type, message);
}

void AVDeviceProxy::dispose() {
    if (AVDeviceProxyThread* const last = std::exchange(impl->thread, nullptr))
        last->release();
}

} // namespace Zentara::IO
