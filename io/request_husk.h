#pragma once

namespace Zentara::IO {

class deviceRequest;

/// What a request becomes when its caller got an exception and has left its reference behind: that reference, the
/// type and the failure. All else goes as soon as the worker is done with the request and nobody else holds it.
struct RequestHusk {
    /// Marks a request of the library's own, whose signals go as well.
    static void mark(deviceRequest& request) noexcept;

    /// Says that the caller's reference stays behind.
    static void forsake(deviceRequest& request) noexcept;

    /// Gives back the device and whatever else the request holds. The caller is the only one who uses it.
    static void make(deviceRequest& request) noexcept;
};

/// Memory that a request owns.
class OwnedMemory {
public:
    virtual ~OwnedMemory() = default;
    virtual void giveBack() noexcept = 0;
};

} // namespace Zentara::IO
