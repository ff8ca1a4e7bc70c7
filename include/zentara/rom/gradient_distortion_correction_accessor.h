#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/accessor.h>

namespace Zentara::ROM {

/// A correction file in memory, as flash: the file's bytes are the image, and the image grows to whatever is
/// read or written. Nothing is ever written back to the file.
class ZENTARA_API GradientDistortionCorrectionAccessor : public Accessor {
public:
    /// Loads the file at once, unless the name is empty.
    /// \param fileName  UTF-8.
    /// \throws IOPluginException "gradient calibration parameter file can not be opened".
    explicit GradientDistortionCorrectionAccessor(const std::string& fileName);
    GradientDistortionCorrectionAccessor(const GradientDistortionCorrectionAccessor&) = delete;
    GradientDistortionCorrectionAccessor& operator=(const GradientDistortionCorrectionAccessor&) = delete;
    ~GradientDistortionCorrectionAccessor() override;

    /// Bytes past the end of the image read as 0xFF, erased flash, and are part of the image from then on:
    /// short and empty files read as an area that was never formatted.
    std::vector<std::uint8_t> read(std::uint32_t address, std::uint32_t length) override;

    /// A gap between the end of the image and `address` is filled with 0.
    void write(std::uint32_t address, const std::vector<std::uint8_t>& bytes) override;

    /// Replaces the image with the bytes of a file.
    /// \throws IOPluginException "gradient calibration parameter file can not be opened", with the file named
    ///         in the log; the image is then as before.
    virtual void read(const std::string& fileName);

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::ROM
