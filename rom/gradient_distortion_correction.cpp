#include <zentara/rom/gradient_distortion_correction.h>

#include "rom/record.h"

namespace Zentara::ROM {

GradientDistortionCorrection::GradientDistortionCorrection(
    const GradientDistortionCorrectionHeader& description,
    const std::vector<GradientDistortionCorrectionData>& tables)
    : header(description), data(tables) {}
GradientDistortionCorrection::GradientDistortionCorrection(const GradientDistortionCorrection& other) =
    default;
GradientDistortionCorrection&
GradientDistortionCorrection::operator=(const GradientDistortionCorrection& other) = default;
GradientDistortionCorrection::~GradientDistortionCorrection() = default;

ContainerSectionType GradientDistortionCorrection::getType() const {
    return ContainerSectionType::GradientDistortionCorrection;
}
GradientDistortionCorrectionHeader
GradientDistortionCorrection::getGradientDistortionCorrectionHeader() const {
    return header;
}
std::vector<GradientDistortionCorrectionData>
GradientDistortionCorrection::getGradientDistortionCorrectionData() const {
    return data;
}

// The header's number of sets is written as it is, whatever the number of tables.
std::vector<std::uint8_t> GradientDistortionCorrection::serialize() const {
    std::vector<std::uint8_t> bytes = header.serialize();
    for (const GradientDistortionCorrectionData& table : data)
        append(bytes, table.serialize());
    return bytes;
}

GradientDistortionCorrection*
GradientDistortionCorrection::deserialize(const std::vector<std::uint8_t>& bytes) {
    using Header = GradientDistortionCorrectionHeader;
    using Data = GradientDistortionCorrectionData;
    Header description;
    std::vector<Data> tables;
    readRecords(bytes, {{Header::MARKER, "GradientDistortionCorrectionHeader",
                         [&](const auto& record) { return keep(description, Header::deserialize(record)); }},
                        {Data::MARKER, "GradientDistortionCorrectionData",
                         [&](const auto& record) { return add(tables, Data::deserialize(record)); }}});
    return new GradientDistortionCorrection(description, tables);
}

} // namespace Zentara::ROM
