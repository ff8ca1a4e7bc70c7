#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

#include <pybind11/pybind11.h>
#include <zentara/host/flash.h>

#include "bindings/python/cameras.h"
#include "bindings/python/interpreter.h"

namespace Zentara::Python {

/// The flash of a camera or an image file, for several threads: one after the other.
class FlashObject final {
public:
    explicit FlashObject(Host::Flash flash);

    /// Works with it. \param work takes the flash and an errand \param finishes as of reporting()
    template<typename Work>
    auto use(const py::object& progress, bool finishes, Work work) const {
        return reporting(progress, finishes, [shared = held.share(), work = std::move(work)](Errand& errand) {
            const std::lock_guard hold(shared->lock);
            if (!shared->flash)
                throw Host::Failure(Host::Failure::Usage, "cannot use the flash", "it is closed");
            return work(*shared->flash, errand);
        });
    }
    template<typename Work>
    auto ask(Work work) const {
        return use(py::none(), false,
                   [work = std::move(work)](Host::Flash& flash, Errand&) { return work(flash); });
    }
    void close() const;

private:
    struct Shared {
        explicit Shared(Host::Flash opened) : flash(std::move(opened)) {}
        std::mutex lock;
        std::optional<Host::Flash> flash; // guarded by `lock`; nothing once it is closed
    };
    Held<Shared> held;
};

/// A camera's flash.
[[nodiscard]] std::unique_ptr<FlashObject> flashOf(const CameraObject& camera, bool write,
                                                   std::optional<std::uint64_t> start, std::uint64_t size);

void bindFlash(py::module_& module);

} // namespace Zentara::Python
