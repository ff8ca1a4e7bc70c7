#include "utils/platform/console.h"

#include <conio.h>

#include "utils/platform/windows/system.h"

namespace Zentara::Utils::Platform {

bool keyWaiting() noexcept {
    // Standard input may lead elsewhere: only a console has keys.
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode) != 0 && _kbhit() != 0;
}

} // namespace Zentara::Utils::Platform
