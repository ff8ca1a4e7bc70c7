#include <zentara/configuration.h>

#include <utility>

namespace Zentara {

Configuration::Configuration(ConfigurationType configurationType, std::string initialName)
    : name(std::move(initialName)), type(configurationType) {}
Configuration::Configuration(const Configuration&) = default;
Configuration& Configuration::operator=(const Configuration&) = default;
Configuration::~Configuration() = default;

ConfigurationType Configuration::getType() const { return type; }

std::string Configuration::getName() const { return name; }

void Configuration::setName(std::string newName) { name = std::move(newName); }

} // namespace Zentara
