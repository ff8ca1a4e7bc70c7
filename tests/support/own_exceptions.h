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

struct Timeout : Plugin::TimeoutPluginException {
    using TimeoutPluginException::TimeoutPluginException;
};
struct Format : Utils::UFormatException {
    using UFormatException::UFormatException;
};
struct Range : std::out_of_range {
    Range() : std::out_of_range("not this") {}
    const char* what() const noexcept override { return "broken"; }
};
struct Plain : std::exception {
    const char* what() const noexcept override { return "broken"; }
};
struct Category : std::error_category {
    const char* name() const noexcept override { return "own"; }
    std::string message(int) const override { return "code"; }
};
struct Strange {
    int value;
};

} // namespace Own

/// Class and text of a caught exception.
using Caught = std::pair<std::string, std::string>;

/// An exception, and what the host meets.
struct OwnException {
    void (*raise)();
    Caught arrival;
};
template<typename Thrown, typename Met = Thrown>
OwnException broken() {
    return {[] { throw Thrown("broken"); }, {typeid(Met).name(), "broken"}};
}

inline std::vector<OwnException> ownExceptions() {
    static const Own::Category category;
    const auto row = [](const std::type_info& type, const char* text, void (*raise)()) {
        return OwnException{raise, {type.name(), text}};
    };
    const std::system_error withCode(5, std::generic_category(), "broken");
    return {
        broken<Plugin::StreamingPluginException>(),
        broken<Plugin::ConfigurationPluginException>(),
        broken<Plugin::TimeoutPluginException>(),
        broken<Plugin::ArgumentPluginException>(),
        broken<Plugin::IOPluginException>(),
        broken<Plugin::NotSupportedPluginException>(),
        broken<Plugin::InitializationPluginException>(),
        broken<Plugin::InvalidOperationPluginException>(),
        broken<Plugin::UnauthorizedAccessPluginException>(),
        broken<Own::Timeout, Plugin::TimeoutPluginException>(),
        row(typeid(Plugin::PluginException), "broken",
            [] { throw Plugin::PluginException(Plugin::PluginExceptionType(77), "broken"); }),
        broken<Utils::UIOException>(),
        broken<Own::Format, Utils::UFormatException>(),
        broken<std::runtime_error>(),
        row(typeid(std::out_of_range), "broken", [] { throw Own::Range(); }),
        row(typeid(std::system_error), withCode.what(),
            [] { throw std::system_error(5, std::generic_category(), "broken"); }),
        row(typeid(std::runtime_error), "broken: code",
            [] { throw std::system_error(5, category, "broken"); }),
        row(typeid(std::bad_alloc), "std::bad_alloc", [] { throw std::bad_alloc(); }),
        row(typeid(std::runtime_error), "broken", [] { throw Own::Plain(); }),
        row(typeid(int), "42", [] { throw 42; }),
        broken<std::string>(),
        row(typeid(std::runtime_error), "broken", [] { throw "broken"; }),
        row(typeid(std::runtime_error), "unknown exception", [] { throw Own::Strange{1}; }),
    };
}

/// Throws the exception of that number; none for 0.
inline void throwOwn(int which) {
    if (which != 0)
        ownExceptions().at(static_cast<std::size_t>(which - 1)).raise();
}

/// What the host meets, by the exception's number less one.
inline std::vector<Caught> ownArrivals() {
    std::vector<Caught> arrivals;
    for (const OwnException& exception : ownExceptions())
        arrivals.push_back(exception.arrival);
    return arrivals;
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
