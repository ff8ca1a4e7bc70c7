#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include <zentara/guid.h>

#include "plugins/linux/usb_descriptors.h"
#include "plugins/v4l2/device_file.h"

namespace Zentara::V4l2 {

/// The extension units of a camera, reached through its video nodes: a unit answers on the nodes of its own chain alone,
/// and on others it is not there. Used on the device's own thread.
class ExtensionUnits {
public:
    using Bytes = std::vector<std::uint8_t>;

    /// \param file the node that is asked first \param siblings the paths of all nodes of the camera
    ExtensionUnits(std::shared_ptr<DeviceFile> file, std::vector<std::string> siblings,
                   std::vector<std::uint8_t> descriptors);

    /// Looks for a unit.
    /// \throws Plugin::NotSupportedPluginException when the camera's descriptors have none with the identifier
    void select(const GUID& guid);

    /// Bytes of a control, as the camera says, which is asked once.
    /// \throws Plugin::IOPluginException for a unit or control that isn't there
    [[nodiscard]] std::uint16_t length(std::uint32_t unit, std::uint32_t selector);

    /// \throws Plugin::ArgumentPluginException for another number of bytes than the control has; and what transfers end
    ///         with, in words
    void set(std::uint32_t unit, std::uint32_t selector, Bytes bytes);
    /// \param query what is asked for: UVC_GET_CUR and its like
    [[nodiscard]] Bytes get(std::uint32_t unit, std::uint32_t selector, std::size_t count,
                            std::uint8_t query);

    /// Sends a question, then gets the answer to it: on USB a GET carries nothing to the camera. A control that can only be
    /// read is asked with no question; which those are the control itself says, and is asked once.
    [[nodiscard]] Bytes ask(std::uint32_t unit, std::uint32_t selector, Bytes question);

    /// All units, as a host receives them.
    [[nodiscard]] Bytes list() const;

private:
    using Control = std::pair<std::uint32_t, std::uint32_t>; ///< unit and selector

    [[nodiscard]] int query(const DeviceFile& through, const Control& control, std::uint8_t query,
                            Bytes& bytes) const;
    [[nodiscard]] std::shared_ptr<DeviceFile> findNode(const Control& control, Bytes& length);
    void transfer(const Control& control, std::uint8_t query, Bytes& bytes);
    [[nodiscard]] bool canBeSet(const Control& control);
    [[nodiscard]] std::uint32_t unitFor(std::uint32_t unit) const;
    void requireUnits() const;

    const std::shared_ptr<DeviceFile> file;
    const std::vector<std::string> siblings;
    const Bytes described;
    const Linux::UsbCamera camera;
    const Linux::UsbExtensionUnit* selected = nullptr; ///< of `camera`; null until a host chooses one
    /// By unit, the node on which it answers, once that is known. All but `file` are opened for that alone.
    std::map<std::uint32_t, std::shared_ptr<DeviceFile>> nodes;
    std::map<Control, std::uint16_t> lengths; ///< in bytes, that were asked for; none of them 0
    std::map<Control, bool> settable;         ///< of those that were asked
};

} // namespace Zentara::V4l2
