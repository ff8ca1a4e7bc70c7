#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/object.h>
#include <zentara/rom/overheating_diagnostic_data.h>

namespace Zentara::ROM {

/// Section type 4: what happened to this camera. A copyable value. Separate.
class ZENTARA_API Diagnostic : public Object {
public:
    explicit Diagnostic(const OverheatingDiagnosticData& overheating);
    Diagnostic(const Diagnostic& other);
    Diagnostic& operator=(const Diagnostic& other);
    ~Diagnostic() override;

    ContainerSectionType getType() const override;
    std::vector<std::uint8_t> serialize() const override;

    const OverheatingDiagnosticData& getOverheatingDiagnosticData() const;

protected:
    friend class Object;

    /// Never null; owned by the caller.
    static Diagnostic* deserialize(const std::vector<std::uint8_t>& bytes);

private:
    OverheatingDiagnosticData overheating;
};

} // namespace Zentara::ROM
