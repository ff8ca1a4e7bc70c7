#include "host/cameras/mode_choice.h"

#include <algorithm>

#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

#include "host/attempt.h"

namespace Zentara::Host {

using Utils::Format;

namespace {

/// "320x240" or "320x240@60".
bool isSize(const std::string& word) {
    constexpr const char* digits = "0123456789";
    const std::size_t cross = word.find_first_not_of(digits);
    if (cross == 0 || cross == std::string::npos || word[cross] != 'x')
        return false;
    const std::size_t end = word.find_first_not_of(digits, cross + 1);
    if (end == cross + 1)
        return false;
    return end == std::string::npos || (word[end] == '@' && end + 1 < word.size() &&
                                        word.find_first_not_of(digits, end + 1) == std::string::npos);
}

bool hasSize(const StreamDescription& mode, const std::string& size) {
    const std::string whole = mode.modeSize();
    return whole == size || whole.substr(0, whole.find('@')) == size;
}

std::string listOf(const std::vector<StreamDescription>& modes) {
    std::string text;
    for (const StreamDescription& mode : modes)
        text += std::string(text.empty() ? "" : ", ") + mode.modeName() + " (" + mode.modeSize() + ")";
    return text.empty() ? "none" : text;
}

void set(std::string& wish, const std::string& word) {
    if (word.empty())
        throw Failure(Failure::Usage, "the name of the mode is empty");
    if (!wish.empty())
        throw Failure(Failure::Usage, Format("--mode: % and % are for the same streams") % wish % word);
    wish = word;
}

} // namespace

ModeChoice::ModeChoice(const std::vector<std::string>& words) {
    for (const std::string& word : words) {
        const std::string lower = Utils::toLower(word);
        if (isSize(lower))
            set(size, lower);
        else if (lower.rfind("co", 0) == 0)
            set(color, lower);
        else if (lower.rfind("au", 0) == 0)
            set(audio, lower);
        else
            set(depth, lower);
    }
}

std::size_t ModeChoice::among(const std::vector<StreamDescription>& modes, const std::string& label) const {
    const NodeType type = modes.empty() ? NodeType_NONE : modes.front().node.nodeType;
    const std::string& name = nameFor(type);
    const bool bySize = name.empty() && !size.empty() && type != NodeType_AUDIO;
    if (name.empty() && !bySize)
        return 0;
    const auto found = std::find_if(modes.begin(), modes.end(), [&](const StreamDescription& mode) {
        return bySize ? hasSize(mode, size) : Utils::toLower(mode.modeName()) == name;
    });
    if (found == modes.end())
        throw Failure(Failure::Usage,
                      Format("% has no mode %; it has %") % label % (bySize ? size : name) % listOf(modes));
    return static_cast<std::size_t>(found - modes.begin());
}

const std::string& ModeChoice::nameFor(NodeType type) const {
    static const std::string none;
    switch (type) {
    case NodeType_DEPTH:
        return depth;
    case NodeType_COLOR:
        return color;
    case NodeType_AUDIO:
        return audio;
    default:
        return none;
    }
}

} // namespace Zentara::Host
