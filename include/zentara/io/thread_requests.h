#pragma once

#include <zentara/io/device_request.h>

namespace Zentara::IO {

/// Prepares the executing thread for the device. Without arguments or results, as the next one.
class ZENTARA_API threadInitializeRequest : public deviceRequest {
public:
    explicit threadInitializeRequest(AVDeviceInterface* device);

protected:
    ~threadInitializeRequest() override;
};

/// Takes the executing thread's preparation back.
class ZENTARA_API threadUninitializeRequest : public deviceRequest {
public:
    explicit threadUninitializeRequest(AVDeviceInterface* device);

protected:
    ~threadUninitializeRequest() override;
};

} // namespace Zentara::IO
