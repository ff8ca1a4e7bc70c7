#include <zentara/utils/environment_variable.h>

#include <cstdint>
#include <cstdlib>
#include <optional>

#include <zentara/utils/exceptions.h>

#include "utils/message.h"
#include "utils/platform/environment.h"

namespace Zentara::Utils {

struct EnvironmentVariable::Impl {
    const std::string name;           ///< UTF-8
    std::optional<std::string> value; ///< nothing when the variable is not set
    bool loaded = false;
};

EnvironmentVariable::ConversionException::ConversionException() = default;
EnvironmentVariable::ConversionException::ConversionException(const ConversionException& other) = default;
EnvironmentVariable::ConversionException&
EnvironmentVariable::ConversionException::operator=(const ConversionException& other) = default;
EnvironmentVariable::ConversionException::~ConversionException() = default;

EnvironmentVariable::EnvironmentVariable(std::string name)
    : impl(new Impl{std::move(name), std::nullopt, false}) {}

EnvironmentVariable::~EnvironmentVariable() = default;

void EnvironmentVariable::update() {
    std::string value;
    impl->value.reset(); // first: a text from getValue() holds until here
    if (Platform::readEnvironment(impl->name, value))
        impl->value = std::move(value);
    impl->loaded = true;
}

const char* EnvironmentVariable::getValue() {
    if (!impl->loaded)
        update();
    return impl->value ? impl->value->c_str() : nullptr;
}

bool EnvironmentVariable::isDefined() {
    const char* value = getValue();
    return value && *value != '\0';
}

int EnvironmentVariable::getIntValue() {
    const char* value = getValue();
    if (!value)
        throw ConversionException();
    char* end = nullptr;
    const std::int64_t number = std::strtoll(value, &end, 0);
    if (end == value || *end != '\0')
        throw ConversionException();
    return static_cast<int>(number);
}

int EnvironmentVariable::getIntValue(int fallback) {
    try {
        return getIntValue();
    } catch (const ConversionException&) {
        return fallback;
    }
}

void EnvironmentVariable::setValue(const char* value) {
    const std::string text = value ? value : "";
    if (!Platform::writeEnvironment(impl->name, text))
        throw USystemException(
            formatLastError(formatMessage("cannot set environment variable '%'", impl->name)));
    // After the system took it: a name that it refuses leaves the cache as it was.
    impl->value = text.empty() ? std::nullopt : std::optional(text);
    impl->loaded = true;
}

void EnvironmentVariable::setValue(int value) { setValue(std::to_string(value).c_str()); }

} // namespace Zentara::Utils
