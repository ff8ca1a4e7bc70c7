#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include <zentara/host/export.h>

namespace Zentara::Host {

/// What every operation of the host library throws when it cannot do what was asked: what was attempted and on what,
/// what came back, and what helps. A copyable value. Separate.
class ZENTARA_HOST_API Failure : public std::runtime_error {
public:
    /// The kinds of failure. The numbers are the exit codes of the tool `zentara`.
    enum Code : int {
        None = 0,         ///< no failure; never thrown
        Failed = 1,       ///< none of the others: a device, a file or a value is not as it must be
        Usage = 2,        ///< what was asked for makes no sense; asking again will not help
        NoDevice = 3,     ///< there is no such camera, or it was pulled out
        NoPlugin = 4,     ///< no usable plug-in
        Permission = 5,   ///< the system or the camera does not allow it
        Busy = 6,         ///< somebody else has it
        TimedOut = 7,     ///< nothing came back within the limit
        Verification = 8, ///< what was read back is not what was written
        Interrupted = 130 ///< somebody asked for the end
    };

    /// what() is message and cause on one line.
    /// \param message what was attempted, on what: "cannot make a point cloud of SIM0570"
    /// \param cause what came back, with its number; empty where the message says it
    /// \param remedy what helps; empty where nothing is known to
    /// \param details reasons of their own, a line each; mostly none
    Failure(Code code, std::string message, std::string cause = {}, std::string remedy = {},
            std::vector<std::string> details = {});
    Failure(const Failure&);
    Failure& operator=(const Failure&);
    ~Failure() override;

    [[nodiscard]] Code code() const noexcept { return kind; }
    [[nodiscard]] const std::string& message() const noexcept { return attempt; }
    [[nodiscard]] const std::string& cause() const noexcept { return reason; }
    [[nodiscard]] const std::string& remedy() const noexcept { return help; }
    [[nodiscard]] const std::vector<std::string>& details() const noexcept { return more; }

private:
    Code kind;
    std::string attempt;           ///< what was attempted, on what
    std::string reason;            ///< what came back
    std::string help;              ///< what helps
    std::vector<std::string> more; ///< a line each
};

/// The camera has not what was asked for, and never will. Code Failed; cause() says what it lacks.
class ZENTARA_HOST_API Unsupported final : public Failure {
public:
    Unsupported(std::string message, std::string cause);
    Unsupported(const Unsupported&);
    Unsupported& operator=(const Unsupported&);
    ~Unsupported() override;
};

} // namespace Zentara::Host
