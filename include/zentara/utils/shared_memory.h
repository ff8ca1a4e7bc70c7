#pragma once

#include <zentara/export.h>

#include <memory>
#include <string>

namespace Zentara::Utils {

/// Named memory that several processes see: one table of mappings per process. Safe.
///
/// A mapping is named by the base name, the caller's name and an index; its system-wide name is
/// '/ZentaraSDK_' + name + '_' + index. Processes of one user that ask for the same name and index share the
/// memory, which starts as zeros, keeps its first size and vanishes with its last user: when that one gives it
/// back, or at the end of its process by exit() or a return from main().
///
/// Off Windows a process that is killed, or ends by _exit() or abort(), as the last user leaves name and memory behind
/// in "/dev/shm". Nobody sees what was in it: whoever asks for the name gets new memory. And the first mapping of any
/// process of the same user removes all such left-overs under its base name; otherwise they stay until the system is
/// started anew. A child of fork() has its parent's mappings, but does not count as a user of them.
class ZENTARA_API SharedMemory final {
public:
    /// The process's table, made on first use; the pointer is valid until release().
    static SharedMemory* getSharedMemory();

    /// Unmaps everything and destroys the table; nobody may be using it. Does nothing without one.
    static void release();

    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    /// Maps the memory, or returns where it is mapped already: then size and access are those of the first
    /// call.
    /// \param name not empty, no slash or backslash in it
    /// \param index 0 to 127
    /// \param size bytes, 1 or more; at most the size the memory was created with
    /// \param writable false for read access only
    /// \return the address, owned by the table and valid until its releasePtr().
    /// \throws std::bad_alloc on every failure.
    void* getPtr(std::string name, unsigned int index, unsigned int size, bool writable);

    /// Unmaps one mapping; does nothing when it is not mapped.
    /// \param unlink true to make the system forget the name as well, so that the next getPtr() of any process starts
    ///        with new memory while present users keep theirs. On Windows a name goes with its last user only.
    void releasePtr(std::string name, unsigned int index, bool unlink);

    /// Unmaps every index of a name. \param unlink as for releasePtr().
    void releaseAll(std::string name, bool unlink);

    /// Unmaps everything. \param unlink as for releasePtr().
    void releaseAll(bool unlink);

    /// "/ZentaraSDK_" unless it was set. The reference is the table's own and not guarded.
    std::string& getBaseName();

    /// Affects mappings made from now on. The name is the host's own: off Windows what of this user begins with it,
    /// ends in "_" and a number, and is used by nobody is taken for a left-over, see above.
    void setBaseName(std::string& baseName);

private:
    SharedMemory();
    ~SharedMemory();

    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Utils
