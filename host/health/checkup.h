#pragma once

#include <filesystem>
#include <string>
#include <utility>

#include <zentara/host/health.h>

namespace Zentara::Host {

/// The findings while they are made.
class Checkup final {
public:
    /// \param under what the following ones are about
    void about(std::string under) { check = std::move(under); }
    void well(std::string text) { add(HealthFinding::State::Well, std::move(text), {}); }
    void note(std::string text, std::string remedy) {
        add(HealthFinding::State::Hint, std::move(text), std::move(remedy));
    }
    void wrong(std::string text, std::string remedy) {
        add(HealthFinding::State::Wrong, std::move(text), std::move(remedy));
    }
    [[nodiscard]] HealthReport take() { return std::move(findings); }

private:
    void add(HealthFinding::State state, std::string text, std::string remedy);

    std::string check;
    HealthReport findings;
};

/// Copies of the library that programs may come upon, and what version they are; that of the running one first.
void checkLibraries(Checkup& checkup, const std::filesystem::path& system);

/// The video nodes of the kernel: permission, who has one open, at which speed a camera is connected.
void checkKernelCameras(Checkup& checkup, const std::filesystem::path& system);

/// Shared memory of this user's, and whether a process has it still.
void checkSharedMemory(Checkup& checkup, const std::filesystem::path& system);

} // namespace Zentara::Host
