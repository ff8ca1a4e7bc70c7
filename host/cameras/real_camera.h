#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/attempt.h"
#include "host/cameras/camera_impl.h"
#include "host/cameras/camera_parts.h"
#include "host/cameras/camera_register.h"
#include "host/cameras/errands.h"

namespace Zentara::Host {

/// A camera that is plugged in. Its parts are used on the thread of its errands alone.
class RealCamera final : public CameraImpl {
public:
    RealCamera(std::shared_ptr<CameraRegister> where, const CameraEntry& found);
    ~RealCamera() override;

    [[nodiscard]] const CameraInfo& info() const noexcept override { return identity; }
    [[nodiscard]] std::vector<Mode> modes(Kind kind) override;
    [[nodiscard]] Mode defaultMode(Kind kind) override;
    [[nodiscard]] StreamInfo streamInfo(Kind kind, const Mode& mode) override;
    [[nodiscard]] StreamSetup streamSetup(Kind kind, const Mode& mode) override;
    void close() override;
    void checkOpen(const std::string& what) const override;
    [[nodiscard]] RealCamera& real(const std::string&) override { return *this; }

    /// Does work with the parts. A failure is NoDevice when the camera is not plugged in any more.
    /// \param what for what throws or hangs outside of any step of the work, which owns all it touches
    template<typename Work>
    std::invoke_result_t<Work&, CameraParts&> ask(const std::string& what, Work work) {
        checkOpen(what);
        try {
            return errands.run(what, [own = parts, work = std::move(work)]() mutable { return work(*own); });
        } catch (const Failure& failure) {
            passOn(failure);
        }
    }

    /// Asks the depth node one question. \param question takes the node
    template<typename Ask>
    auto askDepth(const std::string& what, Ask question) {
        return ask(what, [what, question = std::move(question)](CameraParts& own) {
            const auto node = own.depth();
            std::invoke_result_t<const Ask&, Core::DepthNodeInterface&> answer{};
            attempt(what, [&] { answer = question(**node); });
            return answer;
        });
    }

    [[nodiscard]] Corrections corrections() override;
    [[nodiscard]] Sources sources() override;
    [[nodiscard]] StereoCameraParametersArray lensModels() override;
    [[nodiscard]] std::shared_ptr<IO::CameraChip> chip(const std::string& controller) override;
    [[nodiscard]] IO::VideoDeviceProxy& device() override;
    void watchTransfers(IO::ChipListener listener) override { transfers->set(std::move(listener)); }

    // For streams: the camera's thread, its parts for works on that, and where to look for it when it was away.
    [[nodiscard]] const std::shared_ptr<Hand>& hand() const noexcept { return errands.hand; }
    [[nodiscard]] const std::shared_ptr<CameraParts>& heldParts() const noexcept { return parts; }
    [[nodiscard]] const std::shared_ptr<CameraRegister>& origin() const noexcept { return whereFrom; }
    [[nodiscard]] const Note& note() const noexcept { return errands.note; }
    [[nodiscard]] std::chrono::milliseconds limit() const noexcept { return errands.limit; }

private:
    [[noreturn]] void passOn(const Failure& failure);

    const std::shared_ptr<CameraRegister> whereFrom;
    const CameraInfo identity;
    const std::shared_ptr<TransferWatch> transfers = std::make_shared<TransferWatch>();
    std::atomic<bool> isClosed = false;
    Errands errands;
    const std::shared_ptr<CameraParts> parts;
};

} // namespace Zentara::Host
