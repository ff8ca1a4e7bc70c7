#include <zentara/core/plugin_exports.h>

#include <cstring>

// A plug-in of which the benchmark makes a thousand: it finds these sixteen bytes in the file and gives each copy a
// GUID of its own. Volatile, so that they are read from here and stand nowhere else.
static const volatile unsigned char identity[16] = {'s', 'c', 'a', 'n', '-', 'b', 'e', 'n',
                                                    'c', 'h', '-', 'm', 'a', 'r', 'k', '!'};

static GUID ownGuid() {
    GUID guid;
    unsigned char bytes[sizeof guid];
    for (std::size_t i = 0; i < sizeof bytes; ++i)
        bytes[i] = identity[i];
    std::memcpy(&guid, bytes, sizeof guid);
    return guid;
}

class Nothing : public Zentara::Core::Plugin {
public:
    Nothing() : Plugin(Zentara::Core::ImplType_VIDEO_DEVICE, ownGuid()) {}
};

ZENTARA_DEFINE_PLUGIN(Nothing, ownGuid(), Zentara::Core::ImplType_VIDEO_DEVICE, 0, 0, 0)
