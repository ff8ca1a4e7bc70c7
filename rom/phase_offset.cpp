#include <zentara/rom/phase_offset.h>

#include <utility>

#include "rom/big_endian_writer.h"
#include "rom/record.h"

namespace Zentara::ROM {

PhaseOffset::PhaseOffset() = default;
PhaseOffset::PhaseOffset(TypeMarker type, short offset) : marker(type), phaseOffset(offset) {}
PhaseOffset::PhaseOffset(const PhaseOffset& other) = default;
PhaseOffset& PhaseOffset::operator=(const PhaseOffset& other) {
    PhaseOffset copy(other);
    swap(copy);
    return *this;
}
PhaseOffset::~PhaseOffset() = default;

bool PhaseOffset::operator==(const PhaseOffset& other) const {
    return marker == other.marker && phaseOffset == other.phaseOffset;
}
bool PhaseOffset::operator!=(const PhaseOffset& other) const { return !(*this == other); }

void PhaseOffset::swap(PhaseOffset& other) noexcept {
    std::swap(marker, other.marker);
    std::swap(phaseOffset, other.phaseOffset);
}

short PhaseOffset::getPhaseOffset() const { return phaseOffset; }
TypeMarker PhaseOffset::getMarker() const { return marker; }

PhaseOffset* PhaseOffset::deserialize(const std::vector<std::uint8_t>& bytes) {
    // Either marker will do: which of the two offsets it is, the record itself says.
    for (const TypeMarker marker : {MARKER, MARKER2}) {
        BigEndianReader in = openRecord(bytes, marker, VERSION);
        const auto offset = static_cast<std::int16_t>(in.readU16());
        if (in.ok())
            return new PhaseOffset(marker, offset);
    }
    return nullptr;
}

std::vector<std::uint8_t> PhaseOffset::serialize() const {
    BigEndianWriter out(SIZE);
    out.writeU16(static_cast<std::uint16_t>(phaseOffset));
    return makeRecord(marker, VERSION, out.take());
}

} // namespace Zentara::ROM
