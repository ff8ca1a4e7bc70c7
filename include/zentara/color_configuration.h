#pragma once

#include <zentara/compression_type.h>
#include <zentara/configuration.h>
#include <zentara/frame_format.h>
#include <zentara/power_line_frequency.h>

namespace Zentara {

/// A colour mode, named "COFF", frame format, "FR", frame rate, "PLF", power-line frequency, "COMP", compression, the
/// enumerations by their numbers: for example "COFF2FR30PLF1COMP0". Every setter derives the name anew, and none
/// checks its value: which modes there are, the device knows. Separate.
class ZENTARA_API ColorConfiguration : public Configuration {
public:
    /// All fields 0.
    ColorConfiguration();

    /// \param frameRate frames a second
    ColorConfiguration(FrameFormat format, int frameRate, PowerLineFrequency frequency,
                       CompressionType compression);
    ColorConfiguration(const ColorConfiguration&);
    ColorConfiguration& operator=(const ColorConfiguration&);

    [[nodiscard]] FrameFormat getFrameFormat() const;
    void setFrameFormat(FrameFormat newFormat);
    /// Frames a second.
    [[nodiscard]] int getFramerate() const;
    void setFramerate(int newFrameRate);
    [[nodiscard]] PowerLineFrequency getPowerLineFrequency() const;
    void setPowerLineFrequency(PowerLineFrequency newFrequency);
    [[nodiscard]] CompressionType getCompression() const;
    void setCompression(CompressionType newCompression);

    /// True when the four fields are equal, whatever the names; false for null.
    [[nodiscard]] bool isEqual(const ColorConfiguration* other) const;

protected:
    ~ColorConfiguration() override;

private:
    void rename();

    FrameFormat format = FrameFormat_NONE;
    int frameRate = 0; ///< frames a second
    PowerLineFrequency frequency = PowerLineFrequency_DISABLED;
    CompressionType compression = CompressionType_NONE;
};

} // namespace Zentara
