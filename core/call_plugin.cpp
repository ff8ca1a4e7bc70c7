#include <zentara/plugin/call_plugin.h>

#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <typeinfo>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/exceptions.h>

namespace Zentara::Plugin {

namespace {

/// Throws a copy of the object as the first of these classes that it belongs to, if there is one.
template<typename Class, typename... Others, typename Base>
void throwCopyAs(const Base& thrown) {
    if (const auto* const same = dynamic_cast<const Class*>(&thrown))
        throw Class(*same);
    if constexpr (sizeof...(Others) > 0)
        throwCopyAs<Others...>(thrown);
}

/// The same for classes that are made from their text, which a derived class may have made up.
template<typename Class, typename... Others>
void throwTextAs(const std::exception& thrown) {
    if (dynamic_cast<const Class*>(&thrown))
        throw Class(thrown.what());
    if constexpr (sizeof...(Others) > 0)
        throwTextAs<Others...>(thrown);
}

/// An error category is an object that may lie in the plug-in: only those of the standard library outlive it.
bool hasStandardCode(const std::system_error& thrown) {
    const std::error_category& category = thrown.code().category();
    return typeid(thrown) == typeid(std::system_error) &&
           (category == std::system_category() || category == std::generic_category());
}

/// From the most derived classes to their bases, since the first one that fits is taken.
[[noreturn]] void throwStandard(const std::exception& thrown) {
    throwCopyAs<std::bad_alloc>(thrown); // first: nothing on this way takes memory
    const auto* const withCode = dynamic_cast<const std::system_error*>(&thrown);
    if (withCode && hasStandardCode(*withCode))
        throw std::system_error(*withCode);
    throwTextAs<std::invalid_argument, std::out_of_range, std::length_error, std::domain_error,
                std::logic_error, std::overflow_error, std::range_error, std::underflow_error>(thrown);
    const char* const text = thrown.what();
    throw std::runtime_error(text ? text : "unknown exception");
}

} // namespace

void rethrowAnew() {
    try {
        throw;
    } catch (const PluginException& thrown) {
        throwCopyAs<StreamingPluginException, ConfigurationPluginException, TimeoutPluginException,
                    ArgumentPluginException, IOPluginException, NotSupportedPluginException,
                    InitializationPluginException, InvalidOperationPluginException,
                    UnauthorizedAccessPluginException, PluginException>(thrown);
        throw; // never reached: the last class is the one that was caught
    } catch (const Utils::UException& thrown) {
        throwCopyAs<Utils::USystemException, Utils::UIOException, Utils::UInvalidOperationException,
                    Utils::UNullMessageException, Utils::UFormatException, Utils::UException>(thrown);
        throw;
    } catch (const std::exception& thrown) {
        throwStandard(thrown);
    } catch (const std::string& thrown) {
        throw std::string(thrown);
    } catch (const char* thrown) {
        throw std::runtime_error(thrown ? thrown : "unknown exception");
    } catch (const int thrown) {
        throw int(thrown);
    } catch (...) {
        throw std::runtime_error("unknown exception");
    }
}

} // namespace Zentara::Plugin
