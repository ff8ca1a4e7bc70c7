#pragma once

#include <utility>

#include <zentara/export.h>

/// Calls into a plug-in whose exceptions may outlive it.
///
/// Compilers may put what describes a thrown type into the library that throws it: on Windows they do for every
/// class, elsewhere for the classes of the plug-in's own. Once that library has left the process, the next handler,
/// a kept `std::exception_ptr` and the exception's destruction read freed memory. So whoever calls a plug-in, and may
/// let go of it before the last handler has looked, calls it through `callPlugin`. The SDK's library does so wherever
/// it calls one: factories, device operations, initialisation, parameter back-ends. Operations that a host calls
/// itself, those of nodes, stores and enumerators, are the host's to wrap.
namespace Zentara::Plugin {

/// To be called in a handler, while the plug-in is still loaded. Throws the exception that is being handled anew, as
/// an object that no plug-in's library describes. Safe.
/// - Plug-in exceptions keep class, kind and text, and the `U...Exception`s class and text. They are copied, so
///   nothing is logged; a class derived from one of them becomes that one.
/// - Exceptions of the standard library keep class and text, save those whose text the class makes up and those with
///   an error category of the plug-in's own: these, and every other `std::exception`, become a `std::runtime_error`
///   with the same text.
/// - `int` and `std::string` are thrown as they are, a `const char*` becomes a `std::runtime_error` with that text, and
///   whatever else one with the text "unknown exception".
[[noreturn]] ZENTARA_API void rethrowAnew();

/// Returns what `function()` returns. What it throws leaves through `rethrowAnew`.
template<typename Function>
decltype(auto) callPlugin(Function&& function) {
    try {
        return std::forward<Function>(function)();
    } catch (...) {
        rethrowAnew();
    }
}

} // namespace Zentara::Plugin
