#include <zentara/rom/container.h>

#include <zentara/rom/container_header.h>
#include <zentara/rom/section.h>

#include "rom/rom_fixture.h"
#include "support/log_capture.h"

namespace Zentara::TestSupport {
namespace {

using Plugin::UnauthorizedAccessPluginException;
using ROM::ContainerSectionType;

class ContainerTest : public RomTest {
protected:
    Bytes section(std::uint16_t uid, const Bytes& data, std::uint8_t type = 4, std::uint8_t flags = 1) {
        return ROM::Section(static_cast<ContainerSectionType>(type), uid, flags, data).serialize();
    }

    /// An area with these blocks in chain order, 256 bytes apart, the container header first.
    void putChain(const Bytes& header, const std::vector<Bytes>& contents) {
        putHeader(256, 256, area.size);
        std::uint32_t address = 256;
        putBlock(address, static_cast<std::uint32_t>(header.size()) + 10,
                 contents.empty() ? 0 : address + 256, header);
        for (std::size_t i = 0; i < contents.size(); ++i) {
            address += 256;
            putBlock(address, static_cast<std::uint32_t>(contents[i].size()) + 10,
                     i + 1 < contents.size() ? address + 256 : 0, contents[i]);
        }
    }
};

TEST_F(ContainerTest, FormatAndFirstSectionByteForByte) {
    format();
    ASSERT_EQ(3u, flash->writes.size());
    EXPECT_EQ(hex("01 01 01 00001000 00000100 00000000 04C3"), flash->writes[0].after);
    EXPECT_EQ(hex("0000000E 00000000 C169 01 01 50C0"), flash->writes[1].after);
    EXPECT_EQ(17u, flash->writes[1].address);
    EXPECT_EQ(hex("01 01 01 00001000 00000100 00000011 0803"), flash->writes[2].after);
    container->set(7, ContainerSectionType::Configuration, 1, hex("112233"));
    ASSERT_EQ(5u, flash->writes.size());
    EXPECT_EQ(17u + 256, flash->writes[3].address);
    const Bytes stored(flash->image.begin() + 283, flash->image.begin() + 299);
    EXPECT_EQ(hex("A5 00000010 03 01 0007 D216 112233 B008"), stored);
}

TEST_F(ContainerTest, SectionsSurviveAMount) {
    for (const bool atStart : {true, false}) {
        use({0, 16384, 256, atStart});
        format();
        for (const std::uint16_t uid : {700, 3, 65535, 1, 40})
            write(uid, pattern(uid % 200, uid));
        write(3, pattern(90, 3));
        container->erase(40);
        written.erase(40);
        mount();
        EXPECT_EQ("1:1 3:90 700:100 65535:135", readable());
        container->dispose();
        EXPECT_FALSE(container->romInitialized());
        EXPECT_THAT(container->getSectionUIDs(), IsEmpty());
    }
}

TEST_F(ContainerTest, RefusalsInOrder) {
    const auto set = [&](std::uint16_t uid) { container->set(uid, ContainerSectionType::Diagnostic, 1, {}); };
    const auto wrong = [](auto use) { return messageOf<ArgumentPluginException>(use); };
    const auto untimely = [](auto use) { return messageOf<InvalidOperationPluginException>(use); };
    EXPECT_EQ("Cannot write section - 0 is not a valid section uid", wrong([&] { set(0); }));
    EXPECT_EQ("Cannot write section - Rom is not initialized", untimely([&] { set(1); }));
    EXPECT_EQ("Cannot erase section - 1 is not a valid section uid", wrong([&] { container->erase(1); }));
    EXPECT_EQ("Section 9 is not defined", wrong([&] { container->get(9); }));
    EXPECT_EQ("Section 9 is not defined", wrong([&] { container->getType(9); }));
    EXPECT_EQ("invalid uid - 9 is not defined", wrong([&] { container->sectionIsWritable(9); }));
    EXPECT_EQ(nullptr, container->getSection(9));
    putChain(ROM::ContainerHeader(3, 1).serialize(), {section(4, {})});
    mount();
    EXPECT_EQ("Cannot write section - Rom version is not 1", untimely([&] { set(4); }));
    EXPECT_EQ("Cannot erase section - Rom version is not 1", untimely([&] { container->erase(4); }));
}

TEST_F(ContainerTest, ReadOnlySectionsStay) {
    format();
    write(5, pattern(20), 1);
    write(5, pattern(20), 0xFE); // new flags replace the old
    EXPECT_FALSE(container->sectionIsWritable(5));
    EXPECT_EQ("Cannot update section - section is read only",
              messageOf<UnauthorizedAccessPluginException>([&] { write(5, pattern(1)); }));
    EXPECT_EQ("Cannot erase section - section is read only",
              messageOf<UnauthorizedAccessPluginException>([&] { container->erase(5); }));
    mount();
    EXPECT_EQ("5:20", readable());
    EXPECT_EQ(0xFE, container->getSection(5)->getFlags());
}

TEST_F(ContainerTest, WhatFitsIsRewrittenInPlace) {
    format();
    write(1, pattern(100));
    write(2, pattern(10));
    write(3, pattern(10));
    flash->writeCount = 0;
    write(1, pattern(256 - 23)); // up to the whole chunk
    EXPECT_EQ(1u, flash->writeCount);
    EXPECT_THAT(chain(), ElementsAre(17, 273, 529, 785));
    write(2, pattern(234)); // one byte more than its chunk
    EXPECT_THAT(chain(), ElementsAre(17, 273, 785, 1041));
    mount();
    EXPECT_EQ("1:233 2:234 3:10", readable());
}

TEST_F(ContainerTest, UnusableHeaders) {
    using Case = std::tuple<const char*, Bytes, bool>;
    for (const auto& [name, header, counts] :
         {Case{"good", hex("01 01 50C0"), true},
          {"bad checksum", hex("01 01 50C1"), false},
          {"version 0", hex("00 01 C0C1"), false},
          {"cut", hex("01 01 50"), false},
          {"for later readers", ROM::ContainerHeader(1, 2).serialize(), false}}) {
        use({});
        putChain(header, {section(4, pattern(5))});
        mount();
        EXPECT_EQ(counts, container->romInitialized()) << name;
        EXPECT_EQ(counts ? 1u : 0u, container->getSectionUIDs().size()) << name;
    }
}

TEST_F(ContainerTest, DamagedSectionsAreSkippedAndTheRestLoads) {
    auto wrongData = section(2, pattern(9));
    wrongData.back() ^= 1;
    auto wrongHeader = section(3, pattern(9));
    wrongHeader[6] ^= 1;
    putChain(hex("01 01 50C0"), {section(1, pattern(5)),
                                 wrongData,
                                 wrongHeader,
                                 {},
                                 section(0, pattern(2)),
                                 section(9, pattern(3), 77)});
    mount();
    EXPECT_THAT(container->getSectionUIDs(), ElementsAre(0, 1, 9)); // any uid and type is loaded
    EXPECT_EQ(77, static_cast<int>(container->getType(9)));
    EXPECT_EQ("Section 2 is not defined", messageOf<ArgumentPluginException>([&] { container->get(2); }));
    // Of two with one uid the later counts.
    putChain(hex("01 01 50C0"), {section(6, pattern(5)), section(6, pattern(7))});
    mount();
    EXPECT_EQ(pattern(7), container->get(6));
    container->erase(6);
    mount();
    EXPECT_EQ(pattern(5), container->get(6));
}

TEST_F(ContainerTest, FormattingKeepsAVersionOneContainerAndErasesAnother) {
    format();
    write(5, pattern(20), 0);
    const auto writes = flash->writeCount;
    container->initializeRom();
    EXPECT_EQ(writes, flash->writeCount);
    EXPECT_EQ("5:20", readable());
    for (const auto& header : {ROM::ContainerHeader(2, 1), ROM::ContainerHeader(1, 0)}) {
        use({});
        putChain(header.serialize(), {section(1, pattern(5)), section(2, pattern(6), 4, 0)}); // read-only too
        mount();
        EXPECT_EQ(2u, container->getSectionUIDs().size());
        container->initializeRom();
        EXPECT_THAT(container->getSectionUIDs(), IsEmpty());
        mount();
        EXPECT_TRUE(*container->getContainerHeader() == ROM::ContainerHeader(1, 1));
        EXPECT_THAT(chain(), ElementsAre(256));
    }
}

TEST_F(ContainerTest, AFullFlashKeepsWhatItHas) {
    use({0, 100, 256, true});
    putHeader(20, 256, 100); // a block, but no container header, and no gap
    putBlock(20, 10, 0);
    mount();
    EXPECT_EQ("failed to allocate space on the device",
              messageOf<IOPluginException>([&] { container->initializeRom(); }));
    use({0, 17 + 3 * 256, 256, true});
    format();
    write(1, pattern(200));
    write(2, pattern(200));
    EXPECT_EQ("failed to allocate space on the device", messageOf<IOPluginException>([&] {
                  container->set(3, ContainerSectionType::Diagnostic, 1, {});
              }));
    mount();
    EXPECT_EQ("1:200 2:200", readable());
    // A replacement gives up the old block first; without room for the new one the section is gone.
    LogCapture log;
    EXPECT_EQ("failed to allocate space on the device",
              messageOf<IOPluginException>([&] { write(1, pattern(700)); }));
    EXPECT_THAT(log.text(), HasSubstr("section 1 was erased to be replaced and is gone"));
    EXPECT_EQ("2:200", readable());
    mount();
    EXPECT_EQ("2:200", readable());
}

TEST_F(ContainerTest, FormattingBehindAForeignFirstBlockDoesNotLast) {
    format();
    put(17 + 10, {9}); // in the container header, so that its checksum is wrong
    format();
    EXPECT_TRUE(container->romInitialized());
    mount();
    EXPECT_FALSE(container->romInitialized()) << "the damaged block is still the first";
    manager->initializeRom();
    format();
    mount();
    EXPECT_TRUE(container->romInitialized());
}

TEST_F(ContainerTest, FlashTransfersPerOperation) {
    const auto transfers = [&](auto action) { // "reads/bytes writes/bytes"
        flash->readCount = flash->writeCount = flash->bytesRead = flash->bytesWritten = 0;
        action();
        return std::to_string(flash->readCount) + "/" + std::to_string(flash->bytesRead) + " " +
               std::to_string(flash->writeCount) + "/" + std::to_string(flash->bytesWritten);
    };
    use({0, 16384, 256, true});
    EXPECT_EQ("4/65 3/48", transfers([&] { container->initializeRom(); }));
    EXPECT_EQ("2/133 2/133", transfers([&] { write(1, pattern(100)); }));
    for (std::uint16_t uid = 2; uid <= 16; ++uid)
        write(uid, pattern(100));
    EXPECT_EQ("1/123 1/123", transfers([&] { write(8, pattern(100)); })) << "in place";
    EXPECT_EQ("3/343 3/343", transfers([&] { write(8, pattern(300)); })) << "moved";
    EXPECT_EQ("35/2199 0/0", transfers([&] { mount(); }));
    EXPECT_EQ("0/0 0/0", transfers([&] {
                  container->get(8);
                  container->getType(8);
                  container->sectionIsWritable(8);
                  container->getSectionUIDs();
              }));
    EXPECT_EQ("1/10 1/10", transfers([&] { container->erase(8); }));
}

} // namespace
} // namespace Zentara::TestSupport
