#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <zentara/host/export.h>
#include <zentara/host/flash_survey.h>
#include <zentara/host/picture.h>

namespace Zentara::Host {

/// What a stretch of flash is used for. Of two that share bytes the one named later is drawn: free room, room that a
/// block's chunks have behind its content, a whole section that no link leads to, the management header, the block with
/// the container header, a section, and what cannot be read.
enum class RegionKind { Free, Slack, Remains, Header, Container, Section, Damaged };

/// "free", "slack", "remains", "header", "container", "section" or "damaged". Safe.
[[nodiscard]] ZENTARA_HOST_API const char* regionKindName(RegionKind kind) noexcept;

/// A stretch of flash. A plain value. Separate.
struct FlashRegion {
    RegionKind kind;
    std::uint32_t address; ///< absolute, of its first byte
    std::uint32_t length;  ///< bytes, 1 or more
    std::string label;     ///< "section 3 (configuration, 39 bytes)"
    char letter;           ///< of a section, the same in the picture and in the list under it
};

/// A flash area as a picture: rows of equal pieces of flash, from the top, each piece as what stands in it. A copyable
/// value that needs neither image nor survey any more. Separate.
class ZENTARA_HOST_API FlashMap final {
public:
    explicit FlashMap(const FlashSurvey& survey);

    /// What is not free, in ascending order of the addresses.
    [[nodiscard]] const std::vector<FlashRegion>& regions() const noexcept { return all; }

    /// Rows of characters with the address before each, and a list of what the characters mean.
    [[nodiscard]] std::string text() const;
    /// A drawing with the title above, addresses before the rows, a caption on each stretch that is wide enough, the rest
    /// as tooltips, and below how much a row is and what the colours mean.
    [[nodiscard]] std::string svg(const std::string& title) const;
    /// A square of colour for each piece, addresses, title and legend as above.
    [[nodiscard]] Picture picture(const std::string& title) const;

private:
    void add(RegionKind kind, std::uint64_t address, std::uint64_t length, std::string label, char letter);
    /// The region that each of so many equal pieces shows; null for one that is free.
    [[nodiscard]] std::vector<const FlashRegion*> cells(std::size_t count) const;

    FlashArea area;
    std::vector<FlashRegion> all;
};

} // namespace Zentara::Host
