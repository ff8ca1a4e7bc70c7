#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/type_marker.h>

namespace Zentara::ROM {

/// How often the camera overheated: a soft and a hard counter, one byte each. A copyable value. Separate.
class ZENTARA_API OverheatingDiagnosticData {
public:
    static constexpr TypeMarker MARKER = TypeMarker::OverheatingDiagnosticData;
    static constexpr std::uint8_t VERSION = 1;
    static constexpr std::uint32_t SIZE = 1 + 1;
    /// Both 0.
    OverheatingDiagnosticData();
    OverheatingDiagnosticData(std::uint8_t softCounter, std::uint8_t hardCounter);
    OverheatingDiagnosticData(const OverheatingDiagnosticData& other);
    OverheatingDiagnosticData& operator=(const OverheatingDiagnosticData& other);
    virtual ~OverheatingDiagnosticData();

    bool operator==(const OverheatingDiagnosticData& other) const;
    bool operator!=(const OverheatingDiagnosticData& other) const;

    std::uint8_t getSoftCounter() const;
    std::uint8_t getHardCounter() const;

protected:
    friend class Diagnostic;

    /// A new record read from its complete bytes, owned by the caller; null if they are no version 1 record
    /// of this marker or fewer than it needs.
    static OverheatingDiagnosticData* deserialize(const std::vector<std::uint8_t>& bytes);

    virtual std::vector<std::uint8_t> serialize() const;

private:
    void swap(OverheatingDiagnosticData& other) noexcept;

    std::uint8_t softCounter = 0; ///< it dimmed its illumination, so often
    std::uint8_t hardCounter = 0; ///< it switched its illumination off, so often
};

} // namespace Zentara::ROM
