#pragma once

#include <cstdint>

namespace Zentara::IO {

class UVCCommandRequest;
class xuRequest;

/// What the commands that are common to the chips need of one. Widths are bytes.
class CommandExecutor {
public:
    virtual void execute(const UVCCommandRequest& command) = 0;
    virtual void setI2c(unsigned device, unsigned reg, unsigned value, unsigned addressBytes,
                        unsigned dataBytes) = 0;
    [[nodiscard]] virtual unsigned getI2c(unsigned device, unsigned reg, unsigned addressBytes,
                                          unsigned dataBytes) = 0;
    /// How many registers a device has at most, from 0 up.
    [[nodiscard]] virtual std::uint64_t registerCount(unsigned device) = 0;

protected:
    ~CommandExecutor() = default;
};

/// Does what a raw command or one of the four I2C kinds says, told apart by their class.
/// \throws ArgumentPluginException for a request without a place for its result, or with more bytes than its
/// device has registers, NotSupportedPluginException naming the type for every other kind; both before any
/// register is touched.
void executeCommand(CommandExecutor& executor, const char* chip, const xuRequest& request);

/// \throws NotSupportedPluginException always, naming the chip, the request's type and what is wrong with it.
[[noreturn]] void refuse(const char* chip, const xuRequest& request);

/// \throws ArgumentPluginException for a null request, naming the chip.
void checkCommand(const char* chip, const xuRequest* request);

} // namespace Zentara::IO
