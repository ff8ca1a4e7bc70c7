#include <zentara/io/thread_requests.h>

namespace Zentara::IO {

threadInitializeRequest::threadInitializeRequest(AVDeviceInterface* device)
    : deviceRequest(device, RequestType_THREAD_INITIALIZE) {}
threadInitializeRequest::~threadInitializeRequest() = default;

threadUninitializeRequest::threadUninitializeRequest(AVDeviceInterface* device)
    : deviceRequest(device, RequestType_THREAD_UNINITIALIZE) {}
threadUninitializeRequest::~threadUninitializeRequest() = default;

} // namespace Zentara::IO
