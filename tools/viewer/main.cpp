#include <csignal>
#include <cstdlib>
#include <iostream>
#include <new>

#include <CLI/CLI.hpp>

#include <zentara/host/own_root.h>
#include <zentara/host/user_log.h>
#include <zentara/utils/format.h>
#include <zentara/version.h>

#include "tools/viewer/viewer.h"
#include "tools/zentara/arguments.h"
#include "tools/zentara/console.h"
#include "utils/platform/program.h"

namespace {

using Zentara::Host::Failure;
using Zentara::Tool::Console;
using namespace Zentara::Viewer;

Console console{.out = std::cout, .err = std::cerr, .verb = "view"};
Viewer* running = nullptr; ///< while there is a window

extern "C" void noteInterrupt(int signal) {
    quitViewer(Failure::Interrupted);
    std::signal(signal, SIG_DFL); // the second one ends the program at once
}

/// What was recorded is made whole first.
[[noreturn]] void endWithoutDesktop() {
    const std::string kept = running->scene().rescue();
    tellFailure(console,
                {Failure::Failed, "the window has gone", "the desktop ended, or the connection to it"});
    if (!kept.empty())
        note(console, kept);
    std::cerr.flush();
    Zentara::Utils::Platform::endProcess(Failure::Failed);
}

int view(const ViewWishes& wishes) {
    Viewer viewer(wishes);
    running = &viewer;
    int code = Failure::None;
    try {
        if (wishes.snapshot.empty()) {
            Display::whenDesktopEnds(endWithoutDesktop);
            code = viewer.run();
        } else
            viewer.writeSnapshot();
    } catch (const Failure& failure) {
        tellFailure(console, failure);
        code = failure.code();
    }
    const bool isWell = viewer.scene().end();
    running = nullptr;
    if (!isWell) {
        note(console, "a camera does not come back from a call; it is left behind");
        Zentara::Utils::Platform::endProcess(code);
    }
    return code;
}

int run(std::vector<std::string> arguments) {
    CLI::App program("Shows depth cameras in a window.", "zentara-view");
    program.set_version_flag("--version", Zentara::Utils::Format("zentara-view %.%.% build %") %
                                              ZENTARA_SDK_VERSION_MAJOR % ZENTARA_SDK_VERSION_MINOR %
                                              ZENTARA_SDK_VERSION_PATCH % ZENTARA_SDK_VERSION_BUILD);
    program.allow_windows_style_options(false);
    ViewWishes wishes;
    addViewOptions(program, wishes);
    Zentara::Tool::refuseEmptyWords(program);
    program.footer(viewFooter());
    try {
        std::reverse(arguments.begin(), arguments.end()); // the parser takes them from the back
        program.parse(std::move(arguments));
    } catch (const CLI::ParseError& reason) {
        if (reason.get_exit_code() == 0)
            return program.exit(reason, std::cout, std::cerr);
        throw Failure(Failure::Usage, reason.what(), {}, "'zentara view --help' tells more");
    }
    Zentara::Host::beginUserLog();
    Zentara::Host::useProgramRootIfNone();
    return view(wishes);
}

} // namespace

int main(int argc, char** argv) {
    using namespace Zentara::Utils;
    Platform::reserveStandardStreams();
    Platform::failInsteadOfDying();
    const Platform::ConsoleSetup setup;
    std::signal(SIGINT, noteInterrupt);
    std::signal(SIGTERM, noteInterrupt);
    try {
        return run(Platform::programArguments(argc, argv));
    } catch (const Failure& failure) {
        tellFailure(console, failure);
        return failure.code();
    } catch (const std::bad_alloc&) {
        tellFailure(console, {Failure::Failed, "there is not enough memory"});
    } catch (const std::exception& failure) {
        tellFailure(console, {Failure::Failed, "unexpected failure", failure.what()});
    }
    return Failure::Failed;
}
