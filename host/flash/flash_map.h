#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/flash/flash_survey.h"

namespace Zentara::Host {

/// What a stretch of flash is used for. Of two that share bytes the one named later is drawn.
enum class RegionKind { Free, Slack, Remains, Header, Container, Section, Damaged };

struct Region {
    RegionKind kind;
    std::uint32_t address;
    std::uint32_t length;
    std::string label; ///< "section 3 (configuration, 39 bytes)"
    char letter;       ///< of a section, the same in the picture and in the list under it
};

/// A flash area as a picture: rows of equal pieces of flash, from the top, each piece as what stands in it.
class FlashMap {
public:
    FlashMap(const FlashImage& image, const FlashSurvey& survey);

    /// In ascending order of the addresses, those of several bytes first.
    [[nodiscard]] const std::vector<Region>& regions() const { return all; }

    /// Rows of characters with the address before each, and a list of what the characters mean.
    [[nodiscard]] std::string text() const;
    /// A drawing with the title above, addresses before the rows, a caption on each stretch that is wide enough, the rest
    /// as tooltips, and below how much a row is and what the colours mean.
    [[nodiscard]] std::string svg(const std::string& title) const;

    /// A PNG file's bytes: a square of colour for each piece, addresses, title and legend as above.
    /// \throws Failure when it cannot be encoded
    [[nodiscard]] std::string png(const std::string& title) const;

private:
    void add(RegionKind kind, std::uint64_t address, std::uint64_t length, std::string label, char letter);
    /// The region that each of so many equal pieces shows; null for one that is free.
    [[nodiscard]] std::vector<const Region*> cells(std::size_t count) const;

    FlashArea area;
    std::vector<Region> all;
};

} // namespace Zentara::Host
