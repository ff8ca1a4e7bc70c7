#pragma once

#include <memory>
#include <new>
#include <string>
#include <vector>

#include <zentara/core/descriptor_store_interface.h>
#include <zentara/host/failure.h>
#include <zentara/host/note.h>
#include <zentara/node_event.h>
#include <zentara/utils/smart_ptr.h>

#include "host/attempt.h"
#include "host/cameras/held_manager.h"
#include "host/tell.h"
#include "utils/visible_text.h"

namespace Zentara::Host {

/// Makes an object of a plug-in. \throws Failure
template<typename Interface>
[[nodiscard]] Utils::SmartPtr<Interface> makePlugin(GUID guid);

class JoinedDescriptions;

/// The descriptor stores that are registered, each with its descriptions read; all are asked. A store describes one
/// node at a time, so everyone who uses them has his own.
class CameraStore final {
public:
    /// A store that fails is left out while there are others.
    /// \param leftOut is told of each such store; null for nobody
    /// \throws Failure when there is no store plug-in, or all fail.
    explicit CameraStore(const Note* leftOut = nullptr);
    ~CameraStore();
    CameraStore(const CameraStore&) = delete;
    CameraStore& operator=(const CameraStore&) = delete;

    /// \throws Failure when no description has the node.
    void select(const NodeEvent& node);
    /// Of the store that has the node which was selected last.
    [[nodiscard]] Core::DescriptorStoreRO& view() const;
    /// All of them as one, for whoever selects himself.
    [[nodiscard]] Core::DescriptorStoreRO& all() const;

private:
    std::vector<Utils::SmartPtr<Core::DescriptorStoreInterface>> stores;
    std::size_t selected = 0;
    std::unique_ptr<JoinedDescriptions> joined;
};

/// What goes wrong while something is let go is logged: it keeps nobody from going on.
template<typename Work>
void closeQuietly(const char* what, const std::string& name, Work work) noexcept {
    try {
        attempt(std::string("close ") + what + name, work);
    } catch (const Failure& failure) {
        tell({}, Utils::visibleText(failure.what()));
    } catch (const std::bad_alloc&) { // there is none for the text either
    }
}

/// Tells that a plug-in is left out, and why; the cause is the plug-in's text, and may be of any length.
void tellLeftOut(const Note& note, const Failure& failure);

/// What to call a camera in a message: the name of its first node and its serial number.
[[nodiscard]] std::string cameraLabel(const NodeEvent& node);

template<typename Interface>
Utils::SmartPtr<Interface> makePlugin(GUID guid) {
    const HeldManager manager;
    const auto plugin = Utils::SmartPtr<Core::Plugin>::adopt(
        static_cast<Core::Plugin*>(manager->createInstance(guid, Interface::getImplType())));
    const Utils::SmartPtr<Interface> made(dynamic_cast<Interface*>(plugin.get()));
    if (!made)
        throw Failure(Failure::NoPlugin, "the plug-in made no object of its kind");
    return made;
}

} // namespace Zentara::Host
