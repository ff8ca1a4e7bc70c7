#include <zentara/plugin/plugin_exceptions.h>

#include <zentara/utils/format.h>
#include <zentara/utils/kv_logger.h>

#include "utils/visible_text.h"

namespace Zentara::Plugin {

namespace {

/// Without a logger nothing is logged. A failure here would replace the exception that is being made.
void logWarning(const char* format, const std::string& message) noexcept {
    Utils::KVLogger* logger = Utils::KVLogger::instance();
    if (!logger)
        return;
    try {
        // A message may hold what a device sent: a line end in it would make a line of its own in the log.
        logger->warning(Utils::Format(format) % Utils::visibleText(message));
    } catch (...) {
    }
    Utils::KVLogger::release();
}

} // namespace

PluginException::PluginException(PluginExceptionType type, const std::string& message)
    : text(message), kind(type) {}

PluginException::PluginException(const PluginException& other) = default;
PluginException& PluginException::operator=(const PluginException& other) = default;
PluginException::~PluginException() = default;

const char* PluginException::what() const noexcept { return text.c_str(); }
std::string PluginException::message() const { return text; }
PluginExceptionType PluginException::type() const noexcept { return kind; }

// Everything that a flying exception needs is defined here, never in the plug-in that threw it.
// NOLINTBEGIN(bugprone-macro-parentheses): a class's name takes none
#define ZENTARA_PLUGIN_EXCEPTION(Class, TYPE, FORMAT)                                                        \
    Class::Class(const std::string& message) : PluginException(PluginExceptionType_##TYPE, message) {        \
        logWarning(FORMAT, message);                                                                         \
    }                                                                                                        \
    Class::Class(const Class& other) = default;                                                              \
    Class& Class::operator=(const Class& other) = default;                                                   \
    Class::~Class() = default;
// NOLINTEND(bugprone-macro-parentheses)

ZENTARA_PLUGIN_EXCEPTION(StreamingPluginException, STREAMING, "Streaming Exception: %")
ZENTARA_PLUGIN_EXCEPTION(ConfigurationPluginException, CONFIGURATION, "Configuration Exception: %")
ZENTARA_PLUGIN_EXCEPTION(TimeoutPluginException, TIMEOUT, "Timeout Exception: %")
ZENTARA_PLUGIN_EXCEPTION(ArgumentPluginException, ARGUMENT, "Argument Exception: %")
ZENTARA_PLUGIN_EXCEPTION(IOPluginException, IO, "I/O Exception: %")
ZENTARA_PLUGIN_EXCEPTION(NotSupportedPluginException, NOT_SUPPORTED, "Not Supported Exception: %")
ZENTARA_PLUGIN_EXCEPTION(InitializationPluginException, INITIALIZATION, "Initialization Exception: %")
ZENTARA_PLUGIN_EXCEPTION(InvalidOperationPluginException, INVALID_OPERATION, "Invalid Operation Exception: %")
ZENTARA_PLUGIN_EXCEPTION(UnauthorizedAccessPluginException, UNAUTHORIZED_ACCESS,
                         "Unauthorized Access Exception: %")

#undef ZENTARA_PLUGIN_EXCEPTION

void throwPluginException(PluginExceptionType type, const std::string& message) {
    // Without a default, so that the compiler names a kind that is missing. A number that is no kind throws nothing.
    switch (type) {
    case PluginExceptionType_STREAMING:
        throw StreamingPluginException(message);
    case PluginExceptionType_CONFIGURATION:
        throw ConfigurationPluginException(message);
    case PluginExceptionType_TIMEOUT:
        throw TimeoutPluginException(message);
    case PluginExceptionType_ARGUMENT:
        throw ArgumentPluginException(message);
    case PluginExceptionType_IO:
        throw IOPluginException(message);
    case PluginExceptionType_NOT_SUPPORTED:
        throw NotSupportedPluginException(message);
    case PluginExceptionType_INITIALIZATION:
        throw InitializationPluginException(message);
    case PluginExceptionType_INVALID_OPERATION:
        throw InvalidOperationPluginException(message);
    case PluginExceptionType_UNAUTHORIZED_ACCESS:
        throw UnauthorizedAccessPluginException(message);
    }
}

} // namespace Zentara::Plugin
