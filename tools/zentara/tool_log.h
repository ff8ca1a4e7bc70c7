#pragma once

#include <cstddef>
#include <fstream>
#include <string>

#include <zentara/utils/kv_logger.h>
#include <zentara/utils/mutex.h>

namespace Zentara::Tool {

/// What the library logs while a verb runs: it holds the causes that a failure does not tell, and is shown on standard
/// error when that is wanted. Safe. One at a time; where somebody else logs already, it stays empty.
class ToolLog final {
public:
    explicit ToolLog(bool isWanted);
    ~ToolLog();
    ToolLog(const ToolLog&) = delete;
    ToolLog& operator=(const ToolLog&) = delete;

    /// Null when there is none.
    [[nodiscard]] static ToolLog* current() noexcept;

    /// The place behind what has been logged so far.
    [[nodiscard]] std::size_t end();
    /// Of the first time-out that was logged from that place on; empty when there was none.
    [[nodiscard]] std::string timeoutSince(std::size_t place);
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
    void readOn() ZENTARA_REQUIRES(lock);

    const bool wanted;
    std::string path;
    Utils::KVLogger* logger = nullptr;
    Utils::Threading::Mutex lock;
    std::ifstream file ZENTARA_GUARDED_BY(lock);
    std::streamoff readTo ZENTARA_GUARDED_BY(lock) = 0; ///< up to which the file was read
    std::string text ZENTARA_GUARDED_BY(lock);
    std::size_t shown ZENTARA_GUARDED_BY(lock) = 0;
    bool isSilent ZENTARA_GUARDED_BY(lock) = false;
};

} // namespace Zentara::Tool
