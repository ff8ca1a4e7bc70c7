#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace Zentara::Linux {

/// What the back-ends ask of the kernel, as one small face, behind which a test can stand in its place. What can fail
/// returns what the system's call does, or minus the number of its error; a call that a signal interrupts is made again.
/// Safe.
class Kernel {
public:
    /// What a wait ended with.
    enum class Ready {
        Nothing, ///< the time has passed
        Frame,   ///< a frame can be fetched
        Woken,   ///< somebody wants the waiting to end
        Broken,  ///< the file has an error, which the next call on it names
    };

    virtual ~Kernel() = default;

    /// Opens a device for reading and writing, such that fetching a frame never waits.
    [[nodiscard]] virtual int open(const std::string& path) = 0;
    virtual void close(int file) = 0;

    /// An ioctl.
    virtual int control(int file, unsigned long request, void* argument) = 0;

    /// Memory that is shared with the driver. \return null on failure
    [[nodiscard]] virtual std::byte* map(int file, std::size_t length, std::uint32_t offset) = 0;
    virtual void unmap(std::byte* memory, std::size_t length) = 0;

    /// What wait() waits for, again and again: a frame of the file, or that `wake` can be read. close() lets go of it.
    virtual int watch(int file, int wake) = 0;
    [[nodiscard]] virtual Ready wait(int watch, int milliseconds) = 0;
};

/// The one that the program runs on.
[[nodiscard]] std::shared_ptr<Kernel> systemKernel();

/// The system's words for an error: "Device or resource busy".
[[nodiscard]] std::string errorWords(int number);

/// What ends a wait, from any thread. Safe.
class WakeUp {
public:
    /// \throws Plugin::IOPluginException when the process has no file left to open
    WakeUp();
    ~WakeUp();
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    /// Ends the present wait and all later ones until reset().
    void set() noexcept;
    void reset() noexcept;
    /// For Kernel::watch.
    [[nodiscard]] int file() const noexcept { return event; }

private:
    const int event;
};

/// Waits for the frames of a file: it costs less than to name the files anew with each wait. The file stays open
/// meanwhile. Safe.
class FrameWait {
public:
    /// \throws Plugin::IOPluginException when the process has no file left to open
    FrameWait(std::shared_ptr<Kernel> kernel, int file, const WakeUp& wake);
    ~FrameWait();
    FrameWait(const FrameWait&) = delete;
    FrameWait& operator=(const FrameWait&) = delete;

    [[nodiscard]] Kernel::Ready wait(int milliseconds) const { return kernel->wait(watch, milliseconds); }

private:
    const std::shared_ptr<Kernel> kernel;
    const int watch;
};

} // namespace Zentara::Linux
