#include "host/cameras/camera_store.h"

#include <optional>

#include <zentara/utils/log_area.h>

#include "host/attempt.h"
#include "host/cameras/device_choice.h"
#include "host/cameras/joined_descriptions.h"
#include "host/cameras/stream_description.h"
#include "host/guid_text.h"
#include "utils/visible_text.h"

namespace Zentara::Host {

void tellLeftOut(const Note& note, const Failure& failure) {
    tell(note,
         failure.message() + "; it is left out" + (failure.cause().empty() ? "" : ": ") + failure.cause());
}

CameraStore::CameraStore(const Note* leftOut) {
    const Utils::LogAreaScope scope(Utils::LogArea_PLUGINS);
    std::optional<Failure> first;
    for (const GUID& guid : registeredPlugins(Core::ImplType_DESCRIPTOR_STORE, "descriptor store")) {
        Utils::SmartPtr<Core::DescriptorStoreInterface> store; // outlives what its library throws
        try {
            attempt("read the descriptions of cameras through " + guidLabel(guid), [&] {
                store = makePlugin<Core::DescriptorStoreInterface>(guid);
                store->initialize();
                if (store->getDescriptorStore() == nullptr)
                    throw Failure(Failure::Failed, "the store " + guidLabel(guid) + " has no descriptions");
                stores.push_back(store);
            });
        } catch (const LackOfMemory&) {
            throw;
        } catch (const Failure& failure) {
            if (!first)
                first.emplace(failure);
            if (leftOut != nullptr)
                tellLeftOut(*leftOut, failure);
        }
    }
    // registeredPlugins() has thrown if there was no plug-in at all, so that somebody has failed here.
    if (stores.empty())
        throw Failure(*first);
    std::vector<Core::DescriptorStoreRO*> views;
    for (const auto& store : stores)
        views.push_back(store->getDescriptorStore());
    joined = std::make_unique<JoinedDescriptions>(std::move(views));
}

CameraStore::~CameraStore() {
    const Utils::LogAreaScope scope(Utils::LogArea_PLUGINS);
    for (const auto& store : stores)
        closeQuietly("a descriptor store", {}, [&] { store->dispose(); });
    const PartingStep watched([] { return "close the descriptor stores"; });
    stores.clear();
}

void CameraStore::select(const NodeEvent& node) {
    const Utils::LogAreaScope scope(Utils::LogArea_PLUGINS);
    attempt("find the description of " + cameraLabel(node), [&] {
        for (std::size_t index = 0; index < stores.size(); ++index) {
            if (stores[index]->selectNodeDescriptor(node.hardwareIds(), node.profile)) {
                selected = index;
                return;
            }
        }
        throw Failure(Failure::Failed, "no camera description belongs to " + cameraLabel(node));
    });
}

Core::DescriptorStoreRO& CameraStore::view() const { return *stores[selected]->getDescriptorStore(); }

Core::DescriptorStoreRO& CameraStore::all() const { return *joined; }

std::string cameraLabel(const NodeEvent& node) {
    const std::string name = node.name.empty() ? nodeTypeName(node.nodeType) : node.name;
    return Utils::visibleText(node.serialNumber.empty() ? name : name + " " + node.serialNumber);
}

} // namespace Zentara::Host
