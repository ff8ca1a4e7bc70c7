#include <cstdio>
#include <iostream>

#include "tools/zentara/plugins/plugin_question.h"
#include "tools/zentara/verb.h"
#include "utils/platform/program.h"

int main(int argc, char** argv) {
    using namespace Zentara::Utils;
    Platform::reserveStandardStreams();
    Platform::failInsteadOfDying();
    const std::vector<std::string> arguments = Platform::programArguments(argc, argv);
    if (Zentara::Tool::isPluginQuestion(arguments))
        return Zentara::Tool::answerPluginQuestion(arguments);
    const Platform::ConsoleSetup setup;
    Zentara::Tool::Console console{std::cout, std::cerr, setup.takesEscapeSequences(stderr),
                                   Platform::executablePath()};
    return Zentara::Tool::runTool(arguments, console);
}
