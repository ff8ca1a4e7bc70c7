#pragma once

#include <array>
#include <vector>

#include <zentara/hardware_version_internal.h>
#include <zentara/intrinsic_parameters_internal.h>
#include <zentara/io/xu_request.h>

namespace Zentara::IO {

/// Stores the identifiers of a camera's modules in the camera. Separate.
class ZENTARA_API setHardwareVersionRequest : public xuRequest {
public:
    /// Five modules that are all 0.
    setHardwareVersionRequest();
    setHardwareVersionRequest(const ModuleIdInternal& first, const ModuleIdInternal& second,
                              const ModuleIdInternal& third, const ModuleIdInternal& fourth,
                              const ModuleIdInternal& fifth);
    setHardwareVersionRequest(const setHardwareVersionRequest&);

    [[nodiscard]] Utils::SmartPtr<xuRequest> clone() const override;

    /// In the order of the constructor's arguments.
    [[nodiscard]] const std::array<ModuleIdInternal, 5>& getModules() const { return modules; }

protected:
    ~setHardwareVersionRequest() override;

private:
    std::array<ModuleIdInternal, 5> modules{};
};

/// Stores the lens models of a camera in the camera. Separate.
class ZENTARA_API setSystemCalibrationRequest : public xuRequest {
public:
    /// No lens model.
    setSystemCalibrationRequest();
    /// \param intrinsics one for each image size, in pixels of that
    explicit setSystemCalibrationRequest(std::vector<IntrinsicParametersInternal> intrinsics);
    setSystemCalibrationRequest(const setSystemCalibrationRequest&);

    [[nodiscard]] Utils::SmartPtr<xuRequest> clone() const override;

    /// The request's own; lent as long as it lives.
    [[nodiscard]] std::vector<IntrinsicParametersInternal>& getIntrinsics() { return intrinsics; }
    [[nodiscard]] const std::vector<IntrinsicParametersInternal>& getIntrinsics() const { return intrinsics; }

protected:
    ~setSystemCalibrationRequest() override;

private:
    std::vector<IntrinsicParametersInternal> intrinsics;
};

} // namespace Zentara::IO
