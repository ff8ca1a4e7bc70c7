#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <zentara/host/export.h>
#include <zentara/host/flash_content.h>
#include <zentara/host/picture.h>

namespace Zentara::Host {

// The tables of distortion correction that a storage, or a correction file, holds. Values and functions of values: safe.

/// The correction table of one modulation frequency. A plain value that owns its bytes. Separate.
struct CorrectionTable {
    std::uint16_t megahertz = 0; ///< the number as stored, whose unit the format does not say
    Bytes values;                ///< row by row; the format does not say how long a row is

    /// What the values are like, in their own unit: 0 to 255.
    struct Statistics {
        unsigned least = 0;
        unsigned greatest = 0;
        double mean = 0;
        double deviation = 0; ///< the root of the mean square distance from the mean
    };
    /// All zero for a table without values.
    [[nodiscard]] ZENTARA_HOST_API Statistics statistics() const;
};

/// What a section of distortion correction holds. A plain value. Separate.
struct CorrectionSection {
    std::uint16_t uid = 0;               ///< the section's number
    std::uint16_t version = 0;           ///< of the tables, as their author counts
    std::uint32_t timeOfLastWrite = 0;   ///< seconds since 1970, UTC
    unsigned numberOfSets = 0;           ///< as the header says; there may be more tables, or fewer
    std::string serialId;                ///< of the camera that the tables were measured on
    std::vector<CorrectionTable> tables; ///< in flash order
};

/// The sections of distortion correction, read by the library; one that it cannot read is left out.
[[nodiscard]] ZENTARA_HOST_API std::vector<CorrectionSection> correctionsOf(const FlashContent& content);

/// As a JSON list: uid, version, timeOfLastWrite, numberOfSets, serialId and tables, each with modulationFrequency,
/// values (how many), least, greatest, mean and deviation.
[[nodiscard]] ZENTARA_HOST_API std::string toJson(const std::vector<CorrectionSection>& corrections);
/// The same of one for people, a line for it and one for each table.
[[nodiscard]] ZENTARA_HOST_API std::string correctionText(const CorrectionSection& correction);

/// A table in colours, each value a square.
struct CorrectionPicture {
    Picture picture;
    std::size_t width = 0;  ///< values in a row
    std::size_t height = 0; ///< rows
};

/// Red for the least value, over yellow and green, to blue for the greatest, black for what the last row lacks; the
/// title above, the scale beside it.
/// \param width  values in a row; 0: 4 to 3 where the number of values allows it, as the cameras' pictures are, else a
/// square \param scale  pixels of a value's side; 0: so many that the picture has about 320
/// \throws Failure (Usage) for more than 64 million pixels, or a table without values
[[nodiscard]] ZENTARA_HOST_API CorrectionPicture pictureOf(const CorrectionTable& table,
                                                           const std::string& title, std::size_t width = 0,
                                                           std::size_t scale = 0);

} // namespace Zentara::Host
