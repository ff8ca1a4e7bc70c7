#include <zentara/rom/gradient_distortion_correction_store.h>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/rom/container.h>
#include <zentara/rom/gradient_distortion_correction_accessor.h>
#include <zentara/rom/object.h>
#include <zentara/utils/mutex.h>

namespace Zentara::ROM {

using Utils::Threading::AutoLock;

struct GradientDistortionCorrectionStore::Impl {
    GradientDistortionCorrectionAccessor* const accessor; ///< not owned; may be null
    Container* const container;                           ///< not owned; may be null
    Utils::Threading::Mutex mutex;                        ///< around every call of the two
    bool initialized ZENTARA_GUARDED_BY(mutex) = false;   ///< initialize() was called; never false again

    Impl(Container* sections, GradientDistortionCorrectionAccessor* file)
        : accessor(file), container(sections) {}

    Container& defined() const {
        if (!container)
            throw Plugin::InvalidOperationPluginException("Container is not defined");
        return *container;
    }
};

GradientDistortionCorrectionStore::GradientDistortionCorrectionStore(Container* container)
    : GradientDistortionCorrectionStore(container, nullptr) {}
GradientDistortionCorrectionStore::GradientDistortionCorrectionStore(
    Container* container, GradientDistortionCorrectionAccessor* accessor)
    : impl(std::make_unique<Impl>(container, accessor)) {}
GradientDistortionCorrectionStore::~GradientDistortionCorrectionStore() = default;

void GradientDistortionCorrectionStore::initialize() {
    AutoLock lock(impl->mutex);
    if (impl->container)
        impl->container->initialize();
    impl->initialized = true;
}

void GradientDistortionCorrectionStore::initializeRom() {
    AutoLock lock(impl->mutex);
    impl->defined().initializeRom();
}

void GradientDistortionCorrectionStore::dispose() {
    AutoLock lock(impl->mutex);
    // The flag stays: it says that initialize() was called once, not that anything is loaded.
    if (impl->container)
        impl->container->dispose();
}

bool GradientDistortionCorrectionStore::isInitialized() {
    AutoLock lock(impl->mutex);
    return impl->initialized;
}

std::vector<std::uint16_t> GradientDistortionCorrectionStore::getUIDs() {
    AutoLock lock(impl->mutex);
    return impl->defined().getSectionUIDs();
}

Object* GradientDistortionCorrectionStore::get(std::uint16_t uid) {
    AutoLock lock(impl->mutex);
    Container& container = impl->defined();
    if (uid != UID)
        throw Plugin::ArgumentPluginException("Passed parameter is not a gradient distortion correction id");
    const std::vector<std::uint8_t> data = container.get(uid);
    return Object::deserialize(container.getType(uid), data);
}

void GradientDistortionCorrectionStore::read(const std::string& fileName) {
    AutoLock lock(impl->mutex);
    impl->defined();
    if (!impl->accessor)
        throw Plugin::InvalidOperationPluginException("Accessor is not defined");
    impl->accessor->read(fileName);
}

bool GradientDistortionCorrectionStore::sectionIsWritable(std::uint16_t uid) {
    AutoLock lock(impl->mutex);
    return impl->defined().sectionIsWritable(uid);
}

void GradientDistortionCorrectionStore::set(std::uint16_t uid, const Object* object, std::uint8_t flags) {
    AutoLock lock(impl->mutex);
    if (!object)
        throw Plugin::ArgumentPluginException("cannot set - invalid object");
    impl->defined().set(uid, object->getType(), flags, object->serialize());
}

} // namespace Zentara::ROM
