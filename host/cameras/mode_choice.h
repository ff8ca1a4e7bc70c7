#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/cameras/stream_description.h"

namespace Zentara::Host {

/// In which mode each kind of stream is wanted: by a mode's name, as "DEFF2FR60CM0S0", or for pictures by the size of
/// their frames and perhaps the rate, as "320x240" or "320x240@60". A value type.
class ModeChoice {
public:
    /// Nothing is wanted: every node streams in its first mode.
    ModeChoice() = default;

    /// \param words a name each, or one size for depth and colour alike; a name says by its beginning for which kind
    /// it is. For a kind that has both, the name counts.
    /// \throws Failure (Usage), for an empty word, a second size and a second name of one kind
    explicit ModeChoice(const std::vector<std::string>& words);

    /// Whether something is wanted of that kind by name.
    [[nodiscard]] bool names(NodeType type) const { return !nameFor(type).empty(); }

    /// The index among a node's modes, of which the first one is the default.
    /// \param label the node, for the message \throws Failure (Usage), naming the modes when none is the one
    /// that is wanted
    [[nodiscard]] std::size_t among(const std::vector<StreamDescription>& modes,
                                    const std::string& label) const;

private:
    [[nodiscard]] const std::string& nameFor(NodeType type) const;

    std::string depth;
    std::string color;
    std::string audio;
    std::string size;
};

} // namespace Zentara::Host
