#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <type_traits>

#include <zentara/host/plugin_check.h>

#include "host/json_fwd.h"

namespace Zentara::Host::Check {

/// What a step must come to.
enum class Wanted {
    Success,  ///< it returns
    Optional, ///< it returns, or says that it is not supported
    Refusal,  ///< it throws a plug-in exception
    Either,   ///< it returns, or throws a plug-in exception
};

/// Thrown by a step that has seen for itself what is wrong, or what is missing.
struct Finding {
    StepVerdict verdict = StepVerdict::Failed;
    std::string observed;
    std::string consequence;
    std::string remedy;
};

/// A step's place in the report.
struct StepName {
    const char* part;
    std::string name;
};

inline constexpr const char* libraryPart = "library";
inline constexpr const char* objectPart = "object";
inline constexpr const char* operationsPart = "operations";
inline constexpr const char* threadsPart = "threads";
inline constexpr const char* endingPart = "ending";

/// The first step in which the other plug-ins of the install root are looked at.
inline constexpr const char* scanStep = "the plug-in manager finds it";

/// As long as a caller of a device waits for it, and as long as a reader waits for a frame.
inline constexpr std::chrono::milliseconds callerPatience{2000};
inline constexpr std::chrono::milliseconds readerPatience{1000};

/// The child's side: does one step after the other and tells of each before and after. A step that takes longer than the
/// limit ends the process. Used by one thread.
class CheckRun final {
public:
    /// \param report open for as long as the process lives
    /// \param leftOut steps, "PART: NAME", that are not done again
    CheckRun(std::FILE* report, std::chrono::milliseconds limit, std::set<std::string> leftOut);
    CheckRun(const CheckRun&) = delete;
    CheckRun& operator=(const CheckRun&) = delete;

    /// \param work returns what is to be reported, or nothing
    /// \param patience of whoever waits for it
    /// \return whether it returned
    template<typename Work>
    bool step(const StepName& name, Wanted wanted, const Work& work,
              std::chrono::milliseconds patience = callerPatience) {
        if constexpr (std::is_void_v<std::invoke_result_t<const Work&>>)
            return reported(
                name, wanted,
                [&work] {
                    work();
                    return std::string();
                },
                patience);
        else
            return reported(name, wanted, work, patience);
    }

    /// Says of a step how it ended where nobody could say what was to come of it.
    void tell(const CheckedStep& step);

    /// Ends the process where nothing of the plug-in can be called any more. \param why the rest was not tried
    [[noreturn]] void abandon(const std::string& why);

    /// What throws ends there, for the objects of the checker's own.
    static void quietly(const std::function<void()>& work) noexcept;

private:
    bool reported(const StepName& name, Wanted wanted, const std::function<std::string()>& work,
                  std::chrono::milliseconds patience);
    void begin(const StepName& name);
    void watch();

    std::FILE* const file;
    const std::chrono::milliseconds limit;
    const std::set<std::string> skipped;
    std::mutex lock;
    std::condition_variable changed;
    bool busy = false;                               ///< a step runs
    std::chrono::steady_clock::time_point startedAt; ///< that step
    std::string current;                             ///< its name
};

/// The report's lines, between child and parent.
inline constexpr const char* beginMark = "begin ";
inline constexpr const char* stepLineMark = "done ";
inline constexpr const char* lateMark = "late ";

/// \param part and name as one text
[[nodiscard]] std::string stepKey(const std::string& part, const std::string& name);

[[nodiscard]] Json toJson(const CheckedStep& step);
/// \throws Json::exception for what is no step
[[nodiscard]] CheckedStep stepOf(const Json& json);

} // namespace Zentara::Host::Check
