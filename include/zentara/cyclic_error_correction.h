#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <zentara/depth_node.h>
#include <zentara/export.h>

namespace Zentara::Core {
class DescriptorStoreRO;
}

namespace Zentara {

/// Which correction the parameters belong to. Cameras may store other values; they are kept.
enum CorrectionAlgorithm : std::int32_t {
    CorrectionAlgorithm_NONE = 0,
    /// Millimetres to add to the depth: p0 + p1 cos a + p2 sin a + p3 cos 2a + p4 sin 2a and so on, a: the phase as an
    /// angle.
    CorrectionAlgorithm_HARMONIC = 1,
};

/// How depth is corrected for the error that recurs with the phase: for each camera mode an algorithm and its
/// parameters. A camera mode is current or none is; the accessors work on the current one.
///
/// Nothing throws: what cannot be done logs a warning, does nothing and returns 0.
/// A copyable value. Separate.
class ZENTARA_API CyclicErrorCorrection {
public:
    /// The number of camera modes with settings of their own.
    static constexpr std::uint32_t MODE_COUNT = 2;

    /// No correction in any mode, and no mode current.
    CyclicErrorCorrection();

    /// Reads the two-mode block of a camera's ROM: byte 0 and 1 the algorithms of mode 0 and 1, byte 3 and
    /// 4 their numbers of parameters, from byte 6 the parameters of mode 0 and then those of mode 1 as
    /// little-endian floats. The bytes must be there. Null reads as no correction.
    /// \sa cyclicErrorBlock, which makes such a block from a stored record
    explicit CyclicErrorCorrection(const void* rom);

    /// Asks the store for the record of each mode. Null reads as no correction; so does, with a warning, a
    /// store that throws for either.
    explicit CyclicErrorCorrection(Core::DescriptorStoreRO* store);

    /// Chooses whose settings the accessors read and write; -1: nobody's.
    /// \return false, with the current mode as it was, for a mode other than -1, 0 and 1
    bool setCurrentMode(DepthNode::CameraMode mode);
    /// -1, 0 or 1; -1 until one was chosen.
    [[nodiscard]] DepthNode::CameraMode getCurrentMode() const;

    /// Of the current mode: `CorrectionAlgorithm_NONE` where it has none.
    [[nodiscard]] CorrectionAlgorithm getAlgorithm() const;
    void setAlgorithm(CorrectionAlgorithm newAlgorithm);

    /// The parameters of the current mode, in the unit that its algorithm gives them. \param index from 0
    [[nodiscard]] unsigned int getParameterCount() const;
    [[nodiscard]] float getParameter(unsigned int index) const;

    /// Never adds a parameter.
    void setParameter(unsigned int index, float value);

    /// Whether the settings were read from the block of a camera's ROM.
    [[nodiscard]] bool comesFromRom() const;

private:
    struct Mode {
        CorrectionAlgorithm algorithm = CorrectionAlgorithm_NONE; ///< as stored, also one that nobody knows
        std::vector<float> parameters;                            ///< in the algorithm's unit
    };

    bool fromRom = false;
    std::int32_t currentMode = -1;      ///< -1, or an index of the modes
    std::array<Mode, MODE_COUNT> modes; ///< the camera mode is the index
};

/// The two-mode block with the values of one stored record for both modes. The record is the algorithm in
/// one byte, the number of parameters in one, and the parameters as big-endian floats: as the flash of a camera has
/// it, which keeps one for both modes, while the block wants little-endian floats and a set for each.
/// \param size of the record in bytes; surplus ones are not looked at
/// \return empty when the record is null or cut short. Safe.
[[nodiscard]] ZENTARA_API std::vector<unsigned char> cyclicErrorBlock(unsigned int size, const void* record);

} // namespace Zentara
