#pragma once

#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <zentara/host/cameras.h>
#include <zentara/utils/mutex.h>

#include "host/cameras/camera_bus.h"
#include "host/cameras/errands.h"

namespace Zentara::Host {

/// What stands behind Cameras, and lives as long as the cameras that were opened from it: the enumerators on a thread of
/// their own. They are made at the first question. Safe.
class CameraRegister final {
public:
    explicit CameraRegister(Cameras::Options options);
    ~CameraRegister();
    CameraRegister(const CameraRegister&) = delete;
    CameraRegister& operator=(const CameraRegister&) = delete;

    /// The cameras that are there now. \throws Failure
    [[nodiscard]] std::vector<CameraEntry> entries();
    /// The same; none is a failure, which says why as far as an enumerator tells.
    [[nodiscard]] std::vector<CameraEntry> someEntries();
    /// Whether a camera of that path is there now; nothing when that cannot be told.
    [[nodiscard]] std::optional<bool> isPresent(const std::string& path) noexcept;

    void watch();
    [[nodiscard]] std::optional<CameraEvent> next(std::chrono::milliseconds limit);
    [[nodiscard]] std::string backEnds();
    void close();

    [[nodiscard]] std::chrono::milliseconds limit() const noexcept { return errands.limit; }
    [[nodiscard]] const Note& note() const noexcept { return errands.note; }

private:
    /// Used on the errands' thread alone.
    struct Seat {
        explicit Seat(Note told) : note(std::move(told)) {}
        [[nodiscard]] CameraBus& bus();

        const Note note;
        const std::shared_ptr<CameraBus::Events> events = std::make_shared<CameraBus::Events>();
        std::unique_ptr<CameraBus> opened;
    };

    [[nodiscard]] bool takeUntold(std::list<ExternalEvent>& taken) noexcept;
    void putBack(std::list<ExternalEvent>& taken) noexcept;
    [[nodiscard]] CameraEvent told(const ExternalEvent& event);

    Utils::Threading::Mutex lock;
    /// Those for which memory was lacking, the oldest first.
    std::list<ExternalEvent> untold ZENTARA_GUARDED_BY(lock);

    Errands errands;
    const std::shared_ptr<Seat> seat;
    const std::shared_ptr<CameraBus::Events> events; ///< the seat's
};

/// What a camera's entry says.
[[nodiscard]] CameraInfo infoOf(const CameraEntry& entry);

} // namespace Zentara::Host
