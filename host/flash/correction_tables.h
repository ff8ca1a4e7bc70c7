#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/flash/flash_content.h"
#include "host/flash/flash_survey.h"
#include "host/json.h"

namespace Zentara::Host {

/// The correction table of one modulation frequency.
struct CorrectionTable {
    std::uint16_t frequency = 0;
    Bytes values;

    struct Statistics {
        unsigned least = 0;
        unsigned greatest = 0;
        double mean = 0;
        double deviation = 0; ///< the root of the mean square distance from the mean
    };
    [[nodiscard]] Statistics statistics() const;
};

/// What a section of distortion correction holds.
struct CorrectionFile {
    std::uint16_t uid = 0;
    std::uint16_t version = 0;
    std::uint32_t timeOfLastWrite = 0;
    unsigned numberOfSets = 0;
    std::string serialId;
    std::vector<CorrectionTable> tables;
};

/// The sections that the chain leads to.
[[nodiscard]] FlashContent loadedSections(const FlashSurvey& survey);

/// Those of distortion correction, read by the library.
[[nodiscard]] std::vector<CorrectionFile> correctionsOf(const FlashContent& content);

[[nodiscard]] Json correctionsJson(const std::vector<CorrectionFile>& corrections);
[[nodiscard]] std::string correctionText(const CorrectionFile& correction);

} // namespace Zentara::Host
