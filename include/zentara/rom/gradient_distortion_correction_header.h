#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/type_marker.h>

namespace Zentara::ROM {

/// What a correction file says about itself.
///
///     offset  size  field, big-endian
///     0       2     version number
///     2       4     time of last write
///     6       1     number of sets
///     7       1     length of the serial id, its zero byte included
///     8       ...   serial id and one zero byte
///
/// A copyable value. Separate.
class ZENTARA_API GradientDistortionCorrectionHeader {
public:
    static constexpr TypeMarker MARKER = TypeMarker::GradientDistortionCorrectionHeader;
    static constexpr std::uint8_t VERSION = 1;
    static constexpr std::uint32_t MIN_SIZE = 2 + 4 + 1 + 1;

    /// Version 0, time 0, no sets, empty serial id.
    GradientDistortionCorrectionHeader();
    GradientDistortionCorrectionHeader(std::uint16_t versionNumber, std::uint32_t timeOfLastWrite,
                                       std::uint8_t numberOfSets, const std::string& serialId);
    GradientDistortionCorrectionHeader(const GradientDistortionCorrectionHeader& other);
    GradientDistortionCorrectionHeader& operator=(const GradientDistortionCorrectionHeader& other);
    virtual ~GradientDistortionCorrectionHeader();

    virtual bool operator==(const GradientDistortionCorrectionHeader& other) const;
    virtual std::uint16_t getVersionNumber() const;
    virtual std::uint32_t getTimeofLastWrite() const;
    virtual std::uint8_t getNumberOfSets() const;
    virtual std::string getSerialId() const;

protected:
    friend class GradientDistortionCorrection;

    /// A new record read from its complete bytes, owned by the caller; null if they are no version 1 record
    /// of this marker, are too few, or hold no zero byte after the serial id. The stored id length is not
    /// consulted.
    static GradientDistortionCorrectionHeader* deserialize(const std::vector<std::uint8_t>& bytes);

    /// \throws ArgumentPluginException for a serial id of more than 254 characters or with a zero byte in it.
    virtual std::vector<std::uint8_t> serialize() const;
    virtual void swap(GradientDistortionCorrectionHeader& other) noexcept;

private:
    std::uint16_t versionNumber = 0;
    std::uint32_t timeOfLastWrite = 0; ///< as stored; the host library takes it for seconds since 1970, UTC
    std::uint8_t numberOfSets = 0;     ///< what the file says; how many tables there are is seen by reading
    std::string serialId;              ///< of the camera that the tables were measured on
};

} // namespace Zentara::ROM
