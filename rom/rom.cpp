#include <zentara/rom/rom.h>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/rom/container.h>
#include <zentara/rom/object.h>
#include <zentara/utils/mutex.h>

namespace Zentara::ROM {

using Utils::Threading::AutoLock;

struct ROM::Impl {
    Container* const container;    ///< not owned; may be null
    Utils::Threading::Mutex mutex; ///< around every call of it

    explicit Impl(Container* sections) : container(sections) {}

    Container& defined() const {
        if (!container)
            throw Plugin::InvalidOperationPluginException("Container is not defined");
        return *container;
    }
};

ROM::ROM(Container* container) : impl(std::make_unique<Impl>(container)) {}
ROM::~ROM() = default;

void ROM::initialize() {
    AutoLock lock(impl->mutex);
    if (impl->container)
        impl->container->initialize();
}

void ROM::dispose() {
    AutoLock lock(impl->mutex);
    if (impl->container)
        impl->container->dispose();
}

bool ROM::romInitialized() {
    AutoLock lock(impl->mutex);
    return impl->container && impl->container->romInitialized();
}

std::vector<std::uint16_t> ROM::getUIDs() {
    AutoLock lock(impl->mutex);
    return impl->defined().getSectionUIDs();
}

Object* ROM::get(std::uint16_t uid) {
    // Under the lock, so that data and type are of one and the same section.
    AutoLock lock(impl->mutex);
    const std::vector<std::uint8_t> data = impl->defined().get(uid);
    return Object::deserialize(impl->defined().getType(uid), data);
}

void ROM::set(std::uint16_t uid, const Object* object, std::uint8_t flags) {
    AutoLock lock(impl->mutex);
    if (!object)
        throw Plugin::ArgumentPluginException("cannot set - invalid object");
    impl->defined().set(uid, object->getType(), flags, object->serialize());
}

void ROM::erase(std::uint16_t uid) {
    AutoLock lock(impl->mutex);
    impl->defined().erase(uid);
}

bool ROM::sectionIsWritable(std::uint16_t uid) {
    AutoLock lock(impl->mutex);
    return impl->defined().sectionIsWritable(uid);
}

void ROM::initializeRom() {
    AutoLock lock(impl->mutex);
    impl->defined().initializeRom();
}

} // namespace Zentara::ROM
