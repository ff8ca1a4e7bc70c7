#include "utils/platform/process.h"

#include "utils/platform/text_encoding.h"
#include "utils/platform/windows/system.h"

#include <tlhelp32.h>

namespace Zentara::Utils::Platform {

namespace {

class Snapshot {
public:
    Snapshot() noexcept : handle(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0)) {}
    ~Snapshot() {
        if (handle != INVALID_HANDLE_VALUE)
            CloseHandle(handle);
    }
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

    const HANDLE handle;
};

} // namespace

bool listProcesses(std::vector<std::string>& names) {
    const Snapshot snapshot;
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    if (snapshot.handle == INVALID_HANDLE_VALUE || !Process32FirstW(snapshot.handle, &entry))
        return false;
    do
        names.push_back(wideToUtf8OrNarrowed(entry.szExeFile));
    while (Process32NextW(snapshot.handle, &entry));
    return true;
}

} // namespace Zentara::Utils::Platform
