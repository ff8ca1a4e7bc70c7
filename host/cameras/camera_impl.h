#pragma once

#include <memory>
#include <string>
#include <vector>

#include <zentara/host/camera.h>

#include "host/streams/stream_list.h"
#include "host/streams/stream_source.h"

namespace Zentara::Host {

class RealCamera;

/// What stands behind a Camera: one that is plugged in, a bare device, or a recording that plays. Safe, but for the
/// destructor.
class CameraImpl : public std::enable_shared_from_this<CameraImpl> {
public:
    CameraImpl() = default;
    CameraImpl(const CameraImpl&) = delete;
    CameraImpl& operator=(const CameraImpl&) = delete;
    virtual ~CameraImpl() = default;

    [[nodiscard]] virtual const CameraInfo& info() const noexcept = 0;
    [[nodiscard]] virtual std::vector<Mode> modes(Kind kind) = 0;
    [[nodiscard]] virtual Mode defaultMode(Kind kind) = 0;
    [[nodiscard]] virtual StreamInfo streamInfo(Kind kind, const Mode& mode) = 0;
    /// How a stream comes about, which keeps the camera open.
    [[nodiscard]] virtual StreamSetup streamSetup(Kind kind, const Mode& mode) = 0;
    virtual void close() = 0;
    /// \param what is attempted, for the message \throws Failure (Usage) after close(); a bare device opens again
    virtual void checkOpen(const std::string& /*what*/) const {}

    /// Those that were made of its setups; they are to be stopped before close().
    [[nodiscard]] StreamList& streams() noexcept { return running; }

    // Unsupported unless overridden.
    [[nodiscard]] virtual Corrections corrections();
    [[nodiscard]] virtual Sources sources();
    [[nodiscard]] virtual StereoCameraParametersArray lensModels();
    [[nodiscard]] virtual std::shared_ptr<IO::CameraChip> chip(const std::string& controller);
    [[nodiscard]] virtual IO::VideoDeviceProxy& device();
    virtual void watchTransfers(IO::ChipListener listener);

    /// Itself, for what only a camera has that is plugged in.
    /// \param what is asked for, for the message \throws Unsupported where it is none
    [[nodiscard]] virtual RealCamera& real(const std::string& what);

private:
    /// Why it has not what only a camera has that is plugged in.
    [[nodiscard]] virtual std::string whatItLacks() const;
    [[noreturn]] void refuse(const std::string& what) const;

    StreamList running;
};

} // namespace Zentara::Host
