#include "plugins/v4l2/extension_units.h"

#include <cerrno>
#include <linux/usb/video.h>
#include <linux/uvcvideo.h>

#include <zentara/io/extension_unit_query.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

namespace Zentara::V4l2 {

using Utils::Format;

namespace {

constexpr std::uint32_t largestNumber = 255; // of a unit or selector

const char* nameOf(std::uint8_t query) {
    switch (query) {
    case UVC_SET_CUR:
        return "set";
    case UVC_GET_CUR:
        return "get";
    case UVC_GET_MIN:
        return "get the minimum of";
    case UVC_GET_MAX:
        return "get the maximum of";
    case UVC_GET_RES:
        return "get the step of";
    case UVC_GET_DEF:
        return "get the default of";
    case UVC_GET_INFO:
        return "ask what can be done with";
    default:
        return "ask for the length of";
    }
}

/// What an error of a transfer means, beside what errors mean everywhere. Null: nothing more.
const char* meaningOf(int error) {
    switch (error) {
    case ENOENT:
        return "the camera has no such unit or control";
    case ENOBUFS:
        return "the control has another length, or the camera did not say which";
    case EACCES: // of newer kernels; of older ones the other
    case EILSEQ:
        return "the camera is in the wrong state for it";
    case EREMOTE:
        return "the camera has too little power for it";
    case ERANGE:
        return "the value is out of the camera's range";
    case EINVAL:
        return "the camera does not take the value";
    case EBADRQC:
        return "the control does not do that";
    case EBUSY:
        return "the camera is not ready";
    case EIO:
    case EPIPE:
        return "the camera refused it";
    default:
        return nullptr;
    }
}

[[noreturn]] void failTransfer(const DeviceFile& file, const std::string& what, int error) {
    const char* const meaning = meaningOf(error);
    if (meaning == nullptr)
        file.fail(what, error);
    throw Plugin::IOPluginException(Format("%: cannot %: %: %") % file.path() % what % meaning %
                                    Linux::errorWords(error));
}

std::string describe(std::uint8_t query, std::uint32_t unit, std::uint32_t selector) {
    return Format("% control % of unit %") % nameOf(query) % selector % unit;
}

} // namespace

ExtensionUnits::ExtensionUnits(std::shared_ptr<DeviceFile> opened, std::vector<std::string> others,
                               std::vector<std::uint8_t> descriptors)
    : file(std::move(opened)), siblings(std::move(others)), described(std::move(descriptors)),
      camera(Linux::readUsbDescriptors(described)) {}

void ExtensionUnits::requireUnits() const {
    if (described.empty())
        throw Plugin::NotSupportedPluginException(
            Format("%: it is no USB camera, and has no extension units") % file->path());
}

void ExtensionUnits::select(const GUID& guid) {
    requireUnits();
    const Linux::UsbExtensionUnit* const found = camera.find(guid);
    if (found == nullptr)
        throw Plugin::NotSupportedPluginException(
            Format("%: the camera has no extension unit with that identifier; it has %") % file->path() %
            static_cast<unsigned>(camera.units.size()));
    selected = found;
}

ExtensionUnits::Bytes ExtensionUnits::list() const {
    requireUnits();
    Bytes bytes;
    for (const Linux::UsbExtensionUnit& unit : camera.units)
        IO::appendExtensionUnit(bytes, {unit.unit, unit.guid, unit.selectors});
    return bytes;
}

/// The unit that a host means: one that speaks of a controller's usual number means the unit that it chose.
std::uint32_t ExtensionUnits::unitFor(std::uint32_t unit) const {
    const bool known = unit <= largestNumber && camera.find(static_cast<std::uint8_t>(unit)) != nullptr;
    return known || selected == nullptr ? unit : selected->unit;
}

int ExtensionUnits::query(const DeviceFile& through, const Control& control, std::uint8_t kind,
                          Bytes& bytes) const {
    uvc_xu_control_query question{};
    question.unit = static_cast<std::uint8_t>(control.first);
    question.selector = static_cast<std::uint8_t>(control.second);
    question.query = kind;
    question.size = static_cast<std::uint16_t>(bytes.size());
    question.data = bytes.data();
    return through.control(UVCIOC_CTRL_QUERY, question);
}

/// Asks for a control's length through one node after the other, until it is there.
std::shared_ptr<DeviceFile> ExtensionUnits::findNode(const Control& control, Bytes& length) {
    const auto known = nodes.find(control.first);
    std::shared_ptr<DeviceFile> node = known == nodes.end() ? file : known->second;
    int result = query(*node, control, UVC_GET_LEN, length);
    for (auto other = siblings.begin(); result == -ENOENT && known == nodes.end() && other != siblings.end();
         ++other) {
        if (*other == file->path())
            continue;
        const auto next = std::make_shared<DeviceFile>(file->sharedSystem(), *other);
        const int answer = query(*next, control, UVC_GET_LEN, length);
        if (answer != -ENOENT && answer != -ENOTTY) {
            node = next;
            result = answer;
        }
    }
    if (result < 0)
        failTransfer(*node, describe(UVC_GET_LEN, control.first, control.second), -result);
    nodes[control.first] = node;
    return node;
}

std::uint16_t ExtensionUnits::length(std::uint32_t unit, std::uint32_t selector) {
    requireUnits();
    const Control control{unitFor(unit), selector};
    if (control.first > largestNumber || selector == 0 || selector > largestNumber)
        throw Plugin::ArgumentPluginException(
            Format("%: there is no control % of unit %; both go up to 255") % file->path() % selector % unit);
    const auto known = lengths.find(control);
    if (known != lengths.end())
        return known->second;
    Bytes bytes(2);
    static_cast<void>(findNode(control, bytes));
    const auto count = static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
    if (count != 0)
        lengths[control] = count;
    return count;
}

void ExtensionUnits::transfer(const Control& control, std::uint8_t kind, Bytes& bytes) {
    const std::string what = describe(kind, control.first, control.second);
    const std::size_t all = length(control.first, control.second);
    const std::size_t count = kind == UVC_GET_INFO ? 1 : all;
    if (count == 0)
        throw Plugin::IOPluginException(Format("%: cannot %: it has no bytes") % file->path() % what);
    if (bytes.size() != count)
        throw Plugin::ArgumentPluginException(Format("%: cannot %: it has % bytes, not %") % file->path() %
                                              what % static_cast<unsigned>(count) %
                                              static_cast<unsigned>(bytes.size()));
    const auto node = nodes.find(control.first);
    const DeviceFile& through = node == nodes.end() ? *file : *node->second;
    const int result = query(through, control, kind, bytes);
    if (result >= 0)
        return;
    lengths.erase(control); // the camera may have changed what the control is
    settable.erase(control);
    failTransfer(through, what, -result);
}

void ExtensionUnits::set(std::uint32_t unit, std::uint32_t selector, Bytes bytes) {
    requireUnits();
    transfer({unitFor(unit), selector}, UVC_SET_CUR, bytes);
}

ExtensionUnits::Bytes ExtensionUnits::get(std::uint32_t unit, std::uint32_t selector, std::size_t count,
                                          std::uint8_t kind) {
    requireUnits();
    Bytes bytes(count);
    transfer({unitFor(unit), selector}, kind, bytes);
    return bytes;
}

bool ExtensionUnits::canBeSet(const Control& control) {
    const auto known = settable.find(control);
    if (known != settable.end())
        return known->second;
    Bytes info(1);
    transfer(control, UVC_GET_INFO, info);
    return settable[control] = (info[0] & UVC_CONTROL_CAP_SET) != 0;
}

ExtensionUnits::Bytes ExtensionUnits::ask(std::uint32_t unit, std::uint32_t selector, Bytes question) {
    requireUnits();
    const Control control{unitFor(unit), selector};
    if (canBeSet(control))
        transfer(control, UVC_SET_CUR, question);
    transfer(control, UVC_GET_CUR, question);
    return question;
}

} // namespace Zentara::V4l2
