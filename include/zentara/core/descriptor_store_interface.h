#pragma once

#include <zentara/core/impl_type.h>
#include <zentara/core/plugin.h>
#include <zentara/core/profile.h>
#include <zentara/export.h>
#include <zentara/guid.h>
#include <zentara/hardware_ids.h>

namespace Zentara::Core {

class DescriptorStoreRO;

/// What a descriptor-store plug-in implements: it owns the store whose read-only view everyone else is
/// handed. Used in this order: `initialize`, the two questions, `dispose`. Separate.
///
/// The order of the virtual operations is the boundary to stores that are built separately.
class ZENTARA_API DescriptorStoreInterface : public Plugin {
public:
    explicit DescriptorStoreInterface(GUID guid);
    DescriptorStoreInterface(const DescriptorStoreInterface&) = delete;
    DescriptorStoreInterface& operator=(const DescriptorStoreInterface&) = delete;
    ~DescriptorStoreInterface() override;

    /// `ImplType_DESCRIPTOR_STORE`. Safe.
    [[nodiscard]] static ImplType getImplType();

    /// The version of the interface classes: 0.1.0. Null pointers are skipped. Safe.
    static void getPluginVersion(int* major, int* minor, int* patch);

    /// The view. It belongs to the store and lives as long as it, or until `dispose`.
    [[nodiscard]] virtual DescriptorStoreRO* getDescriptorStore() = 0;

    /// Makes the node with these identifiers the one that the view describes.
    /// \return false if there is no such node; the selection stays as it is
    virtual bool selectNodeDescriptor(const HardwareIDs& ids, Profile profile) = 0;

    /// Reads the descriptions; by default there is nothing to read.
    virtual void initialize();

    /// Forgets them.
    virtual void dispose();
};

} // namespace Zentara::Core
