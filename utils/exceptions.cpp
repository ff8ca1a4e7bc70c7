#include <zentara/utils/exceptions.h>

#include <cstdint>

#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

#include "utils/message.h"
#include "utils/platform/error_text.h"

namespace Zentara::Utils {

namespace {

std::string numberedErrorText(std::uint32_t error) {
    const std::string text = removeNewline(Platform::errorText(error));
    if (text.empty())
        return Format("error 0x%{:x}") % error;
    return Format("error 0x%{:x}: %") % error % text;
}

} // namespace

// Copy operations and destructors stand here, so that no plug-in contains code that a flying exception needs.

UException::UException() = default;
UException::UException(std::string message) : text(std::move(message)) {}
UException::UException(const UException& other) = default;
UException& UException::operator=(const UException& other) = default;
UException::~UException() = default;

const char* UException::what() const noexcept { return text.c_str(); }

std::string UException::message() const { return text; }

USystemException::USystemException(std::string message) : UException(std::move(message)) {}
USystemException::USystemException(long error, std::string message)
    : UException(formatError(error, std::move(message))) {}
USystemException::USystemException(const USystemException& other) = default;
USystemException& USystemException::operator=(const USystemException& other) = default;
USystemException::~USystemException() = default;

UIOException::UIOException(std::string message) : UException(std::move(message)) {}
UIOException::UIOException(const UIOException& other) = default;
UIOException& UIOException::operator=(const UIOException& other) = default;
UIOException::~UIOException() = default;

UIOException UIOException::fromLastError(std::string message) {
    return UIOException(formatLastError(std::move(message)));
}

UInvalidOperationException::UInvalidOperationException(std::string message)
    : UException(std::move(message)) {}
UInvalidOperationException::UInvalidOperationException(const UInvalidOperationException& other) = default;
UInvalidOperationException&
UInvalidOperationException::operator=(const UInvalidOperationException& other) = default;
UInvalidOperationException::~UInvalidOperationException() = default;

UNullMessageException::UNullMessageException() : UException("NULL message received") {}
UNullMessageException::UNullMessageException(const UNullMessageException& other) = default;
UNullMessageException& UNullMessageException::operator=(const UNullMessageException& other) = default;
UNullMessageException::~UNullMessageException() = default;

UFormatException::UFormatException(std::string message) : UException(std::move(message)) {}
UFormatException::UFormatException(const UFormatException& other) = default;
UFormatException& UFormatException::operator=(const UFormatException& other) = default;
UFormatException::~UFormatException() = default;

std::string getLastError() { return removeNewline(Platform::lastErrorText()); }

std::string formatLastError(std::string message) {
    // The text is fetched first: building the message may call the system.
    const std::string text = getLastError();
    return formatMessage("% (%)", message, text);
}

std::string formatError(long error, std::string message) {
    return formatMessage("% (%)", message, numberedErrorText(static_cast<std::uint32_t>(error)));
}

std::string formatLastWSAError(std::string message) {
    const std::string text = removeNewline(Platform::errorText(Platform::lastSocketError()));
    return formatMessage("% (%)", message, text);
}

} // namespace Zentara::Utils
