#include <zentara/core/plugin_exports.h>
#include <zentara/io/enumerator_interface.h>
#include <zentara/utils/signal.h>

namespace {

// Every plug-in has a GUID of its own: make a new one for yours.
constexpr GUID guid = {0x6D0E5C17, 0x3F42, 0x4B8A, {0x9C, 0x51, 0x2A, 0x77, 0xE0, 0x14, 0x8B, 0xD3}};

/// An enumerator for a bus that nothing is plugged into.
class MinimalEnumerator final : public Zentara::IO::EnumeratorInterface {
public:
    MinimalEnumerator() : EnumeratorInterface(guid) {}

    /// The thread runs code of this class, so it is joined here and not in a base.
    ~MinimalEnumerator() override { dispose(); }

    void enumerate(std::vector<Zentara::NodeEvent>& nodes) override { nodes.clear(); }
    bool isPresent(const Zentara::NodeEvent&) override { return false; }
    std::string getBackendName() override { return "an empty bus"; }

    void* run(void*) override {
        while (!exitRequested())
            wake.wait();
        return nullptr;
    }

    void exit() override {
        EnumeratorInterface::exit();
        wake.set();
    }

private:
    Zentara::Utils::Threading::Signal wake;
};

} // namespace

// The five exports: GUID, kind, version of this plug-in, version of the SDK it was built with, factory.
ZENTARA_DEFINE_PLUGIN(MinimalEnumerator, guid, Zentara::Core::ImplType_ENUMERATOR, 1, 0, 0)
