#include "core/test_root.h"

#include <filesystem>

#include <zentara/core/plugin_probe.h>
#include <zentara/utils/files.h>

namespace fs = std::filesystem;
using Zentara::Utils::SmartPtr;

namespace {

std::string ending() { return std::string(".") + Zentara::Core::pluginFileExtension(); }

} // namespace

TestRoot::TestRoot(const std::string& name)
    : root(std::string(ZENTARA_TEST_ROOTS) + "/" + name + "/"), variable("ZENTARASDK_ROOT", root) {
    removeDirectory();
    fs::create_directories(pluginDirectory());
}

TestRoot::~TestRoot() { removeDirectory(); }

std::string TestRoot::add(const std::string& plugin, const std::string& name) const {
    return addBytes(name.empty() ? plugin : name, pluginBytes(plugin));
}

std::string TestRoot::addBytes(const std::string& name, const std::string& bytes) const {
    // Never written over: the old file may still be mapped.
    remove(name);
    Zentara::Utils::writeFile(path(name), bytes);
    return path(name);
}

void TestRoot::remove(const std::string& name) const { fs::remove(path(name)); }

void TestRoot::removeDirectory() const {
    std::error_code ignored;
    fs::remove_all(root, ignored);
}

std::string TestRoot::path(const std::string& name) const { return pluginDirectory() + name + ending(); }

std::string pluginBytes(const std::string& plugin) {
    return Zentara::Utils::readFile(std::string(ZENTARA_TEST_PLUGINS) + "/" + plugin + ending());
}

GUID fixtureGuid(unsigned long id) { return GUID{static_cast<decltype(GUID::Data1)>(id), 0, 0, {}}; }

SmartPtr<TestObject> ManagerHold::create(GUID guid) const {
    void* object = manager->createInstance(guid, Zentara::Core::ImplType_VIDEO_DEVICE);
    return SmartPtr<TestObject>::adopt(static_cast<TestObject*>(static_cast<Zentara::Core::Plugin*>(object)));
}
