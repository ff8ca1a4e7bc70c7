#pragma once

#include <string>

#include <zentara/host/failure.h>
#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::Host {

/// A step that may hang, for one scope: mostly a call into a plug-in. Tells the thread's watcher, if there is one.
class Step final {
public:
    /// \param what is attempted: "open LEFT through MOCKDEPTH_IMPL"
    explicit Step(const std::string& what);
    ~Step();
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;
};

/// The code of a plug-in's exception.
[[nodiscard]] Failure::Code codeOf(Plugin::PluginExceptionType type) noexcept;

/// The kind of a plug-in's exception, for people: "I/O failure".
[[nodiscard]] const char* failureText(Plugin::PluginExceptionType type) noexcept;

/// Turns the exception that is being handled into the Failure that attempt() throws.
[[noreturn]] void rethrowAsFailure(const std::string& what);

/// Does one step. Whatever it throws leaves as a Failure "cannot WHAT", its cause "KIND: MESSAGE"; a Failure leaves as it
/// is. A failure that came of a time-out which only the log tells has that in its cause, and its code.
template<typename Work>
void attempt(const std::string& what, Work work) {
    const Step step(what);
    try {
        work();
    } catch (...) {
        rethrowAsFailure(what);
    }
}

} // namespace Zentara::Host
