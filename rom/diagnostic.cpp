#include <zentara/rom/diagnostic.h>

#include "rom/record.h"

namespace Zentara::ROM {

Diagnostic::Diagnostic(const OverheatingDiagnosticData& counters) : overheating(counters) {}
Diagnostic::Diagnostic(const Diagnostic& other) = default;
Diagnostic& Diagnostic::operator=(const Diagnostic& other) = default;
Diagnostic::~Diagnostic() = default;

ContainerSectionType Diagnostic::getType() const { return ContainerSectionType::Diagnostic; }
const OverheatingDiagnosticData& Diagnostic::getOverheatingDiagnosticData() const { return overheating; }
std::vector<std::uint8_t> Diagnostic::serialize() const { return overheating.serialize(); }

Diagnostic* Diagnostic::deserialize(const std::vector<std::uint8_t>& bytes) {
    OverheatingDiagnosticData counters;
    readRecords(bytes,
                {{OverheatingDiagnosticData::MARKER, "OverheatingDiagnosticData", [&](const auto& record) {
                      return keep(counters, OverheatingDiagnosticData::deserialize(record));
                  }}});
    return new Diagnostic(counters);
}

} // namespace Zentara::ROM
