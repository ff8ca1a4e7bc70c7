#include <zentara/host/stream_info.h>

namespace Zentara::Host {

std::string CameraInfo::label() const {
    return name + (name.empty() || serial.empty() ? "" : " ") +
           (name.empty() && serial.empty() ? path : serial);
}

std::string CameraInfo::shortLabel() const { return serial.empty() ? label() : serial; }

const NodeInfo* CameraInfo::node(Kind kind) const noexcept {
    for (const NodeInfo& one : nodes) {
        if (one.kind == kind)
            return &one;
    }
    return nullptr;
}

std::string CameraInfo::label(Kind kind) const {
    const NodeInfo* const delivers = node(kind);
    if (delivers == nullptr || delivers->name.empty())
        return label();
    return delivers->name + (serial.empty() ? "" : " ") + serial;
}

const char* sourceName(Source source) noexcept {
    switch (source) {
    case Source::None:
        return "none";
    case Source::Camera:
        return "camera";
    case Source::Description:
        return "description";
    case Source::Failure:
        return "failure";
    case Source::Unknown:
        return "unknown";
    }
    return "?";
}

} // namespace Zentara::Host
