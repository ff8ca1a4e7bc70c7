// Any text as what a user writes about cameras: a description, the settings of simulated cameras, the file that says
// which of them are plugged in. The first byte says which. Whatever it is, it is read whole or refused with the place of
// what is wrong.
#include <fstream>
#include <memory>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/environment_variable.h>

#include "input.h"
#include "plugins/descriptions/camera_description.h"
#include "plugins/simulated/settings.h"
#include "plugins/simulated/simulated_bus.h"
#include "support/temporary_directory.h"

namespace Zentara::Fuzz {
namespace {

void readAsDescription(const std::string& text) {
    const Cameras::CameraDescription description = Cameras::readDescription(text, "input");
    require(!description.model.empty() && !description.nodes.empty());
    for (const Cameras::NodeDescription& node : description.nodes) {
        require(!node.profiles.empty() && node.find(node.profiles.front().profile) != nullptr);
        for (const Cameras::ProfileDescription& profile : node.profiles) {
            for (const auto& mode : profile.depthModes)
                require(mode != nullptr);
            for (const auto& mode : profile.colorModes)
                require(mode != nullptr);
        }
    }
}

/// What is plugged in is described, and a file that is wrong changes nothing.
class BusFile {
public:
    BusFile() {
        Utils::EnvironmentVariable("ZENTARASDK_ROOT").setValue(ZENTARA_DESCRIBED_CAMERAS);
        Utils::EnvironmentVariable(Simulated::SimulatedBus::variable).setValue(path.c_str());
        write("{\"format\": 1, \"cameras\": []}");
        bus = std::make_unique<Simulated::SimulatedBus>();
        bus->refresh();
        require(bus->error().empty());
    }

    void read(const std::string& text) {
        write(text);
        const std::size_t before = bus->cameras().size();
        bus->refresh();
        require(bus->error().empty() || bus->cameras().size() == before);
        for (const auto& camera : bus->cameras())
            require(camera.description != nullptr && bus->find(camera.path()) != nullptr);
    }

private:
    void write(const std::string& text) {
        std::ofstream(TestSupport::TemporaryDirectory::fromUtf8(path), std::ios::binary) << text;
    }

    TestSupport::TemporaryDirectory folder;
    const std::string path = folder.path("bus.json");
    std::unique_ptr<Simulated::SimulatedBus> bus;
};

} // namespace
} // namespace Zentara::Fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Zentara;
    Fuzz::Input input(data, size);
    const std::uint8_t what = input.byte();
    const std::string text = input.text(input.size());
    try {
        if (what % 3 == 0) {
            Fuzz::readAsDescription(text);
        } else if (what % 3 == 1) {
            static_cast<void>(Simulated::Settings::parse(text, "input"));
        } else {
            static Fuzz::BusFile bus;
            bus.read(text);
        }
    } catch (const Plugin::ConfigurationPluginException& failure) {
        Fuzz::require(what % 3 == 0 ? failure.message().rfind("input, line ", 0) == 0
                                    : failure.message().find("input") != std::string::npos);
    }
    return 0;
}
