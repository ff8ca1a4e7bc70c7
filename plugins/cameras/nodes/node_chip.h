#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <zentara/core/node_descriptor.h>

#include "plugins/descriptions/controller.h"

namespace Zentara::IO {
class VideoDeviceProxy;
}

namespace Zentara::Cameras {

/// The controller behind a node's device, whichever it is. Throws what the chip throws. Safe.
class NodeChip {
public:
    /// Binds the chip to the proxy, which must outlive the result.
    [[nodiscard]] static std::unique_ptr<NodeChip> create(ChipKind kind, IO::VideoDeviceProxy& proxy);

    virtual ~NodeChip() = default;
    NodeChip(const NodeChip&) = delete;
    NodeChip& operator=(const NodeChip&) = delete;

    /// Sends the requests in their order; null is an empty list.
    virtual void send(const Core::RequestList* requests) = 0;
    virtual void send(const Utils::SmartPtr<IO::xuRequest>& request) = 0;

    /// A register of the time-of-flight controller.
    [[nodiscard]] virtual std::uint16_t readRegister(std::uint32_t address) = 0;

    /// Bytes of the camera's configuration memory, in which the storage lies.
    [[nodiscard]] virtual std::vector<std::uint8_t> readMemory(std::uint32_t address,
                                                               std::uint32_t length) = 0;

    /// The firmware versions of bridge (0 where it tells none) and time-of-flight controller.
    [[nodiscard]] virtual std::uint32_t bridgeVersion() = 0;
    [[nodiscard]] virtual std::uint16_t tofVersion() = 0;

protected:
    NodeChip() = default;
};

} // namespace Zentara::Cameras
