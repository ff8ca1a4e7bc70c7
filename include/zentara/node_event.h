#pragma once

#include <cstdint>
#include <string>

#include <zentara/core/profile.h>
#include <zentara/hardware_ids.h>
#include <zentara/node_type.h>

namespace Zentara {

/// Describes one node of a camera (its depth, colour or audio stream) as an enumerator found it on the bus.
/// Devices and nodes are initialised with it and copy what they need. Texts are UTF-8, as the bus and the description
/// give them: who shows one makes it fit for showing. Two events are of one node when their paths are equal. A
/// copyable value that owns its texts. Separate.
struct NodeEvent {
    NodeType nodeType = NodeType_NONE;
    Core::Profile profile = Core::Profile_DEFAULT; ///< of its description
    std::string path;           ///< how the back-end opens the device; unique while it is plugged in
    std::string name;           ///< for people
    std::string serialNumber;   ///< the camera's; empty when it tells none
    std::uint32_t vendorId = 0; ///< these four say which description is its own: see `HardwareIDs`
    std::uint32_t productId = 0;
    std::uint32_t revision = 0;
    std::uint32_t interfaceNumber = 0;
    std::uint32_t busNumber = 0;     ///< where it is plugged in, in the bus's own numbers: which bus
    std::uint32_t deviceAddress = 0; ///< its address there; maybe another one after each plugging in
    std::uint32_t portNumber = 0;    ///< the port that it is plugged into
    std::uint32_t deviceIndex = 0;   ///< counts the cameras of one kind, from 0
    std::uint32_t nodeIndex = 0;     ///< counts the nodes of one camera, from 0
    std::string parentPath;          ///< the same for all nodes of one camera

    /// The four identifying values, by which a store selects a description.
    [[nodiscard]] HardwareIDs hardwareIds() const { return {vendorId, productId, revision, interfaceNumber}; }

    friend bool operator==(const NodeEvent&, const NodeEvent&) = default;
};

} // namespace Zentara
