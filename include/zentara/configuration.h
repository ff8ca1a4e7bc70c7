#pragma once

#include <cstdint>
#include <string>

#include <zentara/export.h>
#include <zentara/utils/refcounted.h>

namespace Zentara {

/// What kind of stream a configuration describes.
enum ConfigurationType : std::int32_t {
    ConfigurationType_COLOR = 1,
    ConfigurationType_AUDIO = 2,
    ConfigurationType_DEPTH = 4,
};

/// One mode in which a node can stream. Configurations are listed, compared and looked up by name; the kinds
/// below derive it from their fields, anew after every change. Shared as `Utils::SmartPtr<Configuration>`.
/// Separate.
class ZENTARA_API Configuration : public Utils::Refcounted {
public:
    Configuration(ConfigurationType type, std::string name);

    [[nodiscard]] ConfigurationType getType() const;
    [[nodiscard]] std::string getName() const;

    /// Holds until the next change of a field, which derives the name anew.
    void setName(std::string newName);

protected:
    ~Configuration() override;
    Configuration(const Configuration&);
    Configuration& operator=(const Configuration&);

private:
    std::string name;
    ConfigurationType type;
};

} // namespace Zentara
