#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <zentara/host/export.h>
#include <zentara/host/flash_content.h>
#include <zentara/host/flash_image.h>

namespace Zentara::Host {

/// What may be told of a place on the flash. The first ones are about headers, links and places, those from ZeroUid on
/// about what stands in a section.
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

/// "managementHeader" and so on. Safe.
[[nodiscard]] ZENTARA_HOST_API const char* findingKindName(FindingKind kind) noexcept;
/// Whether it is about headers, links and places rather than about what stands in a section. Safe.
[[nodiscard]] ZENTARA_HOST_API bool isStructural(FindingKind kind) noexcept;

/// Something worth telling about a place on the flash.
struct Finding {
    FindingKind kind;
    std::uint32_t address; ///< inside the area, or its end
    bool isFault;          ///< something is wrong; otherwise only unusual
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
    std::uint32_t allocatedSize = 0;        ///< bytes, with the block's header
    std::uint32_t next = 0;                 ///< the next block's address, 0 at the end
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

    /// 0 when all free bytes lie in one gap, towards 100 when they are in many small ones.
    [[nodiscard]] unsigned fragmentationPercent() const {
        return bytes == 0 ? 0 : static_cast<unsigned>(100 - 100 * largestGap / bytes);
    }
};

/// Everything that can be told of a flash image. A copyable value that needs the image no more. Separate.
struct FlashSurvey {
    FlashArea area;
    /// Nothing when the bytes are no management header that a storage can be loaded with.
    std::optional<SurveyedHeader> header;
    std::vector<SurveyedBlock> blocks; ///< in the order of the chain
    /// Whole sections that no link leads to, by address: remains of erased ones, or what a broken chain cut off.
    std::vector<SurveyedSection> unreachable;
    std::vector<Finding> findings;
    FreeSpace freeSpace;
    bool isChainBroken = false; ///< its end is not reached, or what stands in a block is lost

    [[nodiscard]] ZENTARA_HOST_API bool isFaulty() const;
    /// Whether whole sections may stand where no link leads any more.
    [[nodiscard]] bool isCutOff() const { return !header || isChainBroken; }
    /// The first fault of headers, links and places; what stands in a section does not count. Null when there is none;
    /// else one of the findings.
    [[nodiscard]] ZENTARA_HOST_API const Finding* structuralFault() const;
    /// The sections that the chain leads to; of two with one uid the later one.
    [[nodiscard]] ZENTARA_HOST_API FlashContent linkedContent() const;
};

/// Walks an image byte by byte, with code of its own rather than the library's loader, and names everything that is
/// wrong with it. Reads nothing outside the image, and ends soon on every image: 8 MiB take less than a second. Safe.
[[nodiscard]] ZENTARA_HOST_API FlashSurvey surveyOf(const FlashImage& image);

/// Every whole section that an image holds, put into a freshly formatted image of the same area.
struct FlashSalvage {
    FlashContent content; ///< one section of each uid: the linked one, else the one of the least address
    std::vector<std::string> lines;  ///< what was found where, and what was left out
    std::optional<FlashImage> image; ///< nothing when nothing was found, or it does not fit
    std::string whyNot;              ///< in words; empty when there is an image
};

/// Searches also where no link leads any more. Changes nothing. Safe.
[[nodiscard]] ZENTARA_HOST_API FlashSalvage salvageOf(const FlashImage& image);

} // namespace Zentara::Host
