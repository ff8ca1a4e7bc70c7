#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <zentara/io/camera_chip.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/utils/mutex.h>

#include "host/cameras/camera_bus.h"

namespace Zentara::Host {

/// Who is told of a controller's transfers; may be exchanged while some are under way. Safe.
class TransferWatch final {
public:
    void set(IO::ChipListener newListener);
    void operator()(const IO::ChipTransfer& transfer);

private:
    Utils::Threading::Mutex lock;
    IO::ChipListener listener ZENTARA_GUARDED_BY(lock); ///< called with the lock held; empty for nobody
};

/// A camera's controller over a video device of its own: that of the camera's depth or colour node, without the node, or
/// a bare one. Bound, but for what it gives out: that stays as long as this one, so that nobody is left with a chip that
/// has gone, and a chip that is closed throws.
class BoundChip final {
public:
    explicit BoundChip(std::shared_ptr<TransferWatch> watch) : transfers(std::move(watch)) {}
    ~BoundChip();
    BoundChip(const BoundChip&) = delete;
    BoundChip& operator=(const BoundChip&) = delete;

    /// Opens the device alone; does nothing when that was done. \throws Failure
    void openDevice(const CameraEntry& camera);
    /// Opens the device and binds the chip; does nothing when that was done.
    /// \param controller overrules what the description says; empty: that one or, where it says none, what is found out
    /// \throws Failure
    void open(const CameraEntry& camera, const std::string& controller);
    /// The same with a bare device. \param wanted what the device is to have, where it can have several
    void open(const GUID& device, const std::string& wanted, const std::string& controller);

    /// Ends chip and device. \throws Failure
    void close();

    // Null before open() and after close().
    [[nodiscard]] std::shared_ptr<IO::CameraChip> chip() const noexcept {
        return binding ? std::shared_ptr<IO::CameraChip>(binding, binding->chip.get()) : nullptr;
    }
    [[nodiscard]] IO::VideoDeviceProxy* device() const noexcept {
        return binding ? binding->proxy.get() : nullptr;
    }

private:
    /// What ends together, with the last who has the chip.
    struct Binding {
        NodeEvent node;
        std::unique_ptr<CameraStore> store; ///< the device may read it until its end
        std::unique_ptr<IO::VideoDeviceProxy> proxy;
        bool isOpen = false; ///< the camera's device is
        std::atomic<bool> isClosed =
            false; ///< the chip, which may be in use on another thread, refuses transfers
        std::unique_ptr<IO::CameraChip> chip;
    };
    void bind(const std::string& label, const std::string& controller);

    const std::shared_ptr<TransferWatch> transfers;
    std::shared_ptr<Binding> binding;
    std::vector<std::shared_ptr<Binding>> ended; ///< closed; one for each time that the camera came back
};

} // namespace Zentara::Host
