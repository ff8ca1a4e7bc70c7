#pragma once

#include <string>
#include <string_view>

namespace Zentara::Utils::Platform {

/// A named object in the system's shared memory that lives as long as somebody has it open: the last user
/// unlinks it, and what a killed process left behind is replaced by the next one who opens it, or swept away.
///
/// Two bytes of the object are locked through the open file, so the locks work within one process too and die
/// with their holder: the gate, held alone while somebody opens or closes, and the membership, shared by all
/// users. A child of fork() has none of its parent's objects open, and keeps the memory that is mapped.
class SharedObject final {
public:
    SharedObject() = default;
    ~SharedObject() { close(); }
    SharedObject(const SharedObject&) = delete;
    SharedObject& operator=(const SharedObject&) = delete;

    /// How long somebody who stands still in the gate, such as a stopped process, holds up the others.
    static constexpr unsigned long gatePatience = 10'000;

    /// Opens or creates the object and becomes a user of it. On success the gate is still held, so that the
    /// caller can look at the object alone, and the caller must openGate() next.
    /// \param patience milliseconds to wait for the gate; it then fails
    [[nodiscard]] bool open(const std::string& objectName, unsigned long patience = gatePatience);
    void openGate();
    /// Without the gate the name stays, as after a killed process.
    void close();
    /// Gives up the name as close() does, for a process that is about to end, and keeps the object open: threads that
    /// still run may be using its memory.
    void leave(unsigned long patience = gatePatience);
    /// Removes the name, if the gate can be had; users keep what they have open.
    void unlink();

    [[nodiscard]] int descriptor() const { return file; }
    /// Whether others were using the object when it was opened.
    [[nodiscard]] bool wasInUse() const { return inUse; }

    /// Removes the objects of this user that nobody has open and whose names are the prefix, without a slash, and a
    /// rest that the predicate accepts. Never waits: an object that somebody is opening or closing stays.
    static void sweep(std::string_view prefix, bool (*isOurs)(std::string_view rest)) noexcept;

private:
    enum class Attempt { opened, replaced, failed };
    Attempt tryOpen(unsigned long patience);
    Attempt becomeUser();

    std::string name;
    int file = -1;
    bool inUse = false;
    unsigned long owner = 0; ///< the process that opened it
};

} // namespace Zentara::Utils::Platform
