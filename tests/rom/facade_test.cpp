#include <filesystem>

#include <zentara/rom/diagnostic.h>
#include <zentara/rom/file_accessor.h>
#include <zentara/rom/gradient_distortion_correction.h>
#include <zentara/rom/gradient_distortion_correction_accessor.h>
#include <zentara/rom/gradient_distortion_correction_store.h>
#include <zentara/rom/rom.h>
#include <zentara/utils/files.h>

#include "rom/rom_fixture.h"
#include "support/log_capture.h"

namespace Zentara::TestSupport {
namespace {

const ROM::Diagnostic DIAGNOSTIC({1, 2});

class FacadeTest : public RomTest {};

TEST_F(FacadeTest, ObjectsGoInAndComeOut) {
    ROM::ROM rom(container.get());
    flash->failRead(0, FlashFault::Throws);
    EXPECT_THROW(rom.initialize(), IOPluginException);
    rom.initialize(); // the lock was given back
    EXPECT_FALSE(rom.romInitialized());
    rom.initializeRom();
    EXPECT_TRUE(rom.romInitialized());
    rom.set(9, &DIAGNOSTIC, 1);
    rom.set(4, &DIAGNOSTIC, 0);
    rom.dispose();
    rom.initialize();
    EXPECT_THAT(rom.getUIDs(), ElementsAre(4, 9));
    EXPECT_TRUE(rom.sectionIsWritable(9));
    EXPECT_FALSE(rom.sectionIsWritable(4));
    const std::unique_ptr<ROM::Object> object(rom.get(9));
    const auto* diagnostic = dynamic_cast<ROM::Diagnostic*>(object.get());
    ASSERT_TRUE(diagnostic);
    EXPECT_EQ(2, diagnostic->getOverheatingDiagnosticData().getHardCounter());
    rom.erase(9);
    EXPECT_EQ("Section 9 is not defined", messageOf<ArgumentPluginException>([&] { rom.get(9); }));
    container->set(3, static_cast<ROM::ContainerSectionType>(99), 1, pattern(10));
    EXPECT_EQ(nullptr, rom.get(3)) << "there is no object of an unknown type";
}

TEST_F(FacadeTest, WithoutAContainer) {
    ROM::ROM rom(nullptr);
    rom.initialize();
    rom.dispose();
    EXPECT_FALSE(rom.romInitialized());
    const std::function<void()> refused[] = {
        [&] { rom.getUIDs(); }, [&] { rom.get(1); },          [&] { rom.sectionIsWritable(1); },
        [&] { rom.erase(1); },  [&] { rom.initializeRom(); }, [&] { rom.set(1, &DIAGNOSTIC, 1); }};
    for (const auto& operation : refused)
        EXPECT_EQ("Container is not defined", messageOf<InvalidOperationPluginException>(operation));
    EXPECT_EQ("cannot set - invalid object",
              messageOf<ArgumentPluginException>([&] { rom.set(1, nullptr, 1); }));
}

std::string asText(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

class ImageFileTest : public RomTest {
protected:
    TemporaryDirectory directory;
    const std::string fileName = directory.path("image.bin");
};

TEST_F(ImageFileTest, CorrectionImageGrowsWithWhatIsAsked) {
    LogCapture log;
    const auto open = [] { ROM::GradientDistortionCorrectionAccessor("no/such/file"); };
    EXPECT_EQ("gradient calibration parameter file can not be opened", messageOf<IOPluginException>(open));
    EXPECT_THAT(log.text(), HasSubstr("Even cannot open/read file no/such/file containing phase distortion "
                                      "correction values"));
    Utils::writeFile(fileName, std::string(50, 'x'));
    ROM::GradientDistortionCorrectionAccessor accessor(fileName);
    EXPECT_EQ(Bytes(4, 'x'), accessor.read(46, 4));
    EXPECT_EQ(Bytes(16, 0xFF), accessor.read(100, 16));
    EXPECT_EQ(Bytes(50, 0xFF), accessor.read(50, 50));

    accessor.read(fileName);
    accessor.write(60, hex("01020304"));
    auto expected = Bytes(10, 0);
    for (const std::uint8_t byte : {1, 2, 3, 4, 0xFF})
        expected.push_back(byte);
    EXPECT_EQ(expected, accessor.read(50, 15));
    EXPECT_EQ(std::string(50, 'x'), Utils::readFile(fileName)) << "nothing is written back";
}

class StoreTest : public ImageFileTest {
protected:
    const ROM::GradientDistortionCorrection correction{{1, 2, 1, "SN"}, {{30, pattern(500)}}};
};

TEST_F(StoreTest, ReadsACorrectionFile) {
    format();
    container->set(4, DIAGNOSTIC.getType(), 1, DIAGNOSTIC.serialize());
    container->set(5, correction.getType(), 1, correction.serialize());
    Utils::writeFile(fileName, asText(flash->image));

    ROM::GradientDistortionCorrectionAccessor file("");
    ROM::ChunkedMemoryManager memory(&file, area.start, area.size, area.chunkSize, area.headerAtStart);
    ROM::Container sections(&memory);
    ROM::GradientDistortionCorrectionStore store(&sections, &file);
    store.initialize(); // an image without a file reads as erased flash
    EXPECT_THAT(store.getUIDs(), IsEmpty());
    store.read(fileName);
    store.initialize();
    EXPECT_THAT(store.getUIDs(), ElementsAre(4, 5));
    const std::unique_ptr<ROM::Object> object(store.get(5));
    ASSERT_TRUE(object);
    EXPECT_EQ(correction.serialize(), object->serialize());
    EXPECT_EQ("Passed parameter is not a gradient distortion correction id",
              messageOf<ArgumentPluginException>([&] { store.get(4); }));
    EXPECT_TRUE(store.sectionIsWritable(5));
    store.set(8, &DIAGNOSTIC, 0); // any uid may be set
    EXPECT_FALSE(store.sectionIsWritable(8));
}

TEST_F(StoreTest, RefusalsInOrder) {
    const auto wrong = [](auto use) { return messageOf<ArgumentPluginException>(use); };
    const auto untimely = [](auto use) { return messageOf<InvalidOperationPluginException>(use); };
    ROM::GradientDistortionCorrectionStore none(nullptr);
    none.dispose();
    EXPECT_FALSE(none.isInitialized());
    none.initialize();
    none.dispose();
    EXPECT_TRUE(none.isInitialized()) << "once initialized it stays so";
    const std::function<void()> refused[] = {[&] { none.get(4); },
                                             [&] { none.getUIDs(); },
                                             [&] { none.initializeRom(); },
                                             [&] { none.sectionIsWritable(5); },
                                             [&] { none.set(5, &DIAGNOSTIC, 1); },
                                             [&] { none.read(fileName); }};
    for (const auto& operation : refused)
        EXPECT_EQ("Container is not defined", untimely(operation));
    EXPECT_EQ("cannot set - invalid object", wrong([&] { none.set(5, nullptr, 1); }));
    ROM::GradientDistortionCorrectionStore store(container.get());
    store.initializeRom();
    EXPECT_EQ("Accessor is not defined", untimely([&] { store.read(fileName); }));
    EXPECT_EQ("Section 5 is not defined", wrong([&] { store.get(5); }));
}

TEST_F(ImageFileTest, KeepsTheOldFileUntilSaved) {
    Utils::writeFile(fileName, "0123456789");
    Utils::writeFile(fileName + ".0123456789abcdef.part", "left");
    ROM::FileAccessor file(fileName);
    file.write(8, {'8', '9'});
    EXPECT_FALSE(file.isModified()) << "the bytes that stand there already";
    file.write(8, {'x', 'y'});
    EXPECT_TRUE(file.isModified());
    EXPECT_EQ("0123456789", Utils::readFile(fileName));
    file.save();
    EXPECT_FALSE(file.isModified());
    EXPECT_EQ("01234567xy", Utils::readFile(fileName));
    EXPECT_EQ((Bytes{'y'}), file.read(9, 1));
    EXPECT_EQ(1u, Utils::getFileList(directory.path(), "").size()) << "what a killed writer left has gone";
}

TEST_F(ImageFileTest, KeepsTheLink) {
    namespace fs = std::filesystem;
    const fs::path file = TemporaryDirectory::fromUtf8(fileName);
    const fs::path link = TemporaryDirectory::fromUtf8(directory.path("link"));
    Utils::writeFile(fileName, "0123456789");
    std::error_code noLinks;
    fs::create_symlink(file, link, noLinks);
    const bool hasLinks = !noLinks && fs::is_symlink(link);
    ROM::FileAccessor image(hasLinks ? directory.path("link") : fileName);
    image.write(0, {'x'});
    image.save();
    EXPECT_EQ("x123456789", Utils::readFile(fileName));
    EXPECT_EQ(hasLinks, fs::is_symlink(link));
}

TEST_F(ImageFileTest, RefusesWhatIsNotThere) {
    EXPECT_THROW(ROM::FileAccessor("no/such/file"), IOPluginException);
    ROM::FileAccessor file("no/such/directory/file", 10);
    EXPECT_THAT(messageOf<IOPluginException>([&] { file.save(); }), HasSubstr("no/such/directory/file"));
    EXPECT_TRUE(file.isModified());
    EXPECT_THROW(file.read(8, 3), IOPluginException);
    EXPECT_THROW(file.read(0xFFFFFFFF, 2), IOPluginException);
    EXPECT_THROW(file.write(10, {1}), IOPluginException);
    EXPECT_EQ(Bytes(10, 0xFF), file.getImage());
}

} // namespace
} // namespace Zentara::TestSupport
