#include <zentara/host/flash_survey.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>

#include <zentara/rom/chunked_memory_management_header.h>
#include <zentara/rom/chunked_memory_manager.h>
#include <zentara/rom/container.h>
#include <zentara/rom/container_header.h>
#include <zentara/rom/memory_block_header.h>
#include <zentara/rom/section.h>
#include <zentara/utils/format.h>

#include "host/flash/records.h"
#include "host/flash/stretch_checksums.h"
#include "rom/big_endian_reader.h"

namespace Zentara::Host {
namespace {

using ROM::BigEndianReader;
using Utils::Format;
using View = std::span<const std::uint8_t>;

constexpr std::uint32_t HEADER_SIZE = ROM::ChunkedMemoryManagementHeader::SIZE;
constexpr std::uint32_t BLOCK_HEADER_SIZE = ROM::MemoryBlockHeader::SIZE;
constexpr std::uint32_t CRC_SIZE = 2;
constexpr std::uint32_t DATA_OFFSET = ROM::Section::HEADER_SIZE + CRC_SIZE;
constexpr std::uint8_t UNREADABLE_VERSION = 2;
constexpr std::uint8_t ERASED_BYTE = 0xFF;

std::string hex(std::uint32_t value) { return Format("0x%{:x8}") % value; }

std::string crcText(const char* what, std::uint16_t stored, std::uint16_t computed) {
    return Format("% has the CRC 0x%{:x4}, its bytes have 0x%{:x4}") % what % stored % computed;
}

std::uint16_t bigEndian16(View bytes) { return BigEndianReader(bytes).readU16(); }

/// The fields before a section's data, in their order, big-endian: 1, 4, 1, 1, 2 and 2 bytes, of which the last two are
/// the CRC of the nine before them. `length` counts from the marker to the last byte; the data, and two bytes with its CRC,
/// follow.
struct SectionHeader {
    std::uint8_t marker;
    std::uint32_t length;
    std::uint8_t type;
    std::uint8_t flags;
    std::uint16_t uid;
    std::uint16_t crc;
};

SectionHeader sectionHeader(View bytes) {
    BigEndianReader reader(bytes);
    SectionHeader header{};
    header.marker = reader.readU8();
    header.length = reader.readU32();
    header.type = reader.readU8();
    header.flags = reader.readU8();
    header.uid = reader.readU16();
    header.crc = reader.readU16();
    return header;
}

/// How often all blocks together may claim the area: the library loads no more of the chain.
constexpr std::uint64_t MOST_CLAIMS = 16;

/// The walk over one image, and what it has found so far.
class Surveyor {
public:
    explicit Surveyor(const FlashImage& surveyed)
        : image(surveyed), checksums(surveyed.bytes()), chain(result.blocks) {
        result.area = surveyed.area();
        readHeader();
        if (result.header) {
            walkChain();
            checkUids();
            checkOverlaps();
            measureFreeSpace();
        }
        findUnreachable();
    }

    [[nodiscard]] FlashSurvey take() { return std::move(result); }

private:
    struct SectionFault {
        FindingKind kind;
        std::string text;
    };

    [[nodiscard]] View at(std::uint64_t address, std::uint64_t length) const;
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
    [[nodiscard]] std::uint64_t nextCandidate(std::uint64_t address, std::uint64_t end) const;
    void noteOrphan(std::uint64_t address, bool isCut);
    void findUnreachable();

    const FlashImage& image;
    const StretchChecksums checksums;
    FlashSurvey result;
    std::vector<SurveyedBlock>& chain; ///< of the result
};

View Surveyor::at(std::uint64_t address, std::uint64_t length) const {
    return View(image.bytes()).subspan(address - image.area().start, length);
}

std::uint16_t Surveyor::crcOf(std::uint64_t address, std::uint64_t length) const {
    return checksums.of(address - image.area().start, length);
}

void Surveyor::add(FindingKind kind, std::uint32_t address, bool isFault, std::string text) {
    result.findings.push_back({kind, address, isFault, std::move(text)});
}

void Surveyor::readHeader() {
    const FlashArea& area = image.area();
    if (area.size < HEADER_SIZE)
        return fault(FindingKind::AreaTooSmall, area.start,
                     Format("an area of % bytes has no room for a management header") % area.size);
    const View bytes = at(area.headerAddress(), HEADER_SIZE);
    if (std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte == ERASED_BYTE; }))
        return fault(FindingKind::NotFormatted, area.headerAddress(), "erased flash: it was never formatted");
    // 17 bytes, big-endian, the CRC of the others last.
    BigEndianReader reader(bytes);
    SurveyedHeader read;
    read.strategy = reader.readU8();
    read.version = reader.readU8();
    read.minReadoutVersion = reader.readU8();
    read.availableSize = reader.readU32();
    read.chunkSize = reader.readU32();
    read.firstBlock = reader.readU32();
    read.crc = reader.readU16();
    if (checkHeader(read, crcOf(area.headerAddress(), HEADER_SIZE - CRC_SIZE)))
        result.header = read;
}

