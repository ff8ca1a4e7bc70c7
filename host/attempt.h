#pragma once

#include <new>
#include <optional>
#include <string>
#include <utility>

#include <zentara/host/attempt.h>
#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::Host {

/// There was no memory, whoever asked for it: this passes, and nobody is left out or taken for unknown because of it.
class LackOfMemory final : public Failure {
public:
    explicit LackOfMemory(std::string message)
        : Failure(Failed, std::move(message), "there is not enough memory") {}
};

/// A step of a destructor: nobody is told of it where there is no memory for its words.
class PartingStep final {
public:
    /// \param words gives them
    template<typename Words>
    explicit PartingStep(Words words) noexcept {
        try {
            step.emplace(words());
        } catch (const std::bad_alloc&) {
        }
    }

private:
    std::optional<Step> step;
};

/// The code of a plug-in's exception.
[[nodiscard]] Failure::Code codeOf(Plugin::PluginExceptionType type) noexcept;

/// The kind of a plug-in's exception, for people: "I/O failure".
[[nodiscard]] const char* failureText(Plugin::PluginExceptionType type) noexcept;

} // namespace Zentara::Host
