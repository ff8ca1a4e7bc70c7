#pragma once

#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <typeinfo>
#include <utility>
#include <vector>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/exceptions.h>

/// Exceptions as the author of a plug-in throws them. Included by a plug-in, they are described in its own library.
namespace Zentara::TestSupport {

namespace Own {

class Timeout : public Plugin::TimeoutPluginException {
public:
    using TimeoutPluginException::TimeoutPluginException;
};
class Format : public Utils::UFormatException {
public:
    using UFormatException::UFormatException;
};
class Range : public std::out_of_range {
public:
    Range() : std::out_of_range("not this") {}
    const char* what() const noexcept override { return "broken"; }
};
class Plain : public std::exception {
public:
    const char* what() const noexcept override { return "broken"; }
};
class Category : public std::error_category {
public:
    const char* name() const noexcept override { return "own"; }
    std::string message(int) const override { return "code"; }
};
struct Strange {
    int value;
};

} // namespace Own

/// Throws the exception of that number; none for 0.
inline void throwOwn(int which) {
    static const Own::Category category;
    switch (which) {
    case 1:
        throw Plugin::StreamingPluginException("broken");
    case 2:
        throw Plugin::ConfigurationPluginException("broken");
    case 3:
        throw Plugin::TimeoutPluginException("broken");
    case 4:
        throw Plugin::ArgumentPluginException("broken");
    case 5:
        throw Plugin::IOPluginException("broken");
    case 6:
        throw Plugin::NotSupportedPluginException("broken");
    case 7:
        throw Plugin::InitializationPluginException("broken");
    case 8:
        throw Plugin::InvalidOperationPluginException("broken");
    case 9:
        throw Plugin::UnauthorizedAccessPluginException("broken");
    case 10:
        throw Own::Timeout("broken");
    case 11:
        throw Plugin::PluginException(Plugin::PluginExceptionType(77), "broken");
    case 12:
        throw Utils::UIOException("broken");
    case 13:
        throw Own::Format("broken");
    case 14:
        throw std::runtime_error("broken");
    case 15:
        throw Own::Range();
    case 16:
        throw std::system_error(5, std::generic_category(), "broken");
    case 17:
        throw std::system_error(5, category, "broken");
    case 18:
        throw std::bad_alloc();
    case 19:
        throw Own::Plain();
    case 20:
        throw 42;
    case 21:
        throw std::string("broken");
    case 22:
        throw "broken";
    case 23:
        throw Own::Strange{1};
    default:
        break;
    }
}

/// Class and text of a caught exception.
using Caught = std::pair<std::string, std::string>;

/// What the host meets, by the exception's number less one.
inline std::vector<Caught> ownArrivals() {
    const auto row = [](const std::type_info& type, const char* text = "broken") {
        return Caught(type.name(), text);
    };
    const std::system_error withCode(5, std::generic_category(), "broken");
    return {row(typeid(Plugin::StreamingPluginException)),
            row(typeid(Plugin::ConfigurationPluginException)),
            row(typeid(Plugin::TimeoutPluginException)),
            row(typeid(Plugin::ArgumentPluginException)),
            row(typeid(Plugin::IOPluginException)),
            row(typeid(Plugin::NotSupportedPluginException)),
            row(typeid(Plugin::InitializationPluginException)),
            row(typeid(Plugin::InvalidOperationPluginException)),
            row(typeid(Plugin::UnauthorizedAccessPluginException)),
            row(typeid(Plugin::TimeoutPluginException)),
            row(typeid(Plugin::PluginException)),
            row(typeid(Utils::UIOException)),
            row(typeid(Utils::UFormatException)),
            row(typeid(std::runtime_error)),
            row(typeid(std::out_of_range)),
            row(typeid(std::system_error), withCode.what()),
            row(typeid(std::runtime_error), "broken: code"),
            row(typeid(std::bad_alloc), "std::bad_alloc"),
            row(typeid(std::runtime_error)),
            row(typeid(int), "42"),
            row(typeid(std::string)),
            row(typeid(std::runtime_error)),
            row(typeid(std::runtime_error), "unknown exception")};
}

inline Caught caught(std::exception_ptr kept) {
    if (!kept)
        return {"nothing", ""};
    try {
        std::rethrow_exception(std::exchange(kept, nullptr));
    } catch (const std::exception& failure) {
        return {typeid(failure).name(), failure.what()};
    } catch (const std::string& text) {
        return {typeid(text).name(), text};
    } catch (const int number) {
        return {typeid(number).name(), std::to_string(number)};
    } catch (...) {
        return {"strange", ""};
    }
}

} // namespace Zentara::TestSupport
