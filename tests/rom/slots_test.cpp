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
using Testing::virtualSlot;

/// The operations stand in this order, the first of them in slot `first`. Slots 0 and 1 are the destructor's.
template<typename... Operations>
void expectInOrder(const char* className, int first, Operations... operations) {
    for (const int slot : {virtualSlot(operations)...})
        EXPECT_EQ(first++, slot) << className;
}

TEST(RomSlots, Flash) {
    using Correction = GradientDistortionCorrectionAccessor;
    expectInOrder("Accessor", 2, &Accessor::read, &Accessor::write);
    expectInOrder("GradientDistortionCorrectionAccessor", 4,
                  static_cast<void (Correction::*)(const std::string&)>(&Correction::read));
}

TEST(RomSlots, Memory) {
    expectInOrder("MemoryManager", 2, &MemoryManager::initialize, &MemoryManager::dispose,
                  &MemoryManager::getNext, &MemoryManager::erase, &MemoryManager::write, &MemoryManager::read,
                  &MemoryManager::getMaximumUsableSize, &MemoryManager::allocate,
                  &MemoryManager::romInitialized, &MemoryManager::initializeRom);
    expectInOrder("ChunkedMemoryManager", 12, &ChunkedMemoryManager::getHeader,
                  &ChunkedMemoryManager::getBlockMap);
    using Header = ChunkedMemoryManagementHeader;
    expectInOrder("ChunkedMemoryManagementHeader", 2, &Header::getVersion, &Header::getMinReadoutVersion,
                  &Header::getAvailableMemorySize, &Header::getChunkSize, &Header::getFirstBlockAddress);
    struct Open : MemoryBlockHeader {
        using MemoryBlockHeader::getAllocatedSize;
        using MemoryBlockHeader::getBlockOffset;
        using MemoryBlockHeader::getNextBlockOffset;
        using MemoryBlockHeader::serialize;
        using MemoryBlockHeader::setAllocatedSize;
        using MemoryBlockHeader::setBlockOffset;
        using MemoryBlockHeader::setNextBlockOffset;
    };
    expectInOrder("MemoryBlockHeader", 2, &Open::serialize, &Open::getAllocatedSize,
                  &Open::getNextBlockOffset, &Open::getBlockOffset, &Open::setAllocatedSize,
                  &Open::setNextBlockOffset, &Open::setBlockOffset);
}

TEST(RomSlots, Sections) {
    expectInOrder("ContainerHeader", 2, &ContainerHeader::operator==, &ContainerHeader::getVersion,
                  &ContainerHeader::getMinReadoutVersion);
    expectInOrder("Section", 2, &Section::getSectionType, &Section::getUID, &Section::getFlags,
                  &Section::getSerializedData, &Section::setFlags);
    expectInOrder("Container", 2, &Container::initialize, &Container::dispose, &Container::getSectionUIDs,
                  &Container::get, &Container::getType, &Container::set, &Container::erase,
                  &Container::initializeRom, &Container::romInitialized, &Container::sectionIsWritable,
                  &Container::getContainerHeader, &Container::getSection);
}

TEST(RomSlots, Records) {
    using Block = SerializedDataBlock;
    expectInOrder("SerializedDataBlock", 2, &Block::getSerializedData, &Block::getType, &Block::getVersion,
                  &Block::getLength);
    expectInOrder("Object", 2, &Object::getType, &Object::serialize);
    struct Header : GradientDistortionCorrectionHeader {
        using GradientDistortionCorrectionHeader::serialize;
        using GradientDistortionCorrectionHeader::swap;
    };
    expectInOrder("GradientDistortionCorrectionHeader", 2, &Header::operator==, &Header::getVersionNumber,
                  &Header::getTimeofLastWrite, &Header::getNumberOfSets, &Header::getSerialId,
                  &Header::serialize, &Header::swap);
    struct Data : GradientDistortionCorrectionData {
        using GradientDistortionCorrectionData::serialize;
        using GradientDistortionCorrectionData::swap;
    };
    expectInOrder("GradientDistortionCorrectionData", 2, &Data::operator==, &Data::getModulationFrequency,
                  &Data::getValues, &Data::serialize, &Data::swap);
}

TEST(RomSlots, Facades) {
    using Facade = Zentara::ROM::ROM;
    expectInOrder("ROM", 2, &Facade::initialize, &Facade::dispose, &Facade::romInitialized, &Facade::getUIDs,
                  &Facade::get, &Facade::set, &Facade::erase, &Facade::sectionIsWritable,
                  &Facade::initializeRom);
    using Store = GradientDistortionCorrectionStore;
    expectInOrder("GradientDistortionCorrectionStore", 2, &Store::initialize, &Store::initializeRom,
                  &Store::dispose, &Store::isInitialized, &Store::getUIDs, &Store::get, &Store::read,
                  &Store::sectionIsWritable, &Store::set);
}

} // namespace
} // namespace Zentara::TestSupport
