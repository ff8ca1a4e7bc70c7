#include <zentara/core/audio_node_interface.h>
#include <zentara/core/color_node_interface.h>
#include <zentara/core/depth_node_interface.h>
#include <zentara/core/descriptor_store_interface.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/core/periodic_operation.h>
#include <zentara/depth_base_configuration.h>
#include <zentara/io/base_rom_layout.h>
#include <zentara/io/library_parameter_interpreter.h>
#include <zentara/parameter_range.h>

#include "support/virtual_slots.h"

namespace Testing {
namespace {

using namespace Zentara;
using namespace Zentara::Core;
using namespace Zentara::IO;

// In all but the store's view and the ROM layout, slots 0 to 4 belong to counting, the destructor's two entries
// and getSharedLibrary.

TEST(NodeSlots, DescriptorStoreRO) {
    using Store = DescriptorStoreRO;
    const std::vector<int> slots = {
        virtualSlot(&Store::selectNode),
        virtualSlot(&Store::getNodeType),
        virtualSlot(&Store::getNodeImplGUID),
        virtualSlot(&Store::getDeviceImplGUID),
        virtualSlot(&Store::getNodeName),
        virtualSlot(&Store::getDeviceName),
        virtualSlot(&Store::getNodeHardwareIDs),
        virtualSlot(&Store::getDeviceHardwareIDs),
        virtualSlot(&Store::getPreCommonSettings),
        virtualSlot(&Store::getSpecificSettings),
        virtualSlot(&Store::getPostCommonSettings),
        virtualSlot(&Store::getStopCommonSettings),
        virtualSlot(&Store::getDepthCapabilities),
        virtualSlot(&Store::getDepthFlags),
        virtualSlot(&Store::getFourCC),
        virtualSlot(&Store::getColorFlags),
        virtualSlot(&Store::getCameraControlsFlags),
        virtualSlot(&Store::getDeviceFlags),
        virtualSlot(&Store::getDeviceCapabilities),
        virtualSlot(&Store::getROMElement),
        virtualSlot(&Store::getValue),
        virtualSlot(&Store::getDeviceDescriptor),
        virtualSlot(&Store::getNodeDescriptor),
        virtualSlot(&Store::getCyclicErrorRecord),
        virtualSlot(&Store::getTemperatureCalibration),
        virtualSlot(&Store::getTemperatureCompensation),
        virtualSlot(&Store::getDepthConfigurations),
        virtualSlot(&Store::getColorConfigurations),
        virtualSlot(&Store::getAudioConfigurations),
        virtualSlot(&Store::getParameterInterpreterGUID),
        virtualSlot(&Store::getParameters),
        virtualSlot(&Store::getHardwareVersion),
        virtualSlot(&Store::getDefaultRegionOfInterest),
        virtualSlot(&Store::getVendorName),
        virtualSlot(&Store::getProductName),
        virtualSlot(&Store::getNodeIndex),
    };
    for (std::size_t i = 0; i < slots.size(); ++i)
        EXPECT_EQ(slots[i], static_cast<int>(i) + 2) << "operation " << i;
    EXPECT_EQ(virtualSlotCount<Store>(), 38);
    // Not virtual.
    EXPECT_EQ(virtualSlot(&Store::setProfile), -1);
    EXPECT_EQ(virtualSlot(&Store::setConfigurationSettings), -1);
    EXPECT_EQ(virtualSlot(&Store::getDefaultExtrinsics), -1);
}

TEST(NodeSlots, DescriptorStoreInterface) {
    expectSlots("DescriptorStoreInterface",
                {{"getDescriptorStore", virtualSlot(&DescriptorStoreInterface::getDescriptorStore), 5},
                 {"selectNodeDescriptor", virtualSlot(&DescriptorStoreInterface::selectNodeDescriptor), 6},
                 {"initialize", virtualSlot(&DescriptorStoreInterface::initialize), 7},
                 {"dispose", virtualSlot(&DescriptorStoreInterface::dispose), 8},
                 {"(count)", virtualSlotCount<DescriptorStoreInterface>(), 9}});
}

TEST(NodeSlots, AudioNodeInterface) {
    using Node = AudioNodeInterface;
    expectSlots("AudioNodeInterface",
                {{"initialize", virtualSlot(&Node::initialize), 5},
                 {"dispose", virtualSlot(&Node::dispose), 6},
                 {"enableStreaming", virtualSlot(&Node::enableStreaming), 7},
                 {"disableStreaming", virtualSlot(&Node::disableStreaming), 8},
                 {"resetDevice", virtualSlot(&Node::resetDevice), 9},
                 {"getConfigurations", virtualSlot(&Node::getConfigurations), 10},
                 {"getDefaultConfiguration", virtualSlot(&Node::getDefaultConfiguration), 11},
                 {"readBuffer", virtualSlot(&Node::readBuffer), 12},
                 {"setInputMixerLevel", virtualSlot(&Node::setInputMixerLevel), -1},
                 {"setMute", virtualSlot(&Node::setMute), -1},
                 {"(count)", virtualSlotCount<Node>(), 13}});
}

TEST(NodeSlots, ColorNodeInterface) {
    using Node = ColorNodeInterface;
    expectSlots("ColorNodeInterface",
                {{"initialize", virtualSlot(&Node::initialize), 5},
                 {"dispose", virtualSlot(&Node::dispose), 6},
                 {"enableStreaming", virtualSlot(&Node::enableStreaming), 7},
                 {"disableStreaming", virtualSlot(&Node::disableStreaming), 8},
                 {"resetDevice", virtualSlot(&Node::resetDevice), 9},
                 {"getConfigurations", virtualSlot(&Node::getConfigurations), 10},
                 {"getCameraControlRanges", virtualSlot(&Node::getCameraControlRanges), 11},
                 {"setCameraControl", virtualSlot(&Node::setCameraControl), 12},
                 {"getCameraControls", virtualSlot(&Node::getCameraControls), 13},
                 {"readBuffer", virtualSlot(&Node::readBuffer), 14},
                 {"(count)", virtualSlotCount<Node>(), 15}});
}

TEST(NodeSlots, DepthNodeInterface) {
    using Node = DepthNodeInterface;
    using CalibrationOfMode = SensorValueArray (Node::*)(DepthNode::CameraMode);
    using Calibration = TemperatureCalibration (Node::*)();
    const std::vector<int> slots = {
        virtualSlot(&Node::initialize),
        virtualSlot(&Node::dispose),
        virtualSlot(&Node::getVersions),
        virtualSlot(&Node::configurePeriodicOperations),
        virtualSlot(&Node::enableStreaming),
        virtualSlot(&Node::disableStreaming),
        virtualSlot(&Node::resetDevice),
        virtualSlot(&Node::setIlluminationLevel),
        virtualSlot(&Node::setConfiguration),
        virtualSlot(&Node::setCalibration),
        virtualSlot(&Node::getMaximumRawBytesPerPixel),
        virtualSlot(&Node::getPhaseScaling),
        virtualSlot(&Node::process),
        virtualSlot(&Node::setDiagnosticData),
        virtualSlot(&Node::readTemperatures),
        virtualSlot(&Node::readAccelerometer),
        virtualSlot(&Node::readTemperature),
        virtualSlot(&Node::getRange),
        virtualSlot(&Node::getDVPFrameMode),
        virtualSlot(&Node::getImageRegistrationCalibration),
        virtualSlot(static_cast<CalibrationOfMode>(&Node::getTemperatureCalibration)),
        virtualSlot(static_cast<Calibration>(&Node::getTemperatureCalibration)),
        virtualSlot(&Node::getTemperatureCompensation),
        virtualSlot(&Node::getCyclicErrorCorrection),
        virtualSlot(&Node::getDiagnosticData),
        virtualSlot(&Node::getSerialNumber),
        virtualSlot(&Node::getAccelerometerCalibration),
        virtualSlot(&Node::reloadROMLayout),
        virtualSlot(&Node::setEnableVideoSync),
        virtualSlot(&Node::getEnableVideoSync),
        virtualSlot(&Node::getConfigurations),
        virtualSlot(&Node::readBuffer),
        virtualSlotCount<Node>(),
    };
    for (std::size_t i = 0; i < slots.size(); ++i)
        EXPECT_EQ(slots[i], static_cast<int>(i) + 5) << "operation " << i;
}

TEST(NodeSlots, ParameterInterpreter) {
    using P = ParameterInterpreter;
    const std::vector<int> slots = {
        virtualSlot(&P::initialize),
        virtualSlot(&P::dispose),
        virtualSlot(&P::getUnitType),
        virtualSlot(&P::getAccessMode),
        virtualSlot(static_cast<void (P::*)(ParameterType, bool)>(&P::write)),
        virtualSlot(static_cast<void (P::*)(ParameterType, int)>(&P::write)),
        virtualSlot(static_cast<void (P::*)(ParameterType, float)>(&P::write)),
        virtualSlot(static_cast<void (P::*)(const ParameterRequestMap&)>(&P::write)),
        virtualSlot(static_cast<void (P::*)(ParameterType, bool*)>(&P::read)),
        virtualSlot(static_cast<void (P::*)(ParameterType, int*)>(&P::read)),
        virtualSlot(static_cast<void (P::*)(ParameterType, float*)>(&P::read)),
        virtualSlot(static_cast<void (P::*)(ParameterRequestMap&)>(&P::read)),
        virtualSlot(&P::setRegionOfInterest),
        virtualSlot(&P::getRegionOfInterest),
        virtualSlot(&P::getRange),
        virtualSlot(&P::getParameterRange),
        virtualSlot(&P::getRawOutputMode),
        virtualSlot(&P::writeCalibration),
        virtualSlot(&P::readCalibration),
        virtualSlot(&P::getPhaseScaling),
        virtualSlotCount<P>(),
    };
    for (std::size_t i = 0; i < slots.size(); ++i)
        EXPECT_EQ(slots[i], static_cast<int>(i) + 5) << "operation " << i;
}

TEST(NodeSlots, ValueTypes) {
    expectSlots(
        "ParameterRangeBaseInternal",
        {{"marshal", virtualSlot(&ParameterRangeBaseInternal::marshal), 4},
         {"getMin", virtualSlot(&ParameterRangeInternal<float>::getMin), 5},
         {"getMax", virtualSlot(&ParameterRangeInternal<float>::getMax), 6},
         {"getStep", virtualSlot(&ParameterRangeInternal<float>::getStep), 7},
         {"getSupportedValues", virtualSlot(&ParameterDiscreteSetInternal<int>::getSupportedValues), 5}});
    expectSlots("DepthBaseConfiguration", {{"isEqual", virtualSlot(&DepthBaseConfiguration::isEqual), 4}});
    expectSlots("BaseROMLayout", {{"setDiagnosticData", virtualSlot(&BaseROMLayout::setDiagnosticData), 2}});
}

} // namespace
} // namespace Testing
