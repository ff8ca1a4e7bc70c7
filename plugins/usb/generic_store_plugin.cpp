#include <memory>

#include <zentara/core/descriptor_store_interface.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/core/plugin_exports.h>

#include "plugins/usb/generic_nodes.h"

namespace Zentara::Usb {
namespace {

constexpr GUID genericStoreGuid = {
    0x41E7C3AD, 0x0B96, 0x4D1F, {0xA2, 0x68, 0x57, 0xF0, 0x8E, 0x13, 0xD4, 0x9B}};

/// What is known of a camera that no description names: which plug-ins serve its nodes.
class GenericNode final : public Core::DescriptorStoreRO {
public:
    bool selectNode(const HardwareIDs& wanted, Core::Profile profile) override {
        if (genericType(wanted.interfaceNumber) == NodeType_NONE || profile != Core::Profile_DEFAULT)
            return false;
        ids = wanted;
        setProfile(profile);
        return true;
    }
    [[nodiscard]] NodeType getNodeType() const override { return genericType(ids.interfaceNumber); }
    [[nodiscard]] GUID getNodeImplGUID() const override {
        switch (getNodeType()) {
        case NodeType_DEPTH:
            return genericDepthNodeGuid;
        case NodeType_COLOR:
            return Core::Guids::GENERICCOLOR_IMPL;
        case NodeType_AUDIO:
            return Core::Guids::GENERICAUDIO_IMPL;
        default:
            return Core::Guids::NULL_IMPL;
        }
    }
    [[nodiscard]] GUID getDeviceImplGUID() const override {
        if (getNodeType() == NodeType_NONE)
            return Core::Guids::NULL_IMPL;
        return getNodeType() == NodeType_AUDIO ? Core::Guids::ALSAAUDIO_IMPL : Core::Guids::V4L2VIDEO_IMPL;
    }
    [[nodiscard]] std::string getNodeName() const override { return typeName(getNodeType()); }
    [[nodiscard]] HardwareIDs getNodeHardwareIDs() const override { return ids; }
    [[nodiscard]] const Core::DeviceDescriptor* getDeviceDescriptor() const override { return nullptr; }
    [[nodiscard]] const Core::NodeDescriptor* getNodeDescriptor() const override { return nullptr; }

private:
    HardwareIDs ids;
};

/// The store of the cameras that no description names. Separate.
class GenericStore final : public Core::DescriptorStoreInterface {
public:
    GenericStore() : DescriptorStoreInterface(genericStoreGuid) {}

    [[nodiscard]] Core::DescriptorStoreRO* getDescriptorStore() override { return view.get(); }
    bool selectNodeDescriptor(const HardwareIDs& ids, Core::Profile profile) override {
        return view && view->selectNode(ids, profile);
    }
    void initialize() override { view = std::make_unique<GenericNode>(); }
    void dispose() override { view.reset(); }

private:
    std::unique_ptr<GenericNode> view;
};

} // namespace
} // namespace Zentara::Usb

ZENTARA_DEFINE_PLUGIN(Zentara::Usb::GenericStore, Zentara::Usb::genericStoreGuid,
                      Zentara::Core::ImplType_DESCRIPTOR_STORE, 1, 0, 0)