bool Surveyor::checkHeader(const SurveyedHeader& read, std::uint16_t computed) {
    std::string reason;
    if (read.strategy != ROM::ChunkedMemoryManagementHeader::STRATEGY)
        reason = Format("the management header has strategy %, not 1") % unsigned{read.strategy};
    else if (read.crc != computed)
        reason = crcText("the management header", read.crc, computed);
    else if (read.minReadoutVersion >= UNREADABLE_VERSION)
        reason = Format("the management header is for readers of version % and later") %
                 unsigned{read.minReadoutVersion};
    else if (read.chunkSize == 0)
        reason = "the management header has chunk size 0";
    else if (read.availableSize > image.area().size)
        reason = Format("the management header manages % bytes, the area has %") % read.availableSize %
                 image.area().size;
    if (!reason.empty()) {
        fault(FindingKind::ManagementHeader, image.area().headerAddress(), std::move(reason));
        return false;
    }
    // A reader takes every version that says it may be read; a writer its own alone.
    if (read.version != ROM::ChunkedMemoryManager::HEADER_VERSION)
        note(FindingKind::OtherVersion, image.area().headerAddress(),
             Format("the management header has version %: it cannot be changed") % unsigned{read.version});
    return true;
}

void Surveyor::walkChain() {
    std::set<std::uint32_t> seen;
    std::uint64_t claimed = 0;
    bool isLost = false; // what stands in a block, though the links lead past it
    std::uint32_t address = result.header->firstBlock;
    if (address == 0)
        fault(FindingKind::ContainerHeader, image.area().headerAddress(),
              "there is no container: the chain is empty");
    result.isChainBroken = true; // until its end has been seen
    while (address != 0) {
        if (!seen.insert(address).second)
            return fault(FindingKind::Cycle, chain.back().address,
                         "the chain leads back to the block at " + hex(address));
        std::optional<SurveyedBlock> block = readBlock(address);
        if (!block)
            return;
        claimed += block->isOutside ? 0 : block->allocatedSize;
        if (claimed > MOST_CLAIMS * image.area().size)
            return fault(FindingKind::Overlap, address,
                         Format("the chain is cut here: its blocks claim the area more than % times") %
                             static_cast<unsigned long long>(MOST_CLAIMS));
        isLost |= block->isOutside;
        block->isContainerHeader = chain.empty();
        if (block->isContainerHeader)
            readContainerHeader(*block);
        else
            readSection(*block);
        address = block->next;
        chain.push_back(*std::move(block));
    }
    result.isChainBroken = isLost;
}

std::optional<SurveyedBlock> Surveyor::readBlock(std::uint32_t address) {
    const std::uint32_t linkedFrom = chain.empty() ? image.area().headerAddress() : chain.back().address;
    if (!image.area().holds(address, BLOCK_HEADER_SIZE)) {
        fault(FindingKind::LinkOutside, linkedFrom, "the link to " + hex(address) + " leaves the area");
        return std::nullopt;
    }
    const View bytes = at(address, BLOCK_HEADER_SIZE);
    BigEndianReader reader(bytes);
    SurveyedBlock block;
    block.address = address;
    block.allocatedSize = reader.readU32();
    block.next = reader.readU32();
    const std::uint16_t stored = reader.readU16();
    const std::uint16_t computed = crcOf(address, BLOCK_HEADER_SIZE - CRC_SIZE);
    // Neither size nor link of a damaged header is believed: the walk ends there.
    if (stored != computed)
        fault(FindingKind::BlockHeader, address, crcText("the block header", stored, computed));
    else if (block.allocatedSize < BLOCK_HEADER_SIZE)
        fault(FindingKind::BlockHeader, address,
              Format("a block of % bytes is smaller than its header") % block.allocatedSize);
    else {
        const std::uint64_t chunk = result.header->chunkSize;
        block.chunkBytes = (block.allocatedSize + chunk - 1) / chunk * chunk;
        block.isOutside = !image.area().holds(address, block.allocatedSize);
        if (block.isOutside)
            fault(FindingKind::BlockOutside, address,
                  Format("the block of % bytes reaches past the end of the area") % block.allocatedSize);
        if (!chain.empty() && (address > chain.back().address) != image.area().headerAtStart)
            fault(FindingKind::ChainOrder, address,
                  Format("the block stands % its predecessor at %") %
                      (image.area().headerAtStart ? "below" : "above") % hex(chain.back().address));
        return block;
    }
    return std::nullopt;
}

