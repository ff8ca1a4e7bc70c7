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
    AreaTooSmall,     ///< for a management header
    NotFormatted,     ///< erased bytes where the management header should be
    ManagementHeader, ///< it is damaged, or says what cannot be
    ContainerHeader,  ///< the chain begins with none, or with one that is not for this reader
    LinkOutside,      ///< a link that leaves the area
    BlockHeader,      ///< the one that a link leads to is damaged
    BlockOutside,     ///< a block that reaches past the end of the area
    Cycle,            ///< a link back to a block of the chain
    ChainOrder,       ///< a link against the direction that leads away from the management header
    Overlap,          ///< blocks, or a block and the management header, that share bytes or a chunk
    SectionHeader,    ///< a block without a section that could be read
    SectionData,      ///< a section whose data has another checksum
    Unreachable,      ///< a whole section, or a block without one, that no link leads to
    ZeroUid,          ///< a number that a section cannot have
    DuplicateUid,     ///< two sections of one number: the first is hidden
    UnknownType,      ///< of a section, whose data is kept as it is
    UnknownRecord,    ///< a record whose marker nobody knows
    DamagedRecord,    ///< a record that does not parse, or bytes behind the last one
    OtherVersion,     ///< a header or record of a version to come
};

/// "managementHeader" and so on. Safe.
[[nodiscard]] ZENTARA_HOST_API const char* findingKindName(FindingKind kind) noexcept;
/// Whether it is about headers, links and places rather than about what stands in a section. Safe.
[[nodiscard]] ZENTARA_HOST_API bool isStructural(FindingKind kind) noexcept;

/// Something worth telling about a place on the flash. A plain value. Separate.
struct Finding {
    FindingKind kind;      ///< for programs
    std::uint32_t address; ///< inside the area, or its end
    bool isFault;          ///< something is wrong; otherwise only unusual
    std::string text;      ///< for people
};

/// The management header as it was read. A plain value. Separate.
struct SurveyedHeader {
    std::uint8_t strategy = 0;          ///< 1
    std::uint8_t version = 0;           ///< 1 can be written to
    std::uint8_t minReadoutVersion = 0; ///< below 2 can be read
    std::uint32_t availableSize = 0;    ///< bytes, the header included
    std::uint32_t chunkSize = 0;        ///< bytes
    std::uint32_t firstBlock = 0;       ///< its address, 0 for none
    std::uint16_t crc = 0;              ///< of the bytes before it
};

/// A whole section and where it lies. A plain value. Separate.
struct SurveyedSection {
    std::uint32_t address = 0;   ///< absolute, of its first byte
    std::uint16_t uid = 0;       ///< its number; 0 where it is damaged so
    FlashSection content;        ///< type, flags and data
    std::uint16_t headerCrc = 0; ///< as stored
    std::uint16_t dataCrc = 0;   ///< as stored
};

/// A block of the chain. A plain value. Separate.
struct SurveyedBlock {
    std::uint32_t address = 0;              ///< absolute, of its header
    std::uint32_t allocatedSize = 0;        ///< bytes, with the block's header
    std::uint32_t next = 0;                 ///< the next block's address, 0 at the end
    std::uint64_t chunkBytes = 0;           ///< what it occupies in whole chunks
    bool isContainerHeader = false;         ///< the first one
    bool isOutside = false;                 ///< it reaches past the end of the area, so nothing of it is read
    std::optional<SurveyedSection> section; ///< nothing when there is none to be read
};

/// The room that is not taken, in whole chunks. A plain value. Separate.
struct FreeSpace {
    std::uint64_t bytes = 0;                                   ///< of all gaps
    std::uint64_t largestGap = 0;                              ///< bytes
    std::vector<std::pair<std::uint32_t, std::uint32_t>> gaps; ///< address and length

    /// 0 when all free bytes lie in one gap, towards 100 when they are in many small ones.
    [[nodiscard]] unsigned fragmentationPercent() const {
        return bytes == 0 ? 0 : static_cast<unsigned>(100 - 100 * largestGap / bytes);
    }
};

/// Everything that can be told of a flash image. A copyable value that needs the image no more. Separate.
struct FlashSurvey {
    FlashArea area; ///< the image's
    /// Nothing when the bytes are no management header that a storage can be loaded with.
    std::optional<SurveyedHeader> header;
    std::vector<SurveyedBlock> blocks; ///< in the order of the chain
    /// Whole sections that no link leads to, by address: remains of erased ones, or what a broken chain cut off.
    std::vector<SurveyedSection> unreachable;
    std::vector<Finding> findings; ///< faults and notes, in the order in which they were met
    FreeSpace freeSpace;
    bool isChainBroken = false; ///< its end is not reached, or what stands in a block is lost

    /// Whether one of the findings is a fault.
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

/// As a JSON object: area, header (not there when none can be read), free, sections, findings and faulty; addresses are
/// those of the flash, sizes are bytes. Safe.
[[nodiscard]] ZENTARA_HOST_API std::string toJson(const FlashSurvey& survey);

/// Every whole section that an image holds, put into a freshly formatted image of the same area. A plain value. Separate.
struct FlashSalvage {
    FlashContent content; ///< one section of each uid: the linked one, else the one of the least address
    std::vector<std::string> lines;  ///< what was found where, and what was left out
    std::optional<FlashImage> image; ///< nothing when nothing was found, or it does not fit
    std::string whyNot;              ///< in words; empty when there is an image
};

/// Searches also where no link leads any more. Changes nothing. Safe.
[[nodiscard]] ZENTARA_HOST_API FlashSalvage salvageOf(const FlashImage& image);

} // namespace Zentara::Host
