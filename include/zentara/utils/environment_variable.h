#pragma once

#include <exception>
#include <memory>
#include <string>

#include <zentara/export.h>

namespace Zentara::Utils {

/// One variable of the process environment, with a cached copy of its value (UTF-8) that is read on first
/// use. Separate; and as everywhere, no other thread may change the environment meanwhile.
class ZENTARA_API EnvironmentVariable {
public:
    /// The value is missing or no whole number. Carries no message of its own.
    class ZENTARA_API ConversionException : public std::exception {
    public:
        ConversionException();
        ConversionException(const ConversionException& other);
        ConversionException& operator=(const ConversionException& other);
        ~ConversionException() override;
    };

    /// Reads nothing yet. \param name UTF-8
    explicit EnvironmentVariable(std::string name);
    ~EnvironmentVariable();
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

    /// Reads the variable again.
    void update();

    /// The cached value, null when the variable is not set. The text lives until the next update() or
    /// setValue().
    const char* getValue();

    /// True when the value exists and is not empty.
    bool isDefined();

    /// The value as a number: "0x" begins a hexadecimal and a leading "0" an octal one; leading white space
    /// and a sign are accepted; beyond 32 bits the low 32 bits count. \throws ConversionException when there
    /// is no value or it is not consumed to its end.
    int getIntValue();
    /// The same, with `fallback` in place of the exception.
    int getIntValue(int fallback);

    /// Sets the variable in the process and in the cache. An empty text, or null, removes it. Off Windows the C library
    /// keeps every text that it has not met before until the process ends: what changes often belongs into a file.
    /// \throws USystemException when the system refuses, as it does for a name that is empty or holds a '='.
    void setValue(const char* value);
    /// Sets the number in decimal.
    void setValue(int value);

private:
    struct Impl;

    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Utils
