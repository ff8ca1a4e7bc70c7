#include <zentara/io/xu_request.h>

namespace Zentara::IO {

xuRequest::xuRequest() = default;
xuRequest::xuRequest(XURequestType type) : requestType(type) {}
xuRequest::xuRequest(const xuRequest&) = default;
xuRequest::~xuRequest() = default;

} // namespace Zentara::IO
