#pragma once

#include <memory>

#include <zentara/core/impl_type.h>
#include <zentara/export.h>
#include <zentara/guid.h>
#include <zentara/utils/refcounted.h>

namespace Zentara::Core {

class SharedLibrary;

/// Base of every object that a plug-in's factory returns.
///
/// Each reference to the object is a use of the plug-in's library as well, so the library cannot be unloaded
/// while one of its objects lives; and each object holds a reference to the plug-in manager.
///
/// For the author of a plug-in:
/// - "createInstance" returns a new object, converted to `Core::Plugin*` before it becomes `void*`. Its first
///   reference, and the first use of the library, belong to the caller.
/// - An object that a factory makes and does not return is deleted, never decref()ed: its uses are counted
///   only once it has been handed out.
/// - Code of a plug-in never drops the last reference to one of its own objects: the library would go from
///   under it. A thread of the plug-in is joined by a destructor.
/// - Nothing of a plug-in outlives it: no static or thread-local object, no exception type, no callback left
///   behind.
///
/// For the host: a `SmartPtr` made by `adopt()` from the factory's result holds everything in place. An object
/// whose identifier is not registered, such as one made without a factory while a manager lives, is not for a
/// `SmartPtr`: incref() and decref() throw, and decref() does so from a destructor.
/// Weak references to plug-in objects are forbidden: they would count the object without its library.
///
/// Counting is safe; whatever else a derived class does, it says itself.
class ZENTARA_API Plugin : public Utils::Refcounted {
protected:
    /// Takes a reference to the plug-in manager; the first object of a process starts the scan. Without a
    /// living manager the object counts its own references only.
    /// \throws Zentara::Plugin::InitializationPluginException as PluginManager::instance() does.
    Plugin(ImplType type, GUID guid);

    /// Adds a use of the library, then a reference to the object.
    /// \throws Zentara::Plugin::InitializationPluginException "couldn't find GUID NAME" when no such plug-in is
    /// registered; nothing was counted then.
    void incref() override;

    /// Drops a reference to the object, with the last of which it is destroyed, then the use of the library,
    /// with the last of which it is unloaded, all with the manager held alive.
    /// \throws Zentara::Plugin::InitializationPluginException as incref(); the reference is dropped all the same.
    void decref() override;

    /// A plug-in object is counted together with its library, which these two would forget.
    bool tryIncref() = delete;
    bool decrefIfLastRef() = delete;

public:
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;
    ~Plugin() override;

    [[nodiscard]] GUID getGUID() const noexcept;

protected:
    /// The library that holds this object's code, null without a manager; lent for the life of the object.
    /// \throws Zentara::Plugin::InitializationPluginException "couldn't find GUID NAME" when no such plug-in is
    /// registered.
    [[nodiscard]] virtual SharedLibrary* getSharedLibrary() const;

private:
    struct Impl;

    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Core
