// A plug-in whose factory does not make the device that it should: null, or another object.
#include <zentara/core/plugin.h>

#include "io/device_script.h"
#include "support/plain_versions.h"

namespace {

constexpr GUID identity = Testing::BROKEN_DEVICE;

void report(int change) {
    if (auto* const script = Testing::DeviceScript::find())
        script->loaded(change);
}

struct Presence {
    Presence() { report(1); }
    ~Presence() { report(-1); }
} presence;

class OtherObject : public Zentara::Core::Plugin {
public:
    explicit OtherObject(GUID guid = identity) : Plugin(Zentara::Core::ImplType_VIDEO_DEVICE, guid) {
        Testing::DeviceScript::current().created();
    }
    ~OtherObject() override { Testing::DeviceScript::current().destroyed(); }
};

/// Says that it belongs to another plug-in.
class MisnamedObject : public OtherObject {
public:
    MisnamedObject() : OtherObject(Testing::NULL_DEVICE) {}
};

} // namespace

ZENTARA_PLUGIN_EXPORT GUID getImplGUID() { return identity; }
ZENTARA_PLUGIN_EXPORT std::int32_t getImplType() { return Zentara::Core::ImplType_VIDEO_DEVICE; }
ZENTARA_PLUGIN_EXPORT void* createInstance() { return static_cast<Zentara::Core::Plugin*>(BROKEN_RESULT); }
