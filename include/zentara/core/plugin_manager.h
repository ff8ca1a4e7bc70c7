#pragma once

#include <memory>
#include <vector>

#include <zentara/core/impl_type.h>
#include <zentara/export.h>
#include <zentara/guid.h>
#include <zentara/utils/atomic_int.h>
#include <zentara/utils/mutex.h>

namespace Zentara::Core {

class SharedLibrary;

/// The process-wide registry of plug-ins.
///
/// The first instance() scans the directory "bin/Plugins/" below the install root: it opens each library
/// once, asks it who it is, and closes it again (plugin_probe.h tells in which steps). What was found then
/// does not change for the life of the manager; the next scan is that of the next manager. A plug-in is
/// loaded again when an object of it is asked for, and stays loaded while one of its objects lives.
///
///           first instance()              last reference goes
///     None ------------------> Living ------------------------> Ended, an empty shell
///                                ^                                |
///                                +------- next instance() --------+   another one, which scans anew
///
/// instance() and release() are paired. Every plug-in object holds a reference of its own, so the last object
/// may go after the host's last release(). The operations on the registry need a reference, and are safe.
///
/// Lock order: a library's mutex, then the manager's, then the logger's. The first instance() and the last
/// release() open and close libraries under the manager's mutex: the static initialisers of a plug-in must
/// not call the manager.
class ZENTARA_API PluginManager {
public:
    PluginManager(const PluginManager&) = delete;
    PluginManager& operator=(const PluginManager&) = delete;

    /// Adds a reference and returns the manager, which the first one creates.
    /// \throws Zentara::Plugin::InitializationPluginException "couldn't get bin directory" when the install root
    /// cannot be read. The reference then stays counted: until it is given back, instance() neither throws
    /// nor scans, and returns what was there before: null in a process that never had a manager, else the one
    /// that has ended, which knows no plug-ins. Null counts as well, and there is nothing to give it back
    /// through: a process whose very first manager could not start gets none any more.
    static PluginManager* instance();

    /// Adds a reference. The caller holds one.
    void incref();

    /// Gives a reference back; the last one ends the manager.
    void release();

    /// The identifiers of all plug-ins of this kind, in no particular order.
    [[nodiscard]] std::vector<GUID> getGUIDs(ImplType type);

    /// Makes an object of a plug-in: see SharedLibrary::createInstance(), also for who owns it.
    /// \throws Zentara::Plugin::InitializationPluginException "couldn't find GUID NAME" for an unknown plug-in,
    /// "ImplType mismatch" for one of another kind, and what SharedLibrary::createInstance() throws.
    [[nodiscard]] void* createInstance(GUID guid, ImplType type);

    /// Adds or drops a use of a plug-in's library, which keeps it loaded.
    /// \throws Zentara::Plugin::InitializationPluginException "couldn't find GUID NAME" for an unknown plug-in.
    void incref(GUID guid);
    void decref(GUID guid);

protected:
    /// The library of a plug-in; the manager keeps its reference to it.
    /// \throws Zentara::Plugin::InitializationPluginException "couldn't find GUID NAME" for an unknown plug-in.
    [[nodiscard]] SharedLibrary* getSharedLibrary(GUID guid);

private:
    friend class Plugin;
    struct Impl;

    PluginManager();
    virtual ~PluginManager();

    void checkGUID(GUID guid) const;
    void loadImplGUIDs();

    /// instance(), and null if what it returned is no living manager.
    static PluginManager* acquire();
    static void releaseReference();

    /// Never cleared: after its end a manager stays as an empty shell until the next one takes its place.
    static PluginManager* _instance;
    static Utils::Threading::Mutex& _lock;
    static Utils::AtomicInt _refcount;

    /// Null once the manager has ended; this alone decides whether the last reference has something to
    /// destroy.
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Core
