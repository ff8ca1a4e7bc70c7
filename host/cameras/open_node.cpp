#include "host/cameras/open_node.h"

#include <exception>
#include <type_traits>
#include <utility>

#include <zentara/core/audio_node_interface.h>
#include <zentara/core/color_node_interface.h>
#include <zentara/core/depth_node_interface.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/rom_element.h>
#include <zentara/utils/format.h>

#include "host/attempt.h"
#include "host/cameras/calibration_origin.h"
#include "host/guid_text.h"

namespace Zentara::Host {

using Utils::Format;

namespace {

/// Whether the description says where the camera's own calibration lies.
bool hasStorage(const Core::DescriptorStoreRO& store) {
    try {
        static_cast<void>(
            Zentara::Plugin::callPlugin([&] { return store.getROMElement(storageROMElement); }));
        return true;
    } catch (const std::exception&) { // it does not say, or cannot
        return false;
    }
}

} // namespace

template<typename Node>
OpenNode<Node>::OpenNode(const NodeEvent& found, const Note& note) : description(found) {
    ownStore.select(description);
    const GUID guid = Zentara::Plugin::callPlugin([this] { return store().getNodeImplGUID(); });
    attempt(Format("open % through %") % cameraLabel(description) % guidLabel(guid), [&] {
        node = makePlugin<Node>(guid);
        node->initialize(&description, &store(), nullptr);
    });
    if constexpr (std::is_same_v<Node, Core::DepthNodeInterface>) {
        const Sources sources = sourcesOf(*node);
        if (!sources.failure.empty() || hasStorage(store())) // else nothing but the description is expected
            tellOrigin(sources, cameraLabel(description), note);
    }
}

template<typename Node>
OpenNode<Node>::~OpenNode() {
    const PartingStep watched([this] { return "let go of " + cameraLabel(description); });
    try {
        dispose();
    } catch (const std::exception&) {
        // Whoever wants to know calls dispose() himself.
    }
    node.reset();
}

template<typename Node>
void OpenNode<Node>::dispose() {
    if (!node || std::exchange(disposed, true))
        return;
    attempt("close " + cameraLabel(description), [&] { node->dispose(); });
}

template class OpenNode<Core::AudioNodeInterface>;
template class OpenNode<Core::ColorNodeInterface>;
template class OpenNode<Core::DepthNodeInterface>;

} // namespace Zentara::Host
