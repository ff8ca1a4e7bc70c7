#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <zentara/export.h>

namespace Zentara::ROM {

class Container;
class Object;

/// The camera's on-board storage as typed objects: the public face of a Container.
///
/// Built bottom-up by a device plug-in: an Accessor over the flash, a ChunkedMemoryManager over the area, a
/// Container, then this; then initialize(). The layers beneath are not owned, must outlive this object and
/// are reached only through it. Over an image file:
///
///     FileAccessor flash("camera.bin");
///     ChunkedMemoryManager memory(&flash, 0, 65536, 256, true); // start, size, chunk size, header at start
///     Container container(&memory);
///     ROM rom(&container);
///     rom.initialize();
///
///               initialize(): a formatted storage
///     Empty ---------------------------------------> Loaded
///       ^     initializeRom(), which formats it        |
///       +------------------ dispose() -----------------+
///
/// Safe: one mutex serialises all operations. It is held while the flash is accessed, for as long as the
/// accessor takes; an accessor must not call back into the same object.
class ZENTARA_API ROM {
public:
    /// \param container  may be null: initialize() and dispose() then do nothing, romInitialized() is false,
    ///                   and the rest throws InvalidOperationPluginException "Container is not defined".
    explicit ROM(Container* container);
    ROM(const ROM&) = delete;
    ROM& operator=(const ROM&) = delete;
    virtual ~ROM();

    /// Loads the storage. Nothing is written, and a storage that was never formatted is no error.
    virtual void initialize();
    /// Forgets what was loaded. The layers beneath stay, and can be initialized again.
    virtual void dispose();
    /// Whether there is a formatted storage to read from and write to.
    virtual bool romInitialized();
    /// The numbers of the sections, ascending.
    virtual std::vector<std::uint16_t> getUIDs();
    /// A new object owned by the caller; null if the section's type is unknown.
    /// \throws ArgumentPluginException for an unknown uid.
    virtual Object* get(std::uint16_t uid);
    /// Stores the object, which stays the caller's. Bit 0 of the flags set leaves the section writable.
    /// \throws ArgumentPluginException "cannot set - invalid object" for null; the rest as Container::set().
    virtual void set(std::uint16_t uid, const Object* object, std::uint8_t flags);
    /// As Container::erase().
    virtual void erase(std::uint16_t uid);
    /// \throws ArgumentPluginException for an unknown uid.
    virtual bool sectionIsWritable(std::uint16_t uid);
    /// Formats: as Container::initializeRom().
    virtual void initializeRom();

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::ROM
