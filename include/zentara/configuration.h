#pragma once

#include <cstdint>
#include <string>

#include <zentara/export.h>
#include <zentara/utils/refcounted.h>

namespace Zentara {

/// What kind of stream a configuration describes, and with it its class. Other numbers than those of `NodeType`.
enum ConfigurationType : std::int32_t {
    ConfigurationType_COLOR = 1, ///< `ColorConfiguration`
    ConfigurationType_AUDIO = 2, ///< `AudioConfiguration`
    ConfigurationType_DEPTH = 4, ///< `DepthBaseConfiguration`
};

/// One mode in which a node can stream. Configurations are listed, compared and looked up by name; the kinds
/// below derive it from their fields, anew after every change. Shared as `Utils::SmartPtr<Configuration>`: who makes
/// one owns its first reference, and the last one deletes it. A copy is an object of its own with one reference.
/// Counting is safe, the rest separate.
class ZENTARA_API Configuration : public Utils::Refcounted {
public:
    Configuration(ConfigurationType type, std::string name);

    [[nodiscard]] ConfigurationType getType() const;

    /// A copy. Nodes find a mode by it.
    [[nodiscard]] std::string getName() const;

    /// Holds until the next change of a field, which derives the name anew.
    void setName(std::string newName);

protected:
    ~Configuration() override;
    Configuration(const Configuration&);
    Configuration& operator=(const Configuration&);

private:
    std::string name;       ///< derived, unless setName was called since
    ConfigurationType type; ///< as the object was made
};

} // namespace Zentara
