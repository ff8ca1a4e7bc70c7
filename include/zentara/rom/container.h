#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/container_section_type.h>

namespace Zentara::ROM {

class ContainerHeader;
class MemoryManager;
class Section;

/// Numbered sections in the blocks of a memory manager: the first block holds the container header, every
/// further block one section. Sections are kept in memory as loaded; reading one does not touch the flash.
///
/// Life: initialize(), then any number of operations, then dispose(). Separate.
/// Exceptions of the manager pass through; a failed operation leaves the sections in memory as the last
/// verified write left them. So does lack of memory, which throws `std::bad_alloc`.
class ZENTARA_API Container {
public:
    static constexpr std::uint8_t HEADER_VERSION = 1;
    static constexpr std::uint8_t HEADER_MIN_READOUT_VERSION = 1;

    /// \param manager  not owned; must outlive this object.
    explicit Container(MemoryManager* manager);
    Container(const Container&) = delete;
    Container& operator=(const Container&) = delete;
    virtual ~Container();

    /// Forgets what was loaded, initializes the manager and loads header and sections. Blocks that hold no
    /// section are skipped; of two with the same uid the later in the chain counts. Where a read throws,
    /// or memory runs out, nothing is loaded.
    virtual void initialize();
    /// Forgets header and sections. The manager is left as it is.
    virtual void dispose();
    /// Of the sections in memory, ascending.
    virtual std::vector<std::uint16_t> getSectionUIDs();
    /// A copy of the section's data.
    /// \throws ArgumentPluginException for an unknown uid.
    virtual std::vector<std::uint8_t> get(std::uint16_t uid);
    /// \throws ArgumentPluginException for an unknown uid.
    virtual ContainerSectionType getType(std::uint16_t uid);

    /// Creates or replaces a section; a replacement that fits its old block is written at the same address.
    /// \param uid    1 or more.
    /// \param flags  stored as given: bit 0 set leaves the section writable, clear makes it read-only for
    ///               good.
    /// \throws ArgumentPluginException for uid 0 and for more data than the format can count.
    /// \throws InvalidOperationPluginException if there is no version 1 container.
    /// \throws UnauthorizedAccessPluginException if the section there is read-only.
    /// \throws IOPluginException "failed to allocate space on the device" when nothing fits. A section that
    ///         was to be replaced was erased before and is gone then, which the log tells; likewise if the new
    ///         block's write fails.
    virtual void set(std::uint16_t uid, ContainerSectionType type, std::uint8_t flags,
                     const std::vector<std::uint8_t>& data);

    /// Takes the section out of the chain; its bytes stay on flash.
    /// \throws ArgumentPluginException for an unknown uid.
    /// \throws UnauthorizedAccessPluginException if the section is read-only.
    /// \throws InvalidOperationPluginException if the container is not version 1.
    virtual void erase(std::uint16_t uid);

    /// Makes an empty container where there is none, and erases every section, read-only ones too, where
    /// there is one of another version. A version 1 container is left as it is.
    ///
    /// Blocks that the memory has already stay. If the first of them is no container header, the new header
    /// goes where there is room and is found by the next initialize() only if it became the first block: to
    /// be sure, format the memory itself before.
    /// \throws IOPluginException "failed to allocate space on the device".
    virtual void initializeRom();
    /// Whether a header and its blocks are loaded.
    virtual bool romInitialized();
    /// Whether set() and erase() may touch it. \throws ArgumentPluginException for an unknown uid.
    virtual bool sectionIsWritable(std::uint16_t uid);
    /// Lent until the next change; null while not initialized.
    virtual const ContainerHeader* getContainerHeader();
    /// Lent until the section changes; null for an unknown uid.
    virtual const Section* getSection(std::uint16_t uid);

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::ROM
