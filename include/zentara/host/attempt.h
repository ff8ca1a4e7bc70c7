#pragma once

#include <string>

#include <zentara/host/export.h>
#include <zentara/host/failure.h>

namespace Zentara::Host {

// For what a program calls of the contract's library itself, such as a camera's chip: its exceptions become a Failure,
// and who watches the steps of the thread is told. Safe.

/// A step that may hang, for one scope: mostly a call into a plug-in. Tells the thread's StepWatcher, if there is one.
class ZENTARA_HOST_API Step final {
public:
    /// \param what is attempted: "open LEFT through MOCKDEPTH_IMPL"
    explicit Step(const std::string& what);
    ~Step();
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;
};

/// Turns the exception that is being handled into the Failure that attempt() throws.
[[noreturn]] ZENTARA_HOST_API void rethrowAsFailure(const std::string& what);

/// Does one step. Whatever it throws leaves as a Failure "cannot WHAT", its cause "KIND: MESSAGE" in a form that is fit
/// for a terminal; a Failure leaves as it is. What a device does not support is an Unsupported. A failure that came of a
/// time-out which only the log tells has that in its cause, and its code.
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
