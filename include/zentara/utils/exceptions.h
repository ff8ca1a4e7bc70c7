#pragma once

#include <exception>
#include <string>

#include <zentara/export.h>

namespace Zentara::Utils {

/// Root of the utilities' exceptions. Only its subclasses are thrown, by value; each is a kind to catch by:
///
/// - USystemException: a call of the operating system failed, other than input and output;
/// - UIOException: reading or writing a file, a pipe, a device or a byte stream failed;
/// - UInvalidOperationException: the operation is not allowed in the present state;
/// - UNullMessageException: an empty message arrived where one was required;
/// - UFormatException: a format string, or a number in a text, could not be parsed.
///
/// Plug-in and device failures have a tree of their own, rooted at PluginException.
class ZENTARA_API UException : public std::exception {
public:
    UException(const UException& other);
    UException& operator=(const UException& other);
    ~UException() override;

    /// The message. The text lives as long as the exception.
    const char* what() const noexcept override;
    /// A copy of the message.
    std::string message() const;

protected:
    UException();
    explicit UException(std::string message);

private:
    std::string text;
};

/// A call of the operating system failed, other than input and output.
class ZENTARA_API USystemException : public UException {
public:
    explicit USystemException(std::string message);
    /// The message is formatError(error, message). \param error the system's number
    USystemException(long error, std::string message);
    USystemException(const USystemException& other);
    USystemException& operator=(const USystemException& other);
    ~USystemException() override;
};

/// Reading or writing a file, a pipe, a device or a byte stream failed.
class ZENTARA_API UIOException : public UException {
public:
    explicit UIOException(std::string message);
    UIOException(const UIOException& other);
    UIOException& operator=(const UIOException& other);
    ~UIOException() override;

    /// An exception whose message is formatLastError(message). Call it on the thread whose call just failed.
    static UIOException fromLastError(std::string message);
};

/// The operation is not allowed in the present state.
class ZENTARA_API UInvalidOperationException : public UException {
public:
    explicit UInvalidOperationException(std::string message);
    UInvalidOperationException(const UInvalidOperationException& other);
    UInvalidOperationException& operator=(const UInvalidOperationException& other);
    ~UInvalidOperationException() override;
};

/// An empty message arrived where one was required.
class ZENTARA_API UNullMessageException : public UException {
public:
    /// The message is "NULL message received".
    UNullMessageException();
    UNullMessageException(const UNullMessageException& other);
    UNullMessageException& operator=(const UNullMessageException& other);
    ~UNullMessageException() override;
};

/// A format string, or a number in a text, could not be parsed.
class ZENTARA_API UFormatException : public UException {
public:
    explicit UFormatException(std::string message);
    UFormatException(const UFormatException& other);
    UFormatException& operator=(const UFormatException& other);
    ~UFormatException() override;
};

/// The system's text for the calling thread's last error, without its number; empty for an unknown one.
/// Like the two formatLast... functions it must be called on the failing thread before any other system call.
ZENTARA_API std::string getLastError();

/// "MESSAGE (TEXT)" with the text of getLastError().
ZENTARA_API std::string formatLastError(std::string message);

/// "MESSAGE (error 0xNUMBER: TEXT)", or "MESSAGE (error 0xNUMBER)" for a number that the system does not
/// know. The number prints as unsigned 32 bits. Safe.
ZENTARA_API std::string formatError(long error, std::string message);

/// "MESSAGE (TEXT)" with the text of the calling thread's last socket error.
ZENTARA_API std::string formatLastWSAError(std::string message);

} // namespace Zentara::Utils
