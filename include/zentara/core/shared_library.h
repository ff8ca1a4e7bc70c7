#pragma once

#include <memory>
#include <string>

#include <zentara/core/impl_type.h>
#include <zentara/export.h>
#include <zentara/guid.h>
#include <zentara/utils/refcounted.h>

namespace Zentara::Core {

/// One plug-in library: where it is, what it says it is, and how many of its objects live.
///
/// It carries two counts. The *object count*, that of Refcounted, keeps this record alive: the plug-in
/// manager holds one reference for as long as it has the plug-in registered. The *use count* keeps the
/// library loaded: each object made here holds one use. The step from 0 to 1 uses adds one object reference,
/// the step from 1 to 0 frees the library, so that its code is gone from the process, and drops that
/// reference.
///
///                    createInstance()
///     Not loaded -----------------------------> Loaded
///         ^                                       |
///         +--- the last use goes, or the end -----+
///
/// incref() and decref() move the use count; release() moves the object count. For this reason no SmartPtr
/// ever holds a SharedLibrary: it would count uses.
///
/// Made with new, one object reference, not loaded. Ends by release() or with its last use; a library that is
/// still loaded then (its factory threw) is freed. Safe.
///
/// Lock order: a library's mutex, then the manager's, then the logger's. The factory runs under the library's
/// mutex; the mutex is re-entrant, so an object's constructor may come back to its own library.
class ZENTARA_API SharedLibrary : public Utils::Refcounted {
public:
    using Factory = void* (*)(); ///< what `createInstance` of a plug-in is

    /// A library in a file, loaded by the first createInstance(). \param path UTF-8
    SharedLibrary(const std::string& path, ImplType type, GUID guid);
    /// A factory of the host's own: there is no file, so nothing is loaded or freed.
    SharedLibrary(Factory factory, ImplType type, GUID guid);
    SharedLibrary(const SharedLibrary&) = delete;
    SharedLibrary& operator=(const SharedLibrary&) = delete;

    /// Adds a use. The caller knows of another use or of an object reference.
    void incref() override;

    /// Drops a use. No code of the library may be running, on any thread, when its last use goes.
    void decref() override;

    /// Loads the library if it is not loaded, adds a use and returns what its factory makes. The pointer is a
    /// `Core::Plugin*`; the new object owns the use and gives it back with its last reference.
    /// For a parameter interpreter the factory is not called and the result is null; also then, and when a
    /// factory returns null, a use was added, which the caller gives back with decref().
    /// \throws Zentara::Plugin::InitializationPluginException "couldn't open: PATH", or "couldn't find function:
    /// createInstance"; the library is not loaded then. What the factory throws is passed on: no use was
    /// added, and the library stays loaded for the next attempt.
    void* createInstance();

    /// Drops an object reference; with the last one this object is gone.
    void release();

    [[nodiscard]] ImplType getImplType() const noexcept;

    /// The system's handle of the library, for getFunction(); null while it is not loaded. Good as long as the
    /// caller holds a use.
    [[nodiscard]] void* getHandle() const;

private:
    struct Impl;

    ~SharedLibrary() override;

    void incref_noLock();

    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Core
