#pragma once

#include <zentara/io/xu_request.h>

namespace Zentara::IO {

/// Reads the level of a general-purpose pin into the caller's variable, which must outlive the execution. Separate.
class ZENTARA_API getGPIOStateRequest : public xuRequest {
public:
    /// Pin 0, no variable.
    getGPIOStateRequest();
    /// \param gpio the camera's number for the pin \param state the caller's; true: high
    getGPIOStateRequest(unsigned int gpio, bool* state);
    getGPIOStateRequest(const getGPIOStateRequest&);

    [[nodiscard]] Utils::SmartPtr<xuRequest> clone() const override;

    [[nodiscard]] std::uint32_t getGPIO() const { return gpio; }
    [[nodiscard]] bool* getState() const { return state; }

protected:
    ~getGPIOStateRequest() override;

private:
    std::uint32_t gpio = 0;
    bool* state = nullptr; ///< the caller's; shared by clones
};

/// Sets the level of a general-purpose pin. Separate.
class ZENTARA_API setGPIOStateRequest : public xuRequest {
public:
    /// Pin 0, low.
    setGPIOStateRequest();
    /// \param gpio the camera's number for the pin \param state true: high
    setGPIOStateRequest(unsigned int gpio, bool state);
    setGPIOStateRequest(const setGPIOStateRequest&);

    [[nodiscard]] Utils::SmartPtr<xuRequest> clone() const override;

    [[nodiscard]] std::uint32_t getGPIO() const { return gpio; }
    [[nodiscard]] bool getState() const { return state; }

protected:
    ~setGPIOStateRequest() override;

private:
    std::uint32_t gpio = 0;
    bool state = false;
};

} // namespace Zentara::IO
