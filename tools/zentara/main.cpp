#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <optional>

#include <zentara/host/plugins.h>
#include <zentara/host/visible_text.h>

#include "tools/zentara/verb.h"
#include "utils/platform/program.h"

namespace {

/// Ends the program over an exception that nobody can catch, such as a plug-in's from the end of a static object.
[[noreturn]] void endInWords() {
    try {
        if (const std::exception_ptr thrown = std::current_exception())
            std::rethrow_exception(thrown);
    } catch (const std::bad_alloc&) {
        std::fputs("zentara: there is not enough memory\n", stderr);
        std::_Exit(1);
    } catch (const std::exception& failure) {
        std::fprintf(stderr,
                     "zentara: ended by an exception where none may be thrown, perhaps in a plug-in: %s\n"
                     "'zentara plugins --all' names a plug-in that does so\n",
                     Zentara::Host::visibleText(failure.what()).c_str());
        std::_Exit(1);
    } catch (...) {
    }
    std::fputs("zentara: ended where no exception may be thrown, perhaps in a plug-in\n", stderr);
    std::_Exit(1);
}

/// Ends the program in words where the library, or a plug-in, calls abort(): the library does when the system has no
/// thread for it.
extern "C" void endAborted(int) {
    std::fputs("zentara: ended by abort(): the system had no memory or thread left, or a plug-in gave up\n",
               stderr);
    std::_Exit(1);
}

} // namespace

int main(int argc, char** argv) {
    using namespace Zentara::Utils;
    Platform::reserveStandardStreams();
    Platform::failInsteadOfDying();
    const std::vector<std::string> arguments = Platform::programArguments(argc, argv);
    if (const std::optional<int> code = Zentara::Host::answerPluginQuestion(arguments))
        return *code;
    std::set_terminate(endInWords);
    std::signal(SIGABRT, endAborted);
    const Platform::ConsoleSetup setup;
    Zentara::Tool::Console console{std::cout, std::cerr, setup.takesEscapeSequences(stderr),
                                   Platform::executablePath()};
    return Zentara::Tool::runTool(arguments, console);
}
