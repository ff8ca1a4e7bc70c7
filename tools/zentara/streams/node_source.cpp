#include "tools/zentara/streams/node_source.h"

#include <exception>
#include <type_traits>
#include <utility>

#include <zentara/core/audio_node_interface.h>
#include <zentara/core/color_node_interface.h>
#include <zentara/core/depth_node_interface.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/utils/format.h>

#include "host/cameras/open_node.h"

namespace Zentara::Tool {

using Utils::Format;

namespace {

template<typename Node, typename Mode>
class NodeSource final : public StreamSource {
public:
    NodeSource(const NodeEvent& event, const ModeChoice& choice, const Host::Note& note) : node(event, note) {
        attempt("choose a mode of " + label(), [&] { mode = chosenMode(choice); });
        told = {event, StreamMode(*mode)};
    }

    [[nodiscard]] const StreamDescription& description() const override { return told; }
    [[nodiscard]] std::string label() const override { return cameraLabel(node.event()); }

    void start() override {
        attempt(Format("stream % from %") % mode->getName() % label(), [&] { node->enableStreaming(mode); });
    }
    ReadBufferStatus read(void* buffer, int size, std::int64_t* micros, int* length) override {
        // The reader's thread keeps what is thrown until the node may have gone.
        return Zentara::Plugin::callPlugin([&] { return node->readBuffer(buffer, size, micros, length); });
    }
    void stop() override {
        attempt("stop the stream of " + label(), [&] { node->disableStreaming(); });
    }
    void close() override { node.dispose(); }

private:
    Utils::SmartPtr<Mode> chosenMode(const ModeChoice& choice) {
        if constexpr (requires { node->getDefaultConfiguration(); }) {
            if (!choice.names(node.event().nodeType))
                return node->getDefaultConfiguration();
        }
        const auto modes = node->getConfigurations();
        if (modes.empty())
            throw Failure(Failure::Failed, label() + " has no mode to stream in");
        std::vector<StreamDescription> offered;
        for (const auto& one : modes)
            offered.push_back({node.event(), StreamMode(*one)});
        return modes[choice.among(offered, label())];
    }

    OpenNode<Node> node;
    Utils::SmartPtr<Mode> mode;
    StreamDescription told;
};

} // namespace

std::unique_ptr<StreamSource> openNodeStream(const NodeEvent& node, const ModeChoice& choice,
                                             const Host::Note& note) {
    switch (node.nodeType) {
    case NodeType_DEPTH:
        return std::make_unique<NodeSource<Core::DepthNodeInterface, DepthBaseConfiguration>>(node, choice,
                                                                                              note);
    case NodeType_COLOR:
        return std::make_unique<NodeSource<Core::ColorNodeInterface, ColorConfiguration>>(node, choice, note);
    case NodeType_AUDIO:
        return std::make_unique<NodeSource<Core::AudioNodeInterface, AudioConfiguration>>(node, choice, note);
    default:
        throw Failure(Failure::Failed, cameraLabel(node) + " is of a kind that has no stream");
    }
}

} // namespace Zentara::Tool
