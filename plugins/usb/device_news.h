#pragma once

#include <cstdint>

namespace Zentara::Usb {

/// Hears from the kernel that a device has come or gone. Where that is not permitted, or there is no such news, as in
/// some containers, waiting simply lasts its time. Bound, but for wake().
class DeviceNews {
public:
    DeviceNews();
    ~DeviceNews();
    DeviceNews(const DeviceNews&) = delete;
    DeviceNews& operator=(const DeviceNews&) = delete;

    /// Waits for news of video, sound or USB devices, then until there was none for a moment; until wake(); or until the
    /// time has passed.
    void wait(int milliseconds);

    /// Ends the present wait, or the next one. Safe.
    void wake() noexcept;

private:
    [[nodiscard]] bool readable(int milliseconds) const;
    [[nodiscard]] bool isOfInterest() const;

    const int socket; ///< negative: none
    const int event;
};

} // namespace Zentara::Usb