void Surveyor::readContainerHeader(SurveyedBlock& block) {
    if (block.isOutside)
        return;
    const View bytes = at(block.address, block.allocatedSize).subspan(BLOCK_HEADER_SIZE);
    const auto wrong = [&](std::string text) {
        fault(FindingKind::ContainerHeader, block.address, std::move(text));
    };
    if (bytes.size() < ROM::ContainerHeader::SIZE)
        return wrong("the first block is too short for a container header");
    const std::uint16_t computed = crcOf(block.address + BLOCK_HEADER_SIZE, 2);
    const std::uint16_t stored = bigEndian16(bytes.subspan(2));
    if (stored != computed)
        return wrong(crcText("the container header", stored, computed));
    if (bytes[0] == 0 || bytes[1] >= UNREADABLE_VERSION)
        return wrong(Format("the container header has version %, for readers of version %") %
                     unsigned{bytes[0]} % unsigned{bytes[1]});
    if (bytes[0] != ROM::Container::HEADER_VERSION)
        note(FindingKind::OtherVersion, block.address,
             Format("the container header has version %: it cannot be changed") % unsigned{bytes[0]});
}

/// Why the bytes are no whole section, and whether it is the data that is wrong; nothing when they are one.
std::optional<Surveyor::SectionFault> Surveyor::sectionFault(std::uint64_t address,
                                                             std::uint64_t length) const {
    if (length < ROM::Section::MIN_SIZE)
        return SectionFault{FindingKind::SectionHeader, Format("% bytes are too few for a section") %
                                                            static_cast<unsigned long long>(length)};
    const SectionHeader header = sectionHeader(at(address, DATA_OFFSET));
    if (header.marker != ROM::Section::SECTION_MARKER)
        return SectionFault{FindingKind::SectionHeader,
                            Format("the section begins with 0x%{:x2}, not with 0xa5") %
                                unsigned{header.marker}};
    // The length is believed only once the header's CRC vouches for it: it says how many bytes the next CRC is of.
    const std::uint16_t computed = crcOf(address, ROM::Section::HEADER_SIZE);
    if (computed != header.crc)
        return SectionFault{FindingKind::SectionHeader, crcText("the section header", header.crc, computed)};
    if (header.length < ROM::Section::MIN_SIZE || header.length > length)
        return SectionFault{FindingKind::SectionHeader, Format("section % says to have % bytes where % are") %
                                                            header.uid % header.length %
                                                            static_cast<unsigned long long>(length)};
    const std::uint16_t data = crcOf(address + DATA_OFFSET, header.length - ROM::Section::MIN_SIZE);
    const std::uint16_t stored = bigEndian16(at(address + header.length - CRC_SIZE, CRC_SIZE));
    if (data != stored)
        return SectionFault{
            FindingKind::SectionData,
            crcText(("the data of section " + std::to_string(header.uid)).c_str(), stored, data)};
    return std::nullopt;
}

/// Only where there is no fault.
SurveyedSection Surveyor::wholeSection(std::uint64_t address) const {
    const SectionHeader header = sectionHeader(at(address, DATA_OFFSET));
    const View data = at(address + DATA_OFFSET, header.length - ROM::Section::MIN_SIZE);
    return {static_cast<std::uint32_t>(address),
            header.uid,
            {header.type, header.flags, Bytes(data.begin(), data.end())},
            header.crc,
            bigEndian16(at(address + header.length - CRC_SIZE, CRC_SIZE))};
}

void Surveyor::readSection(SurveyedBlock& block) {
    if (block.isOutside)
        return;
    const std::uint32_t address = block.address + BLOCK_HEADER_SIZE;
    if (auto wrong = sectionFault(address, block.allocatedSize - BLOCK_HEADER_SIZE))
        return fault(wrong->kind, address, std::move(wrong->text));
    block.section = wholeSection(address);
    checkRecords(*block.section);
}

