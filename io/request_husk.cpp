#include "io/request_husk.h"

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/depth_base_configuration.h>
#include <zentara/io/audio_requests.h>
#include <zentara/io/streaming_requests.h>

#include "io/device_request_impl.h"

namespace Zentara::IO {

void RequestHusk::mark(deviceRequest& request) noexcept { request.impl->isOurs = true; }

void RequestHusk::forsake(deviceRequest& request) noexcept { request.impl->forsake(); }

void RequestHusk::make(deviceRequest& request) noexcept {
    // The device comes last: objects of its own classes, such as a configuration that it made, need its library to be
    // destroyed.
    if (auto* const owned = dynamic_cast<OwnedMemory*>(&request))
        owned->giveBack();
    if (auto* const depth = dynamic_cast<enableDepthRequest*>(&request))
        depth->configuration = nullptr;
    if (auto* const color = dynamic_cast<enableColorRequest*>(&request)) {
        color->configuration = nullptr;
        color->controls = {};
    }
    if (auto* const audio = dynamic_cast<enableAudioRequest*>(&request))
        audio->configuration = nullptr;
    if (auto* const audio = dynamic_cast<getAudioDefaultConfigurationsRequest*>(&request))
        audio->configuration = nullptr;
    // Another author's request may be asked for its signals by whoever holds it.
    if (request.impl->isOurs)
        request.impl->meeting.reset();
    request.impl->device = nullptr;
}

} // namespace Zentara::IO
