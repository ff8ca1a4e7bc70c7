#pragma once

#include <optional>
#include <string>
#include <vector>

#include <zentara/host/flash_content.h>
#include <zentara/host/flash_survey.h>
#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::Host {

/// What came of a change that was tried on a copy in memory.
struct Rehearsal {
    FlashImage image;                ///< as the change leaves the flash
    std::vector<FlashWrite> writes;  ///< in the order in which the library makes them
    std::vector<std::string> losses; ///< what would be lost or wrong; empty when all is as wanted

    struct Refusal {
        Plugin::PluginExceptionType type;
        std::string message;
    };
    std::optional<Refusal> refusal; ///< what the library refused the change with

    [[nodiscard]] bool isGood() const { return losses.empty() && !refusal; }
};

/// Brings a copy of the image to the wanted content with the library's own code: erases what is not wanted,
/// then writes what differs in ascending order of the uids. Then the copy is loaded afresh and verified
/// whole: its content is exactly the wanted one, and no header, link or place is wrong.
/// \param formats  whether an image that holds no storage yet is formatted first.
[[nodiscard]] Rehearsal rehearse(const FlashImage& before, const FlashContent& wanted, bool formats);

/// The area with the chunk size that its storage was formatted with, if one can be loaded.
[[nodiscard]] FlashArea areaOf(const FlashSurvey& survey);

/// The wanted content in a freshly formatted area, verified in the same way; nothing is written anywhere. Some sizes cannot
/// stand together in some chunk sizes; then a larger chunk size is tried.
[[nodiscard]] Rehearsal placeAnew(FlashArea area, const FlashContent& wanted);

/// The same in the area of an image, and what has to be written for it.
[[nodiscard]] Rehearsal rebuild(const FlashImage& before, const FlashContent& wanted);

} // namespace Zentara::Host
