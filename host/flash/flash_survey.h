#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "host/flash/flash_content.h"
#include "host/flash/flash_image.h"
#include "host/flash/stretch_checksums.h"

namespace Zentara::Host {

enum class FindingKind {
    AreaTooSmall,
    NotFormatted,     ///< erased bytes where the management header should be
    ManagementHeader, ///< it is damaged, or says what cannot be
    ContainerHeader,
    LinkOutside, ///< a link that leaves the area
    BlockHeader,
    BlockOutside, ///< a block that reaches past the end of the area
    Cycle,
    ChainOrder,
    Overlap,
    SectionHeader,
    SectionData,
    Unreachable, ///< a whole section, or a block without one, that no link leads to
    ZeroUid,
    DuplicateUid,
    UnknownType,
    UnknownRecord,
    DamagedRecord,
    OtherVersion,
};

/// "managementHeader" and so on.
[[nodiscard]] const char* findingKindName(FindingKind kind) noexcept;
/// Whether it is about headers, links and places rather than about what stands in a section.
[[nodiscard]] bool isStructural(FindingKind kind) noexcept;

/// Something worth telling about a place on the flash.
struct Finding {
    FindingKind kind;
    std::uint32_t address;
    bool isFault; ///< something is wrong; otherwise only unusual
    std::string text;
};

/// The management header as it was read.
struct SurveyedHeader {
    std::uint8_t strategy = 0;
    std::uint8_t version = 0;
    std::uint8_t minReadoutVersion = 0;
    std::uint32_t availableSize = 0;
    std::uint32_t chunkSize = 0;
    std::uint32_t firstBlock = 0;
    std::uint16_t crc = 0;
};

/// A whole section and where it lies.
struct SurveyedSection {
    std::uint32_t address = 0; ///< of its first byte
    std::uint16_t uid = 0;
    FlashSection content;
    std::uint16_t headerCrc = 0;
    std::uint16_t dataCrc = 0;
};

/// A block of the chain.
struct SurveyedBlock {
    std::uint32_t address = 0;
    std::uint32_t allocatedSize = 0;
    std::uint32_t next = 0;
    std::uint64_t chunkBytes = 0;           ///< what it occupies in whole chunks
    bool isContainerHeader = false;         ///< the first one
    bool isOutside = false;                 ///< it reaches past the end of the area, so nothing of it is read
    std::optional<SurveyedSection> section; ///< nothing when there is none to be read
};

/// The room that is not taken, in whole chunks.
struct FreeSpace {
    std::uint64_t bytes = 0;
    std::uint64_t largestGap = 0;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> gaps; ///< address and length
};

/// Walks a flash image byte by byte, with code of its own rather than the library's, and names everything
/// that is wrong with it. Reads nothing outside the image, and ends soon on every image.
class FlashSurvey {
public:
    explicit FlashSurvey(const FlashImage& image);

    /// Nothing when the bytes are no management header that a storage can be loaded with.
    [[nodiscard]] const std::optional<SurveyedHeader>& header() const { return managementHeader; }
    /// In the order of the chain.
    [[nodiscard]] const std::vector<SurveyedBlock>& blocks() const { return chain; }
    /// Whole sections that no link leads to, by address: remains of erased ones, or what a broken chain cut
    /// off.
    [[nodiscard]] const std::vector<SurveyedSection>& unreachable() const { return lost; }
    [[nodiscard]] const std::vector<Finding>& findings() const { return found; }
    [[nodiscard]] const FreeSpace& freeSpace() const { return room; }

    [[nodiscard]] bool isFaulty() const;
    /// Whether whole sections may stand where no link leads any more.
    [[nodiscard]] bool isCutOff() const { return !managementHeader || isChainBroken; }
    /// The first fault of headers, links and places; what stands in a section does not count. Null when there
    /// is none.
    [[nodiscard]] const Finding* structuralFault() const;

private:
    struct SectionFault {
        FindingKind kind;
        std::string text;
    };

    [[nodiscard]] std::span<const std::uint8_t> at(std::uint64_t address, std::uint64_t length) const;
    [[nodiscard]] std::uint16_t crcOf(std::uint64_t address, std::uint64_t length) const;
    void note(FindingKind kind, std::uint32_t address, std::string text) {
        add(kind, address, false, std::move(text));
    }
    void fault(FindingKind kind, std::uint32_t address, std::string text) {
        add(kind, address, true, std::move(text));
    }
    void add(FindingKind kind, std::uint32_t address, bool isFault, std::string text);

    void readHeader();
    [[nodiscard]] bool checkHeader(const SurveyedHeader& read, std::uint16_t computed);
    void walkChain();
    [[nodiscard]] std::optional<SurveyedBlock> readBlock(std::uint32_t address);
    void readContainerHeader(SurveyedBlock& block);
    [[nodiscard]] std::optional<SectionFault> sectionFault(std::uint64_t address, std::uint64_t length) const;
    [[nodiscard]] SurveyedSection wholeSection(std::uint64_t address) const;
    void readSection(SurveyedBlock& block);
    void checkRecords(const SurveyedSection& section);
    void checkUids();
    void checkOverlaps();
    void measureFreeSpace();
    [[nodiscard]] bool isWholeSection(std::uint64_t address) const;
    void noteOrphan(std::uint64_t address, bool isCut);
    void findUnreachable();

    const FlashImage& image;
    const StretchChecksums checksums;
    std::optional<SurveyedHeader> managementHeader;
    std::vector<SurveyedBlock> chain;
    std::vector<SurveyedSection> lost;
    std::vector<Finding> found;
    FreeSpace room;
    bool isChainBroken = false;
};

} // namespace Zentara::Host
