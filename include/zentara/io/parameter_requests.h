#pragma once

#include <unordered_map>

#include <zentara/io/xu_request.h>
#include <zentara/parameter_type.h>
#include <zentara/region_of_interest_internal.h>

namespace Zentara::IO {

/// Writes a camera parameter; the base of the typed writes below. Separate.
class ZENTARA_API setParameterRequest : public xuRequest {
public:
    /// Type 0, no parameter.
    setParameterRequest();
    setParameterRequest(XURequestType type, ParameterType parameter);
    setParameterRequest(const setParameterRequest&);

    [[nodiscard]] Utils::SmartPtr<xuRequest> clone() const override;

    [[nodiscard]] ParameterType getParameter() const { return parameter; }

protected:
    ~setParameterRequest() override;

private:
    ParameterType parameter = ParameterType_NONE;
};

/// Writes a float, in the parameter's unit. Type 26. Separate.
class ZENTARA_API setFloatParameterRequest : public setParameterRequest {
public:
    setFloatParameterRequest();
    setFloatParameterRequest(ParameterType parameter, float value);
    setFloatParameterRequest(const setFloatParameterRequest&);

    [[nodiscard]] Utils::SmartPtr<xuRequest> clone() const override;

    [[nodiscard]] float getValue() const { return value; }
    void setValue(float newValue) { value = newValue; }

protected:
    ~setFloatParameterRequest() override;

private:
    float value = 0;
};

/// Writes a switch. Type 28. Separate.
class ZENTARA_API setBoolParameterRequest : public setParameterRequest {
public:
    setBoolParameterRequest();
    setBoolParameterRequest(ParameterType parameter, bool value);
    setBoolParameterRequest(const setBoolParameterRequest&);

    [[nodiscard]] Utils::SmartPtr<xuRequest> clone() const override;

    [[nodiscard]] bool getValue() const { return value; }
    void setValue(bool newValue) { value = newValue; }

protected:
    ~setBoolParameterRequest() override;

private:
    bool value = false;
};

/// Writes an integer, in the parameter's unit. Type 30. Separate.
class ZENTARA_API setIntParameterRequest : public setParameterRequest {
public:
    setIntParameterRequest();
    setIntParameterRequest(ParameterType parameter, int value);
    setIntParameterRequest(const setIntParameterRequest&);

    [[nodiscard]] Utils::SmartPtr<xuRequest> clone() const override;

    [[nodiscard]] int getValue() const { return value; }
    void setValue(int newValue) { value = newValue; }

protected:
    ~setIntParameterRequest() override;

private:
    std::int32_t value = 0;
};

/// Writes the region of interest, parameter 13, in pixels of the sensor. Type 36. Separate.
class ZENTARA_API setRegionOfInterestRequest : public setParameterRequest {
public:
    /// An empty region.
    setRegionOfInterestRequest();
    explicit setRegionOfInterestRequest(const RegionOfInterestInternal& region);
    setRegionOfInterestRequest(const setRegionOfInterestRequest&);

    [[nodiscard]] Utils::SmartPtr<xuRequest> clone() const override;

    [[nodiscard]] RegionOfInterestInternal getRegion() const { return region; }
    void setRegion(const RegionOfInterestInternal& newRegion) { region = newRegion; }

protected:
    ~setRegionOfInterestRequest() override;

private:
    RegionOfInterestInternal region;
};

/// A system state: for each parameter the request that sets it. The map shares the requests with whoever else has them:
/// reading a state changes their values in place.
using ParameterRequestMap = std::unordered_map<ParameterType, Utils::SmartPtr<xuRequest>>;

/// Sets many parameters at once. Type 39. Separate.
class ZENTARA_API setSystemStateRequest : public xuRequest {
public:
    /// An empty state.
    setSystemStateRequest();

    /// Copies the map; the requests in it are shared with the caller.
    explicit setSystemStateRequest(const ParameterRequestMap& state);

    /// Shares the requests, too; `clone()` does not.
    setSystemStateRequest(const setSystemStateRequest&);

    [[nodiscard]] Utils::SmartPtr<xuRequest> clone() const override;

    [[nodiscard]] ParameterRequestMap& getState() { return state; }
    [[nodiscard]] const ParameterRequestMap& getState() const { return state; }

protected:
    ~setSystemStateRequest() override;

private:
    ParameterRequestMap state; ///< a null request counts as none
};

} // namespace Zentara::IO
