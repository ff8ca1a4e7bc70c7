#pragma once

#include <string>

#include <zentara/core/plugin_manager.h>
#include <zentara/guid.h>
#include <zentara/utils/smart_ptr.h>

#include "core/fixtures/test_object.h"
#include "support/scoped_variable.h"

/// An install root of its own for one test, empty at first, in use as long as it lives.
class TestRoot {
public:
    explicit TestRoot(const std::string& name);
    ~TestRoot();
    TestRoot(const TestRoot&) = delete;
    TestRoot& operator=(const TestRoot&) = delete;

    /// Puts a copy of a built plug-in there and returns its path. `name` is without the ending, and that of the
    /// plug-in by default.
    std::string add(const std::string& plugin, const std::string& name = std::string()) const;

    /// Puts a file with these bytes there, named like a plug-in.
    std::string addBytes(const std::string& name, const std::string& bytes) const;

    void remove(const std::string& name) const;
    void removeDirectory() const;

    [[nodiscard]] std::string pluginDirectory() const { return root + "bin/Plugins/"; }
    [[nodiscard]] std::string path(const std::string& name) const;

private:
    std::string root;
    Zentara::TestSupport::ScopedVariable variable;
};

/// The bytes of a built plug-in.
std::string pluginBytes(const std::string& plugin);

/// The identity of the fixture with this number.
GUID fixtureGuid(unsigned long id);

/// A reference to the plug-in manager, held for one scope.
class ManagerHold {
public:
    ManagerHold() : manager(Zentara::Core::PluginManager::instance()) {}
    ~ManagerHold() { release(); }
    ManagerHold(const ManagerHold&) = delete;
    ManagerHold& operator=(const ManagerHold&) = delete;

    Zentara::Core::PluginManager* operator->() const { return manager; }

    /// An object of a fixture of kind 5.
    [[nodiscard]] Zentara::Utils::SmartPtr<TestObject> create(GUID guid) const;

    void release() {
        if (manager)
            manager->release();
        manager = nullptr;
    }

private:
    Zentara::Core::PluginManager* manager;
};
