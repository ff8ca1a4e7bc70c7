#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/gradient_distortion_correction_data.h>
#include <zentara/rom/gradient_distortion_correction_header.h>
#include <zentara/rom/object.h>

namespace Zentara::ROM {

/// Section type 5: the phase distortion correction, a header and one table per modulation frequency.
class ZENTARA_API GradientDistortionCorrection : public Object {
public:
    GradientDistortionCorrection(const GradientDistortionCorrectionHeader& header,
                                 const std::vector<GradientDistortionCorrectionData>& data);
    GradientDistortionCorrection(const GradientDistortionCorrection& other);
    GradientDistortionCorrection& operator=(const GradientDistortionCorrection& other);
    ~GradientDistortionCorrection() override;

    ContainerSectionType getType() const override;
    /// \throws ArgumentPluginException if the header's serial id cannot be stored.
    std::vector<std::uint8_t> serialize() const override;

    GradientDistortionCorrectionHeader getGradientDistortionCorrectionHeader() const;
    /// In flash order.
    std::vector<GradientDistortionCorrectionData> getGradientDistortionCorrectionData() const;

protected:
    friend class Object;

    /// Never null; owned by the caller.
    static GradientDistortionCorrection* deserialize(const std::vector<std::uint8_t>& bytes);

private:
    GradientDistortionCorrectionHeader header;
    std::vector<GradientDistortionCorrectionData> data;
};

} // namespace Zentara::ROM
