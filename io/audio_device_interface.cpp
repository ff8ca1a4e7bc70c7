#include <zentara/io/audio_device_interface.h>

namespace Zentara::IO {

AudioDeviceInterface::AudioDeviceInterface(GUID guid) : AVDeviceInterface(getImplType(), guid) {}

AudioDeviceInterface::~AudioDeviceInterface() = default;

Core::ImplType AudioDeviceInterface::getImplType() { return Core::ImplType_AUDIO_DEVICE; }

} // namespace Zentara::IO
