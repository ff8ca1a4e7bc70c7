#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <set>

#include "plugins/simulated/usb/camera_shape.h"
#include "plugins/simulated/usb/control_table.h"
#include "plugins/simulated/usb/extension_unit.h"
#include "plugins/simulated/usb/microphone.h"
#include "plugins/simulated/usb/pictures.h"
#include "plugins/simulated/usb/usb_faults.h"
#include "plugins/simulated/usb/usb_ip.h"
#include "plugins/simulated/usb/video_stream.h"

namespace Zentara::Simulated {

/// A camera as its host's USB stack sees it: descriptors, endpoint 0, and an endpoint for each stream. Bound.
class UsbCamera final {
public:
    /// \param configuration the descriptor to show, usually that of the shape
    /// \param port the controller's; null for a camera without one. It and the pictures outlive this
    UsbCamera(const CameraShape& shape, Bytes configuration, Port* port, const Pictures& pictures,
              UsbFaults faults);

    /// Answers the host until one of the two is gone.
    void serve(UsbCable& cable);

private:
    void take(UsbCable& cable, UsbRequest request);
    void takeControl(UsbCable& cable, const UsbRequest& request);
    [[nodiscard]] std::optional<UsbFaults::Place> placeOf(const Setup& setup) const;
    [[nodiscard]] std::optional<Bytes> answer(const Setup& setup, const Bytes& data);
    [[nodiscard]] std::optional<Bytes> answerStandard(const Setup& setup);
    [[nodiscard]] std::optional<Bytes> answerClass(const Setup& setup, const Bytes& data);
    [[nodiscard]] Bytes descriptorOf(const Setup& setup) const;
    [[nodiscard]] bool isExtension(const Setup& setup) const;
    [[nodiscard]] VideoStream* streamAt(std::size_t index);
    void stopInterface(std::uint8_t number);
    void stopEndpoint(std::uint8_t number);
    void unlink(UsbCable& cable, const UsbCable::Event& event);
    [[nodiscard]] int serveStreams(UsbCable& cable);

    const CameraShape shape;
    const Bytes configuration;
    UsbFaults faults;
    ControlTable controls;
    std::optional<ExtensionUnit> extension;
    std::deque<VideoStream> streams;
    Microphone microphone;
    std::uint8_t reason = 0;            ///< why the last control request was refused
    std::set<std::uint32_t> unanswered; ///< requests that a fault leaves so
};

} // namespace Zentara::Simulated
