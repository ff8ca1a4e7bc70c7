#pragma once

#include <cstddef>

#include <zentara/host/library_log.h>
#include <zentara/utils/mutex.h>

namespace Zentara::Tool {

/// What the library logs while a verb runs, shown on standard error when that is wanted. Safe. One at a time.
class ToolLog final {
public:
    explicit ToolLog(bool isWanted);
    ~ToolLog();
    ToolLog(const ToolLog&) = delete;
    ToolLog& operator=(const ToolLog&) = delete;

    /// Null when there is none.
    [[nodiscard]] static ToolLog* current() noexcept;

    [[nodiscard]] Host::LibraryLog& log() noexcept { return logged; }
    /// Shows what has come since the last time.
    void show();

    /// What is logged in its life is not shown, unless it is left by an exception: attempts that may fail and mean
    /// nothing.
    class Silence {
    public:
        Silence();
        ~Silence();
        Silence(const Silence&) = delete;
        Silence& operator=(const Silence&) = delete;

    private:
        const int exceptions;
        std::size_t from = 0;
    };

private:
    const bool wanted;
    Host::LibraryLog logged{"zentara"};
    Utils::Threading::Mutex lock;
    std::size_t shown ZENTARA_GUARDED_BY(lock) = 0;
    bool isSilent ZENTARA_GUARDED_BY(lock) = false;
};

} // namespace Zentara::Tool
