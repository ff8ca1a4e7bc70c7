#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/type_marker.h>

namespace Zentara::ROM {

/// A phase offset: a signed 16-bit number, in steps of the raw phase, of which 65,536 are one turn. A camera has two,
/// the first for camera mode 0 and the second for mode 1, told apart by their markers; each keeps the one that it was
/// built or read with. A copyable value. Separate.
class ZENTARA_API PhaseOffset {
public:
    static constexpr TypeMarker MARKER = TypeMarker::PhaseOffset;
    static constexpr TypeMarker MARKER2 = TypeMarker::PhaseOffset2;
    static constexpr std::uint8_t VERSION = 1;
    static constexpr std::uint32_t SIZE = 2;
    /// Offset 0 with the first marker.
    PhaseOffset();
    PhaseOffset(TypeMarker marker, short phaseOffset);
    PhaseOffset(const PhaseOffset& other);
    PhaseOffset& operator=(const PhaseOffset& other);
    virtual ~PhaseOffset();

    bool operator==(const PhaseOffset& other) const;
    bool operator!=(const PhaseOffset& other) const;

    short getPhaseOffset() const;
    TypeMarker getMarker() const;

protected:
    friend class Configuration;

    /// A new record read from its complete bytes, owned by the caller; null if they are no version 1 record
    /// of this marker or fewer than it needs.
    static PhaseOffset* deserialize(const std::vector<std::uint8_t>& bytes);

    virtual std::vector<std::uint8_t> serialize() const;

private:
    void swap(PhaseOffset& other) noexcept;

    TypeMarker marker = MARKER;
    short phaseOffset = 0;
};

} // namespace Zentara::ROM
