// The order of the virtual operations, on which plug-ins built separately rely.
#include <zentara/rom/container_header.h>
#include <zentara/rom/gradient_distortion_correction.h>
#include <zentara/rom/gradient_distortion_correction_accessor.h>
#include <zentara/rom/gradient_distortion_correction_store.h>
#include <zentara/rom/rom.h>
#include <zentara/rom/section.h>
#include <zentara/rom/serialized_data_block.h>

#include "rom/rom_fixture.h"
#include "support/virtual_slots.h"

namespace Zentara::TestSupport {
namespace {

using namespace Zentara::ROM;
using Testing::expectSlots;
using Testing::virtualSlot;

// Slots 0 and 1 are the destructor's.

TEST(RomSlots, Flash) {
    using Correction = GradientDistortionCorrectionAccessor;
    expectSlots("Accessor",
                {{"read", virtualSlot(&Accessor::read), 2}, {"write", virtualSlot(&Accessor::write), 3}});
    expectSlots("GradientDistortionCorrectionAccessor",
                {{"read(fileName)",
                  virtualSlot(static_cast<void (Correction::*)(const std::string&)>(&Correction::read)), 4}});
}

TEST(RomSlots, Memory) {
    expectSlots("MemoryManager",
                {{"initialize", virtualSlot(&MemoryManager::initialize), 2},
                 {"dispose", virtualSlot(&MemoryManager::dispose), 3},
                 {"getNext", virtualSlot(&MemoryManager::getNext), 4},
                 {"erase", virtualSlot(&MemoryManager::erase), 5},
                 {"write", virtualSlot(&MemoryManager::write), 6},
                 {"read", virtualSlot(&MemoryManager::read), 7},
                 {"getMaximumUsableSize", virtualSlot(&MemoryManager::getMaximumUsableSize), 8},
                 {"allocate", virtualSlot(&MemoryManager::allocate), 9},
                 {"romInitialized", virtualSlot(&MemoryManager::romInitialized), 10},
                 {"initializeRom", virtualSlot(&MemoryManager::initializeRom), 11}});
    expectSlots("ChunkedMemoryManager",
                {{"getHeader", virtualSlot(&ChunkedMemoryManager::getHeader), 12},
                 {"getBlockMap", virtualSlot(&ChunkedMemoryManager::getBlockMap), 13}});
    using Header = ChunkedMemoryManagementHeader;
    expectSlots("ChunkedMemoryManagementHeader",
                {{"getVersion", virtualSlot(&Header::getVersion), 2},
                 {"getMinReadoutVersion", virtualSlot(&Header::getMinReadoutVersion), 3},
                 {"getAvailableMemorySize", virtualSlot(&Header::getAvailableMemorySize), 4},
                 {"getChunkSize", virtualSlot(&Header::getChunkSize), 5},
                 {"getFirstBlockAddress", virtualSlot(&Header::getFirstBlockAddress), 6}});
    struct Open : MemoryBlockHeader {
        using MemoryBlockHeader::getAllocatedSize;
        using MemoryBlockHeader::getBlockOffset;
        using MemoryBlockHeader::getNextBlockOffset;
        using MemoryBlockHeader::serialize;
        using MemoryBlockHeader::setAllocatedSize;
        using MemoryBlockHeader::setBlockOffset;
        using MemoryBlockHeader::setNextBlockOffset;
    };
    expectSlots("MemoryBlockHeader", {{"serialize", virtualSlot(&Open::serialize), 2},
                                      {"getAllocatedSize", virtualSlot(&Open::getAllocatedSize), 3},
                                      {"getNextBlockOffset", virtualSlot(&Open::getNextBlockOffset), 4},
                                      {"getBlockOffset", virtualSlot(&Open::getBlockOffset), 5},
                                      {"setAllocatedSize", virtualSlot(&Open::setAllocatedSize), 6},
                                      {"setNextBlockOffset", virtualSlot(&Open::setNextBlockOffset), 7},
                                      {"setBlockOffset", virtualSlot(&Open::setBlockOffset), 8}});
}

TEST(RomSlots, Sections) {
    expectSlots("ContainerHeader",
                {{"operator==", virtualSlot(&ContainerHeader::operator==), 2},
                 {"getVersion", virtualSlot(&ContainerHeader::getVersion), 3},
                 {"getMinReadoutVersion", virtualSlot(&ContainerHeader::getMinReadoutVersion), 4}});
    expectSlots("Section", {{"getSectionType", virtualSlot(&Section::getSectionType), 2},
                            {"getUID", virtualSlot(&Section::getUID), 3},
                            {"getFlags", virtualSlot(&Section::getFlags), 4},
                            {"getSerializedData", virtualSlot(&Section::getSerializedData), 5},
                            {"setFlags", virtualSlot(&Section::setFlags), 6}});
    expectSlots("Container", {{"initialize", virtualSlot(&Container::initialize), 2},
                              {"dispose", virtualSlot(&Container::dispose), 3},
                              {"getSectionUIDs", virtualSlot(&Container::getSectionUIDs), 4},
                              {"get", virtualSlot(&Container::get), 5},
                              {"getType", virtualSlot(&Container::getType), 6},
                              {"set", virtualSlot(&Container::set), 7},
                              {"erase", virtualSlot(&Container::erase), 8},
                              {"initializeRom", virtualSlot(&Container::initializeRom), 9},
                              {"romInitialized", virtualSlot(&Container::romInitialized), 10},
                              {"sectionIsWritable", virtualSlot(&Container::sectionIsWritable), 11},
                              {"getContainerHeader", virtualSlot(&Container::getContainerHeader), 12},
                              {"getSection", virtualSlot(&Container::getSection), 13}});
}

TEST(RomSlots, Records) {
    using Block = SerializedDataBlock;
    expectSlots("SerializedDataBlock", {{"getSerializedData", virtualSlot(&Block::getSerializedData), 2},
                                        {"getType", virtualSlot(&Block::getType), 3},
                                        {"getVersion", virtualSlot(&Block::getVersion), 4},
                                        {"getLength", virtualSlot(&Block::getLength), 5}});
    expectSlots("Object", {{"getType", virtualSlot(&Object::getType), 2},
                           {"serialize", virtualSlot(&Object::serialize), 3}});
    struct Header : GradientDistortionCorrectionHeader {
        using GradientDistortionCorrectionHeader::serialize;
        using GradientDistortionCorrectionHeader::swap;
    };
    expectSlots("GradientDistortionCorrectionHeader",
                {{"operator==", virtualSlot(&Header::operator==), 2},
                 {"getVersionNumber", virtualSlot(&Header::getVersionNumber), 3},
                 {"getTimeofLastWrite", virtualSlot(&Header::getTimeofLastWrite), 4},
                 {"getNumberOfSets", virtualSlot(&Header::getNumberOfSets), 5},
                 {"getSerialId", virtualSlot(&Header::getSerialId), 6},
                 {"serialize", virtualSlot(&Header::serialize), 7},
                 {"swap", virtualSlot(&Header::swap), 8}});
    struct Data : GradientDistortionCorrectionData {
        using GradientDistortionCorrectionData::serialize;
        using GradientDistortionCorrectionData::swap;
    };
    expectSlots("GradientDistortionCorrectionData",
                {{"operator==", virtualSlot(&Data::operator==), 2},
                 {"getModulationFrequency", virtualSlot(&Data::getModulationFrequency), 3},
                 {"getValues", virtualSlot(&Data::getValues), 4},
                 {"serialize", virtualSlot(&Data::serialize), 5},
                 {"swap", virtualSlot(&Data::swap), 6}});
}

TEST(RomSlots, Facades) {
    using Facade = Zentara::ROM::ROM;
    expectSlots("ROM", {{"initialize", virtualSlot(&Facade::initialize), 2},
                        {"dispose", virtualSlot(&Facade::dispose), 3},
                        {"romInitialized", virtualSlot(&Facade::romInitialized), 4},
                        {"getUIDs", virtualSlot(&Facade::getUIDs), 5},
                        {"get", virtualSlot(&Facade::get), 6},
                        {"set", virtualSlot(&Facade::set), 7},
                        {"erase", virtualSlot(&Facade::erase), 8},
                        {"sectionIsWritable", virtualSlot(&Facade::sectionIsWritable), 9},
                        {"initializeRom", virtualSlot(&Facade::initializeRom), 10}});
    using Store = GradientDistortionCorrectionStore;
    expectSlots("GradientDistortionCorrectionStore",
                {{"initialize", virtualSlot(&Store::initialize), 2},
                 {"initializeRom", virtualSlot(&Store::initializeRom), 3},
                 {"dispose", virtualSlot(&Store::dispose), 4},
                 {"isInitialized", virtualSlot(&Store::isInitialized), 5},
                 {"getUIDs", virtualSlot(&Store::getUIDs), 6},
                 {"get", virtualSlot(&Store::get), 7},
                 {"read", virtualSlot(&Store::read), 8},
                 {"sectionIsWritable", virtualSlot(&Store::sectionIsWritable), 9},
                 {"set", virtualSlot(&Store::set), 10}});
}

} // namespace
} // namespace Zentara::TestSupport
