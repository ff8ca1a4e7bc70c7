#pragma once

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <type_traits>

#include <zentara/export.h>

namespace Zentara::Utils {

/// Builds a message from a format string whose '%' placeholders are filled in order:
///
///     std::string text = Format("cannot open '%' (error 0x%{:x})") % path % code;
///
/// Placeholders: "%" and "%{}" take any value; "%{:x}" and "%{:X}" print an integer in lower- or upper-case
/// hexadecimal; "%{:8}", "%{:x8}" and "%{:X8}" also pad it on the left with '0' to the given width.
/// "%%" prints one percent sign. No "0x" prefix is ever added. Texts do not depend on the global locale.
///
/// A Format is built, fed exactly as many values as it has placeholders, converted once and discarded. A
/// second conversion begins with the text of the first. After an exception the object is not usable.
/// Separate.
class ZENTARA_API Format {
public:
    /// \throws UFormatException "unterminated format item", or "invalid format item "ITEM": REASON".
    explicit Format(std::string format);
    ~Format();
    Format(const Format&) = delete;
    Format& operator=(const Format&) = delete;

    /// Integers honour the code and width of their placeholder, each in its own type: a `short` of -1 is
    /// "ffff" in hexadecimal. The two character-sized types print as the character itself, padded to the
    /// width, with the code ignored; widen a byte to print its number. \throws UFormatException "too many
    /// format arguments" when no placeholder is left.
    Format& operator%(signed char value);
    Format& operator%(unsigned char value);
    Format& operator%(short value);
    Format& operator%(unsigned short value);
    Format& operator%(int value);
    Format& operator%(unsigned int value);
    Format& operator%(long long value);
    Format& operator%(unsigned long long value);

    /// As the integer of equal size.
    Format& operator%(long value) {
        return *this % static_cast<std::conditional_t<sizeof(long) == sizeof(int), int, long long>>(value);
    }
    Format& operator%(unsigned long value) {
        return *this %
               static_cast<std::conditional_t<sizeof(long) == sizeof(int), unsigned, unsigned long long>>(
                   value);
    }

    /// Every other value that a narrow output stream takes, written by its own insertion: texts, `char`,
    /// floating-point numbers with six digits, `bool` as "true" or "false", plain enumerations as numbers. A
    /// null text writes nothing. Scoped enumerations, wide characters and wide texts do not compile. \throws
    /// UFormatException as above, and when the placeholder has a code or a width.
    template<typename T>
    requires requires(std::ostream& stream, const T& value) { stream << value; }
    Format& operator%(const T& value) {
        using Value = std::decay_t<T>;
        using Target = std::remove_cv_t<std::remove_pointer_t<Value>>;
        if constexpr (std::is_pointer_v<Value> &&
                      (std::is_same_v<Target, signed char> || std::is_same_v<Target, unsigned char>)) {
            return insertText(reinterpret_cast<const char*>(static_cast<const Target*>(value)));
        } else if constexpr (std::is_pointer_v<Value> && std::is_same_v<Target, char>) {
            return insertText(static_cast<const char*>(value));
        } else if constexpr (std::is_same_v<Value, std::string>) {
            return insertText(value.data(), value.size());
        } else if constexpr (std::is_same_v<Value, bool>) {
            return insertBool(value);
        } else if constexpr (std::is_same_v<Value, char>) {
            return insertText(&value, 1);
        } else if constexpr (std::is_same_v<Value, float> || std::is_same_v<Value, double>) {
            return insertNumber(static_cast<double>(value));
        } else {
            nextValueStream() << value;
            return *this;
        }
    }

    /// A wide character would print as its number.
    Format& operator%(wchar_t) = delete;
    Format& operator%(char8_t) = delete;
    Format& operator%(char16_t) = delete;
    Format& operator%(char32_t) = delete;

    /// The finished text.
    /// \throws UFormatException "not enough format arguments" when a placeholder is unfilled.
    operator std::string();

private:
    struct Impl;

    Format& insertText(const char* text);
    Format& insertText(const char* text, std::size_t size);
    Format& insertBool(bool value);
    Format& insertNumber(double value);
    std::ostream& nextValueStream();

    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Utils
