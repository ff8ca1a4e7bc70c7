#include <zentara/rom/overheating_diagnostic_data.h>

#include <utility>

#include "rom/record.h"

namespace Zentara::ROM {

OverheatingDiagnosticData::OverheatingDiagnosticData() = default;
OverheatingDiagnosticData::OverheatingDiagnosticData(std::uint8_t first, std::uint8_t second)
    : softCounter(first), hardCounter(second) {}
OverheatingDiagnosticData::OverheatingDiagnosticData(const OverheatingDiagnosticData& other) = default;
OverheatingDiagnosticData& OverheatingDiagnosticData::operator=(const OverheatingDiagnosticData& other) {
    OverheatingDiagnosticData copy(other);
    swap(copy);
    return *this;
}
OverheatingDiagnosticData::~OverheatingDiagnosticData() = default;

bool OverheatingDiagnosticData::operator==(const OverheatingDiagnosticData& other) const {
    return softCounter == other.softCounter && hardCounter == other.hardCounter;
}
bool OverheatingDiagnosticData::operator!=(const OverheatingDiagnosticData& other) const {
    return !(*this == other);
}

void OverheatingDiagnosticData::swap(OverheatingDiagnosticData& other) noexcept {
    std::swap(softCounter, other.softCounter);
    std::swap(hardCounter, other.hardCounter);
}

std::uint8_t OverheatingDiagnosticData::getSoftCounter() const { return softCounter; }
std::uint8_t OverheatingDiagnosticData::getHardCounter() const { return hardCounter; }

OverheatingDiagnosticData* OverheatingDiagnosticData::deserialize(const std::vector<std::uint8_t>& bytes) {
    BigEndianReader in = openRecord(bytes, MARKER, VERSION);
    const std::uint8_t first = in.readU8();
    const std::uint8_t second = in.readU8();
    return in.ok() ? new OverheatingDiagnosticData(first, second) : nullptr;
}

std::vector<std::uint8_t> OverheatingDiagnosticData::serialize() const {
    return makeRecord(MARKER, VERSION, {softCounter, hardCounter});
}

} // namespace Zentara::ROM
