#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <zentara/export.h>

namespace Zentara::ROM {

class Container;
class GradientDistortionCorrectionAccessor;
class Object;

/// The correction object of a correction file, which is an image in the format of the camera's storage. To
/// open one: an accessor with the file's name, a ChunkedMemoryManager over it with the area that the file was
/// written with, a Container, then this; then initialize() and get(5).
///
/// The layers beneath are not owned, must outlive this object and are reached only through it. Safe: one
/// mutex serialises all operations. Without a container every operation but initialize(), dispose() and
/// isInitialized() throws InvalidOperationPluginException "Container is not defined".
class ZENTARA_API GradientDistortionCorrectionStore {
public:
    /// The section that holds the correction.
    static constexpr std::uint16_t UID = 5;

    /// Without an accessor read() is not available.
    explicit GradientDistortionCorrectionStore(Container* container);
    GradientDistortionCorrectionStore(Container* container, GradientDistortionCorrectionAccessor* accessor);
    GradientDistortionCorrectionStore(const GradientDistortionCorrectionStore&) = delete;
    GradientDistortionCorrectionStore& operator=(const GradientDistortionCorrectionStore&) = delete;
    virtual ~GradientDistortionCorrectionStore();

    /// Loads the image's content. Afterwards isInitialized() is true for good, with or without a container.
    virtual void initialize();
    /// As Container::initializeRom().
    virtual void initializeRom();
    /// Forgets the loaded content. isInitialized() stays as it was.
    virtual void dispose();
    virtual bool isInitialized();
    /// Ascending.
    virtual std::vector<std::uint16_t> getUIDs();
    /// A new object owned by the caller; null if the section's type is unknown.
    /// \throws ArgumentPluginException "Passed parameter is not a gradient distortion correction id" for any
    ///         uid but 5, and if there is no such section.
    virtual Object* get(std::uint16_t uid);
    /// Loads another file as the image; call initialize() afterwards.
    /// \throws InvalidOperationPluginException "Accessor is not defined".
    /// \throws IOPluginException as GradientDistortionCorrectionAccessor::read().
    virtual void read(const std::string& fileName);
    /// \throws ArgumentPluginException for an unknown uid.
    virtual bool sectionIsWritable(std::uint16_t uid);
    /// As ROM::set(), under any uid. What is set stays in memory: nothing is written back to the file.
    virtual void set(std::uint16_t uid, const Object* object, std::uint8_t flags);

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::ROM