void Surveyor::checkRecords(const SurveyedSection& section) {
    const std::string name = "section " + std::to_string(section.uid);
    if (section.uid == 0)
        fault(FindingKind::ZeroUid, section.address, "a section has the uid 0, which cannot be written");
    const std::uint8_t type = section.content.type;
    if (!sectionTypeName(type))
        return note(FindingKind::UnknownType, section.address,
                    Format("% has the unknown type %") % name % unsigned{type});
    const SplitData split = splitRecords(section.content.data);
    for (const RawRecord& record : split.records) {
        const RecordLayout* layout = recordLayout(type, record.marker);
        if (!layout)
            note(FindingKind::UnknownRecord, section.address,
                 Format("% has a record of the unknown marker %") % name % unsigned{record.marker});
        else if (record.version != RECORD_VERSION)
            note(FindingKind::OtherVersion, section.address,
                 Format("% has a record % of version %, which is not read") % name % layout->name %
                     unsigned{record.version});
        else if (!holdsFields(*layout, record.data))
            fault(FindingKind::DamagedRecord, section.address,
                  Format("% has a record % whose % bytes are too few for its content") % name % layout->name %
                      static_cast<unsigned long long>(record.data.size()));
    }
    if (!split.trailing.empty())
        fault(FindingKind::DamagedRecord, section.address,
              Format("% ends in % bytes that are no record") % name %
                  static_cast<unsigned long long>(split.trailing.size()));
}

void Surveyor::checkUids() {
    std::map<std::uint16_t, std::uint32_t> places;
    for (const SurveyedBlock& block : chain) {
        if (!block.section)
            continue;
        const auto [place, isNew] = places.emplace(block.section->uid, block.section->address);
        if (!isNew)
            fault(FindingKind::DuplicateUid, block.section->address,
                  Format("section % hides the one at %, which has the same uid") % block.section->uid %
                      hex(place->second));
    }
}

void Surveyor::checkOverlaps() {
    struct Range {
        std::uint64_t begin, end, chunksEnd;
        const char* name;
    };
    std::vector<Range> ranges;
    const std::uint64_t header = image.area().headerAddress();
    ranges.push_back({header, header + HEADER_SIZE, header + HEADER_SIZE, "management header"});
    for (const SurveyedBlock& block : chain)
        if (!block.isOutside)
            ranges.push_back({block.address, std::uint64_t{block.address} + block.allocatedSize,
                              block.address + block.chunkBytes, "block"});
    std::sort(ranges.begin(), ranges.end(),
              [](const Range& left, const Range& right) { return left.begin < right.begin; });
    // One sweep upwards: what overlaps any of those before it overlaps the one that reaches farthest.
    const Range* widest = nullptr;
    for (const Range& range : ranges) {
        if (widest && range.begin < widest->end)
            fault(FindingKind::Overlap, static_cast<std::uint32_t>(range.begin),
                  Format("the % overlaps the % at %, which ends at %") % range.name % widest->name %
                      hex(static_cast<std::uint32_t>(widest->begin)) %
                      hex(static_cast<std::uint32_t>(widest->end)));
        else if (widest && range.begin < widest->chunksEnd)
            note(FindingKind::Overlap, static_cast<std::uint32_t>(range.begin),
                 Format("the % stands in the last chunk of the % at %") % range.name % widest->name %
                     hex(static_cast<std::uint32_t>(widest->begin)));
        if (!widest || range.end > widest->end)
            widest = &range;
    }
}

void Surveyor::measureFreeSpace() {
    const FlashArea& area = image.area();
    std::vector<std::pair<std::uint64_t, std::uint64_t>> taken;
    for (const SurveyedBlock& block : chain)
        taken.emplace_back(block.address, block.address + block.chunkBytes);
    std::sort(taken.begin(), taken.end());
    // With the header at the start the size is taken for the address where the last gap ends.
    const std::uint64_t end = area.headerAtStart ? result.header->availableSize : area.headerAddress();
    taken.emplace_back(end, end);
    std::uint64_t begin = area.start + (area.headerAtStart ? HEADER_SIZE : 0);
    for (const auto& [from, to] : taken) {
        // A block is given whole chunks: what a gap has beyond them is of no use.
        const std::uint64_t gap =
            from > begin ? (from - begin) / result.header->chunkSize * result.header->chunkSize : 0;
        if (gap > 0) {
            result.freeSpace.gaps.emplace_back(static_cast<std::uint32_t>(begin),
                                               static_cast<std::uint32_t>(gap));
            result.freeSpace.bytes += gap;
            result.freeSpace.largestGap = std::max(result.freeSpace.largestGap, gap);
        }
        begin = std::max(begin, to);
    }
}

bool Surveyor::isWholeSection(std::uint64_t address) const {
    const std::uint64_t end = image.area().end();
    return address < end && at(address, 1)[0] == ROM::Section::SECTION_MARKER &&
           !sectionFault(address, end - address);
}

