// Each allocation of each operation fails once: the operation throws, and object and flash stay as they were; or it goes
// through, and both have the change.
#include <zentara/rom/configuration.h>
#include <zentara/rom/container_header.h>
#include <zentara/rom/file_accessor.h>
#include <zentara/rom/gradient_distortion_correction.h>
#include <zentara/rom/gradient_distortion_correction_accessor.h>
#include <zentara/rom/gradient_distortion_correction_store.h>
#include <zentara/rom/rom.h>
#include <zentara/utils/files.h>

#include "rom/rom_fixture.h"
#include "support/failing_allocation.h"
#include "support/temporary_directory.h"

namespace Zentara::TestSupport {
namespace {

class LackOfMemory : public testing::TestWithParam<bool> {
protected:
    /// A storage with five sections on bytes of its own, chunk size 64.
    struct Camera {
        explicit Camera(bool atStart) : area{0, 4096, 64, atStart} {}

        Area area;
        Bytes image = Bytes(4096, 0xFF);
        ImageFlash flash{image};
        Storage storage{flash, area};
        Model model = fill(storage, 5, 10, 1);
    };
};

TEST_P(LackOfMemory, AChangeIsMadeOrNotMade) {
    for (const Change& change : std::initializer_list<Change>{{9, false, pattern(100)},
                                                              {3, false, pattern(50)},
                                                              {3, false, pattern(300)},
                                                              {1, false, pattern(900)},
                                                              {1, true, {}},
                                                              {5, true, {}}}) {
        SCOPED_TRACE(testing::Message() << change.uid << (change.erases ? " erased" : " set"));
        walkAllocations([&](const auto& under) {
            Camera camera(GetParam());
            Model wanted = camera.model;
            if (!under([&] { apply(camera.storage.container, change); }))
                apply(wanted, change);
            EXPECT_TRUE(holds(camera.storage.container, wanted)) << "in memory";
            Storage again(camera.flash, camera.area);
            again.container.initialize();
            EXPECT_TRUE(holds(again.container, wanted)) << "on flash";
            const Change next{7, false, pattern(10)};
            if (!rehearse(camera.image, camera.area, wanted, next))
                return; // the format itself would cost a neighbour
            apply(camera.storage.container, next);
            apply(wanted, next);
            again.container.initialize();
            EXPECT_TRUE(holds(again.container, wanted)) << "after the next change";
        });
    }
}

TEST_P(LackOfMemory, AMountFindsEverythingOrThrows) {
    walkAllocations([&](const auto& under) {
        Camera camera(GetParam());
        Storage fresh(camera.flash, camera.area);
        if (under([&] { fresh.container.initialize(); })) {
            EXPECT_FALSE(fresh.container.romInitialized() || !fresh.container.getSectionUIDs().empty());
            fresh.container.initialize();
        }
        EXPECT_TRUE(holds(fresh.container, camera.model));
    });
    walkAllocations([&](const auto& under) { // the manager alone: all blocks or none
        Camera camera(GetParam());
        ROM::ChunkedMemoryManager& manager = camera.storage.manager;
        const ROM::MemoryBlockHeader* pending = manager.allocate(5);
        if (under([&] { manager.allocate(5); }))
            manager.write(pending, pattern(5)); // it still is
        const std::size_t blocks = manager.getBlockMap().size();
        const bool threw = under([&] { manager.initialize(); });
        EXPECT_EQ(threw ? 0u : blocks, manager.getBlockMap().size());
        EXPECT_EQ(!threw, manager.romInitialized());
    });
}

TEST_P(LackOfMemory, AFormatLeavesMemoryAndFlashInAgreement) {
    for (const bool isOther : {true, false}) // over a container of another version; on erased flash
        walkAllocations([&](const auto& under) {
            Camera camera(GetParam());
            const std::uint32_t header = camera.area.headerAtStart ? 17 + 10 : 4096 - 17 - 64 + 10;
            const Bytes other = ROM::ContainerHeader(1, 0).serialize();
            if (isOther)
                std::copy(other.begin(), other.end(), camera.image.begin() + header);
            else
                camera.image.assign(4096, 0xFF);
            camera.storage.container.initialize();
            const bool threw = under([&] { camera.storage.container.initializeRom(); });
            Storage again(camera.flash, camera.area);
            again.container.initialize();
            EXPECT_EQ(camera.storage.container.getSectionUIDs(), again.container.getSectionUIDs());
            EXPECT_EQ(camera.storage.container.romInitialized(), again.container.romInitialized());
            EXPECT_EQ(camera.storage.manager.romInitialized(), again.manager.romInitialized());
            if (threw)
                camera.storage.container.initializeRom();
            EXPECT_TRUE(holds(camera.storage.container, {}));
            again.container.initialize();
            EXPECT_TRUE(holds(again.container, {}));
        });
}

INSTANTIATE_TEST_SUITE_P(Rom, LackOfMemory, testing::Bool(),
                         [](const auto& header) { return header.param ? "HeaderAtStart" : "HeaderAtEnd"; });

TEST_F(RomTest, LackOfMemoryIsNoObjectThatDoesNotParse) {
    format();
    const ROM::Configuration configuration(ROM::TemperatureCalibrationData({1.0f, 2.0f}), {}, {}, {}, {});
    const ROM::GradientDistortionCorrection correction{{1, 2, 1, "serial number of some length"},
                                                       {{30, pattern(100)}}};
    ROM::ROM rom(container.get());
    ROM::GradientDistortionCorrectionStore store(container.get());
    rom.initialize();
    store.initialize();
    for (const ROM::Object* object :
         {static_cast<const ROM::Object*>(&configuration), static_cast<const ROM::Object*>(&correction)})
        walkAllocations([&](const auto& under) {
            if (under([&] { rom.set(5, object, 1); }))
                rom.set(5, object, 1);
            for (const bool isStore : {false, true}) {
                std::unique_ptr<ROM::Object> read;
                if (!under([&] { read.reset(isStore ? store.get(5) : rom.get(5)); })) {
                    ASSERT_TRUE(read);
                    EXPECT_EQ(object->serialize(), read->serialize());
                }
            }
        });
}

TEST(LackOfMemoryTest, ACorrectionImageStaysAsItWas) {
    const TemporaryDirectory directory;
    const std::string fileName = directory.path("image.bin");
    Utils::writeFile(fileName, std::string(20000, 'x'));
    const Bytes bytes = pattern(4);
    using Image = ROM::GradientDistortionCorrectionAccessor;
    const std::function<void(Image&)> operations[] = {
        [](Image& image) { static_cast<void>(image.read(100, 16)); },
        [&](Image& image) { image.write(60, bytes); }, [&](Image& image) { image.read(fileName); }};
    for (const auto& operation : operations)
        walkAllocations([&](const auto& under) {
            Image accessor("");
            accessor.write(0, pattern(50));
            const bool threw = under([&] { operation(accessor); });
            if (threw) {
                accessor.write(52, {1}); // the gap tells how long the image was
                Bytes wanted = pattern(50);
                wanted.insert(wanted.end(), {0, 0, 1, 0xFF});
                EXPECT_EQ(wanted, accessor.read(0, 54));
            }
        });
}

TEST(LackOfMemoryTest, AFlashFileIsSavedWholeOrStaysAsItWas) {
    const TemporaryDirectory directory;
    const std::string fileName = directory.path("image.bin");
    const std::string before(5000, 'x');
    const Bytes bytes = pattern(3000);
    walkAllocations([&](const auto& under) {
        Utils::writeFile(fileName, before);
        std::unique_ptr<ROM::FileAccessor> file;
        if (under([&] { file = std::make_unique<ROM::FileAccessor>(fileName); }))
            file = std::make_unique<ROM::FileAccessor>(fileName);
        file->write(1000, bytes);
        if (under([&] { file->save(); })) {
            EXPECT_TRUE(file->isModified());
            EXPECT_TRUE(before == Utils::readFile(fileName));
            file->save();
        }
        EXPECT_FALSE(file->isModified());
        const std::string saved = Utils::readFile(fileName);
        EXPECT_TRUE(file->getImage() == Bytes(saved.begin(), saved.end()));
        EXPECT_TRUE(bytes == file->read(1000, 3000));
    });
    EXPECT_EQ(1u, Utils::getFileList(directory.path(), "").size()) << "no parts are left";
}

} // namespace
} // namespace Zentara::TestSupport
