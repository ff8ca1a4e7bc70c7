#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include <zentara/camera_intrinsics.h>
#include <zentara/extrinsic_parameters_internal.h>
#include <zentara/four_cc.h>
#include <zentara/hardware_ids.h>
#include <zentara/io/xu_request.h>
#include <zentara/rom_element.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara::Core {

/// Requests in the order in which they are sent; none may be null then.
using RequestList = std::vector<Utils::SmartPtr<IO::xuRequest>>;

/// What a descriptor store knows about one node of a camera in one profile. What is absent is not known, which is
/// another thing than an empty list. A copyable value; copies share the requests. Separate.
struct NodeDescriptor {
    HardwareIDs hardwareIds;       ///< the four values by which it is selected
    std::uint64_t firstFlags = 0;  ///< a depth node's capabilities, a colour node's flags
    std::uint64_t secondFlags = 0; ///< a depth node's flags, a colour node's camera-control flags
    FourCC fourCC;                 ///< of the frames that the node's device delivers
    std::unordered_map<std::uint64_t, ROMElement> romElements;           ///< by the element's id
    std::optional<ExtrinsicParametersInternal> defaultExtrinsics;        ///< millimetres
    std::optional<std::vector<CameraIntrinsics>> defaultDepthIntrinsics; ///< one for each image size
    std::optional<std::vector<CameraIntrinsics>> defaultColorIntrinsics; ///< the same of the colour camera
    std::optional<RequestList> preCommonSettings;  ///< sent before those of the configuration
    std::optional<RequestList> postCommonSettings; ///< sent after those of the configuration
    std::optional<RequestList> stopCommonSettings; ///< sent when the stream stops
};

} // namespace Zentara::Core
