#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include <zentara/export.h>

/// The failures that plug-ins and the device layer report to a host: one base that carries a kind and a
/// message, and nine subclasses, one per kind. Thrown by value, caught by reference.
///
/// Which kind to throw:
/// - Streaming: a running stream broke down, or a frame could not be delivered;
/// - Configuration: a configuration names something that this camera does not have, or not together;
/// - Timeout: the operation was right and began, but did not end in its time; it may be tried again;
/// - Argument: the caller's argument is wrong whatever the state of the device;
/// - IO: the device or the storage failed, or answered with something unexpected;
/// - NotSupported: this implementation never offers the operation; trying again is no use;
/// - Initialization: an object could not be brought to life: a plug-in, a device, a stored table;
/// - InvalidOperation: the operation exists, but not in the present state: closed, streaming, shutting down;
/// - UnauthorizedAccess: the data is there and may be read, but not written.
///
/// A plug-in throws these types and no type of its own: an exception may live longer than the plug-in that
/// threw it, so all its code is in this library, which also throws it anew where it leaves a plug-in
/// (`callPlugin` in zentara/plugin/call_plugin.h).
namespace Zentara::Plugin {

/// The kind of a plug-in exception, as it is stored and passed between threads. Any 32-bit value is legal;
/// the ones below have a class.
enum PluginExceptionType : std::int32_t {
    PluginExceptionType_STREAMING = 0,
    PluginExceptionType_CONFIGURATION = 1,
    PluginExceptionType_TIMEOUT = 2,
    PluginExceptionType_ARGUMENT = 3,
    PluginExceptionType_IO = 4,
    PluginExceptionType_NOT_SUPPORTED = 5,
    PluginExceptionType_INITIALIZATION = 6,
    PluginExceptionType_INVALID_OPERATION = 7,
    PluginExceptionType_UNAUTHORIZED_ACCESS = 8,
};

/// What all nine have in common. A catcher that knows only this class recovers kind and message from it, also
/// from a copy. Constructing the base itself logs nothing.
class ZENTARA_API PluginException : public std::exception {
public:
    PluginException(PluginExceptionType type, const std::string& message);
    PluginException(const PluginException& other);
    PluginException& operator=(const PluginException& other);
    ~PluginException() override;

    /// The message as it was given, without the prefix of the log line. Valid as long as this object.
    [[nodiscard]] const char* what() const noexcept override;

    /// A copy of the message.
    [[nodiscard]] std::string message() const;
    [[nodiscard]] PluginExceptionType type() const noexcept;

private:
    std::string text;
    PluginExceptionType kind;
};

/// A running stream broke down. Constructing it logs the warning "Streaming Exception: MESSAGE", so every
/// failure leaves one line in the log even if it is caught later; copies log nothing. The same holds for the
/// eight classes below, each with its own prefix.
class ZENTARA_API StreamingPluginException : public PluginException {
public:
    explicit StreamingPluginException(const std::string& message);
    StreamingPluginException(const StreamingPluginException& other);
    StreamingPluginException& operator=(const StreamingPluginException& other);
    ~StreamingPluginException() override;
};

/// A configuration that this camera cannot take. Logs "Configuration Exception: MESSAGE".
class ZENTARA_API ConfigurationPluginException : public PluginException {
public:
    explicit ConfigurationPluginException(const std::string& message);
    ConfigurationPluginException(const ConfigurationPluginException& other);
    ConfigurationPluginException& operator=(const ConfigurationPluginException& other);
    ~ConfigurationPluginException() override;
};

/// The operation did not end in its time. Logs "Timeout Exception: MESSAGE".
class ZENTARA_API TimeoutPluginException : public PluginException {
public:
    explicit TimeoutPluginException(const std::string& message);
    TimeoutPluginException(const TimeoutPluginException& other);
    TimeoutPluginException& operator=(const TimeoutPluginException& other);
    ~TimeoutPluginException() override;
};

/// A wrong argument. Logs "Argument Exception: MESSAGE".
class ZENTARA_API ArgumentPluginException : public PluginException {
public:
    explicit ArgumentPluginException(const std::string& message);
    ArgumentPluginException(const ArgumentPluginException& other);
    ArgumentPluginException& operator=(const ArgumentPluginException& other);
    ~ArgumentPluginException() override;
};

/// The device or the storage failed. Logs "I/O Exception: MESSAGE".
class ZENTARA_API IOPluginException : public PluginException {
public:
    explicit IOPluginException(const std::string& message);
    IOPluginException(const IOPluginException& other);
    IOPluginException& operator=(const IOPluginException& other);
    ~IOPluginException() override;
};

/// This implementation never offers the operation. Logs "Not Supported Exception: MESSAGE".
class ZENTARA_API NotSupportedPluginException : public PluginException {
public:
    explicit NotSupportedPluginException(const std::string& message);
    NotSupportedPluginException(const NotSupportedPluginException& other);
    NotSupportedPluginException& operator=(const NotSupportedPluginException& other);
    ~NotSupportedPluginException() override;
};

/// Something could not be brought to life. Logs "Initialization Exception: MESSAGE".
class ZENTARA_API InitializationPluginException : public PluginException {
public:
    explicit InitializationPluginException(const std::string& message);
    InitializationPluginException(const InitializationPluginException& other);
    InitializationPluginException& operator=(const InitializationPluginException& other);
    ~InitializationPluginException() override;
};

/// Not in the present state. Logs "Invalid Operation Exception: MESSAGE".
class ZENTARA_API InvalidOperationPluginException : public PluginException {
public:
    explicit InvalidOperationPluginException(const std::string& message);
    InvalidOperationPluginException(const InvalidOperationPluginException& other);
    InvalidOperationPluginException& operator=(const InvalidOperationPluginException& other);
    ~InvalidOperationPluginException() override;
};

/// Data that may not be written. Logs "Unauthorized Access Exception: MESSAGE".
class ZENTARA_API UnauthorizedAccessPluginException : public PluginException {
public:
    explicit UnauthorizedAccessPluginException(const std::string& message);
    UnauthorizedAccessPluginException(const UnauthorizedAccessPluginException& other);
    UnauthorizedAccessPluginException& operator=(const UnauthorizedAccessPluginException& other);
    ~UnauthorizedAccessPluginException() override;
};

/// Throws the subclass that belongs to `type`, made from `message`; the means by which a failure stored as
/// plain data is thrown again. A type outside 0 to 8 throws nothing: the function returns. Safe.
ZENTARA_API void throwPluginException(PluginExceptionType type, const std::string& message);

} // namespace Zentara::Plugin