/// The first place in front of `end` where a block header or a section may begin; `end` when there is none. Every byte of an
/// area comes here, hardly one goes further.
std::uint64_t Surveyor::nextCandidate(std::uint64_t address, std::uint64_t end) const {
    const std::uint64_t room = image.area().end() - address;
    const View bytes = at(address, room);
    // Neither fits into the last bytes of the area.
    const std::uint64_t stop = std::min(end - address + BLOCK_HEADER_SIZE, room + 1);
    std::uint64_t size = BigEndianReader(bytes).readU32() >> 8; // that a header there would begin with
    for (std::uint64_t i = 0; i + BLOCK_HEADER_SIZE < stop; ++i) {
        size = (size << 8 | bytes[i + 3]) & 0xFFFFFFFF;
        if (bytes[i] == ROM::Section::SECTION_MARKER ||
            size - BLOCK_HEADER_SIZE <= room - i - BLOCK_HEADER_SIZE)
            return address + i;
    }
    return end;
}

/// A block header where no link leads. One in front of a whole section goes without saying.
void Surveyor::noteOrphan(std::uint64_t address, bool isCut) {
    BigEndianReader reader(at(address, BLOCK_HEADER_SIZE));
    const std::uint32_t size = reader.readU32();
    reader.readU32();
    if (size < BLOCK_HEADER_SIZE || !image.area().holds(address, size) ||
        reader.readU16() != crcOf(address, BLOCK_HEADER_SIZE - CRC_SIZE) ||
        isWholeSection(address + BLOCK_HEADER_SIZE))
        return;
    add(FindingKind::Unreachable, static_cast<std::uint32_t>(address), isCut,
        Format("no link leads to the block of % bytes, and it holds no whole section") % size);
}

void Surveyor::findUnreachable() {
    std::map<std::uint64_t, std::uint64_t> reached; // first byte and end of each section that a link leads to
    std::set<std::uint64_t> linked;
    for (const SurveyedBlock& block : chain) {
        linked.insert(block.address);
        if (block.section)
            reached[block.address] = std::uint64_t{block.address} + block.allocatedSize;
    }
    // Erasing takes a block out of the chain and leaves its bytes; a broken chain leaves whole blocks behind it. Where these
    // began nobody knows any more, so every byte may be the first one of a section.
    const bool cutOff = result.isCutOff();
    auto next = reached.cbegin();
    for (std::uint64_t address = image.area().start; address < image.area().end();) {
        while (next != reached.cend() && next->first < address)
            ++next;
        const bool isLast = next == reached.cend();
        const std::uint64_t gapEnd = isLast ? image.area().end() : next->first;
        address = nextCandidate(address, gapEnd);
        if (address == gapEnd) {
            address = isLast ? gapEnd : next->second;
            continue;
        }
        if (linked.count(address) == 0)
            noteOrphan(address, cutOff);
        if (!isWholeSection(address)) {
            ++address;
            continue;
        }
        result.unreachable.push_back(wholeSection(address));
        const SurveyedSection& section = result.unreachable.back();
        add(FindingKind::Unreachable, section.address, cutOff,
            sectionText(section.uid, section.content) +
                (cutOff ? " is whole, but no link leads to it" : " was erased; its bytes are still there"));
        address += ROM::Section::MIN_SIZE + section.content.data.size();
    }
}

} // namespace

bool isStructural(FindingKind kind) noexcept { return kind < FindingKind::ZeroUid; }

const char* findingKindName(FindingKind kind) noexcept {
    constexpr std::array<const char*, 19> names{
        "areaTooSmall",  "notFormatted",  "managementHeader", "containerHeader",
        "linkOutside",   "blockHeader",   "blockOutside",     "cycle",
        "chainOrder",    "overlap",       "sectionHeader",    "sectionData",
        "unreachable",   "zeroUid",       "duplicateUid",     "unknownType",
        "unknownRecord", "damagedRecord", "otherVersion"};
    return names[static_cast<std::size_t>(kind)];
}

bool FlashSurvey::isFaulty() const {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.isFault; });
}

const Finding* FlashSurvey::structuralFault() const {
    const auto first = std::find_if(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.isFault && isStructural(finding.kind);
    });
    return first == findings.end() ? nullptr : &*first;
}

FlashContent FlashSurvey::linkedContent() const {
    FlashContent content;
    for (const SurveyedBlock& block : blocks)
        if (block.section)
            content[block.section->uid] = block.section->content; // of two with one uid the later one counts
    return content;
}

FlashSurvey surveyOf(const FlashImage& image) { return Surveyor(image).take(); }

} // namespace Zentara::Host
