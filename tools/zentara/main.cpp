#include <cstdio>
#include <iostream>

#include "tools/zentara/verb.h"
#include "utils/platform/program.h"

int main(int argc, char** argv) {
    Zentara::Utils::Platform::reserveStandardStreams();
    Zentara::Utils::Platform::failWritesPastLimit();
    Zentara::Tool::Console console{std::cout, std::cerr, Zentara::Utils::Platform::isTerminal(stderr)};
    return Zentara::Tool::runTool(Zentara::Utils::Platform::programArguments(argc, argv), console);
}
