#include <zentara/host/mode.h>

#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

namespace Zentara::Host {

using Utils::Format;

const char* kindName(Kind kind) noexcept {
    switch (kind) {
    case Kind::Depth:
        return "depth";
    case Kind::Color:
        return "color";
    case Kind::Audio:
        return "audio";
    }
    return "?";
}

std::string Mode::text() const {
    if (kind == Kind::Audio)
        return Format("% channels, % bits, % Hz") % channels % bitsPerSample % rate;
    return Format("%x%@%") % width % height % rate;
}

bool Mode::isCalled(const std::string& word) const {
    const std::string lower = Utils::toLower(word);
    if (lower == Utils::toLower(name))
        return true;
    const std::string whole = text();
    return kind != Kind::Audio && (lower == whole || lower == whole.substr(0, whole.find('@')));
}

} // namespace Zentara::Host
