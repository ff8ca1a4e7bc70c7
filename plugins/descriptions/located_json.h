#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Zentara::Cameras {

/// A JSON value that knows the line on which it stands.
struct LocatedJson {
    enum class Kind : std::uint8_t {
        Null,
        Bool,
        Whole, ///< a number without sign, point and exponent
        Number,
        Text,
        List,
        Object,
    };

    Kind kind = Kind::Null;
    int line = 1;
    bool truth = false;
    std::uint64_t whole = 0;
    double number = 0; ///< also of a Whole
    std::string text;
    std::string name;               ///< of a member of an object
    std::vector<LocatedJson> items; ///< of a list, or an object's members in the order of the text
};

/// \param source names the text in messages
/// \throws Plugin::ConfigurationPluginException "SOURCE, line N, FIELD: REASON" for a text that is no JSON, names a
///         member of an object twice, has more than 1024 members in one, or is nested deeper than 32 values
[[nodiscard]] LocatedJson parseLocatedJson(const std::string& text, const std::string& source);

} // namespace Zentara::Cameras
