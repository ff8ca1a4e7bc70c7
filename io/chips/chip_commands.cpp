#include "io/chips/chip_commands.h"

#include <vector>

#include <zentara/io/i2c_requests.h>
#include <zentara/io/uvc_command_request.h>
#include <zentara/io/xu_request.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

namespace Zentara::IO {

using Utils::Format;

namespace {

const char* typeName(XURequestType type) {
    switch (type) {
    case XU_UVC_COMMAND:
        return "XU_UVC_COMMAND";
    case XU_SET_FLOAT_PARAMETER:
        return "XU_SET_FLOAT_PARAMETER";
    case XU_SET_BOOL_PARAMETER:
        return "XU_SET_BOOL_PARAMETER";
    case XU_SET_INT_PARAMETER:
        return "XU_SET_INT_PARAMETER";
    case XU_SET_I2C_REGISTER:
        return "XU_SET_I2C_REGISTER";
    case XU_GET_I2C_REGISTER:
        return "XU_GET_I2C_REGISTER";
    case XU_SET_GPIO_STATE:
        return "XU_SET_GPIO_STATE";
    case XU_GET_GPIO_STATE:
        return "XU_GET_GPIO_STATE";
    case XU_SET_REGION_OF_INTEREST:
        return "XU_SET_REGION_OF_INTEREST";
    case XU_SET_HARDWARE_VERSION:
        return "XU_SET_HARDWARE_VERSION";
    case XU_SET_SYSTEM_CALIBRATION:
        return "XU_SET_SYSTEM_CALIBRATION";
    case XU_SET_SYSTEM_STATE:
        return "XU_SET_SYSTEM_STATE";
    case XU_GET_I2C_ARRAY:
        return "XU_GET_I2C_ARRAY";
    case XU_SET_I2C_ARRAY:
        return "XU_SET_I2C_ARRAY";
    }
    return "an unknown type";
}

template<typename Target>
Target& target(Target* place, const char* kind) {
    if (!place)
        throw Plugin::ArgumentPluginException(Format("% has no place for its result") % kind);
    return *place;
}

/// Register addresses are cut: else the end of a long array could be written over its beginning.
void checkArray(CommandExecutor& executor, unsigned device, std::size_t size) {
    const std::uint64_t count = executor.registerCount(device);
    if (size > count) {
        throw Plugin::ArgumentPluginException(
            Format("I2C array of % bytes, device 0x%{:x2} has % registers") %
            static_cast<std::uint64_t>(size) % device % count);
    }
}

void writeArray(CommandExecutor& executor, const setI2CArrayRequest& request) {
    const std::vector<unsigned char>& data = request.getData();
    checkArray(executor, request.getAddress(), data.size());
    for (std::size_t i = 0; i < data.size(); ++i)
        executor.setI2c(request.getAddress(), static_cast<unsigned>(i), data[i], 1, 1);
}

void readArray(CommandExecutor& executor, const getI2CArrayRequest& request) {
    std::vector<unsigned char>& out = target(request.getData(), "an I2C array read");
    checkArray(executor, request.getAddress(), out.size());
    // Into bytes of its own: a read that fails half way leaves the caller's as they were.
    std::vector<unsigned char> data(out.size());
    for (std::size_t i = 0; i < data.size(); ++i) {
        data[i] =
            static_cast<unsigned char>(executor.getI2c(request.getAddress(), static_cast<unsigned>(i), 1, 1));
    }
    out = data;
}

void readRegister(CommandExecutor& executor, const getI2CRegisterRequest& request) {
    unsigned& value = target(request.getValue(), "an I2C register read");
    value = executor.getI2c(request.getDeviceAddress(), request.getRegisterAddress(),
                            request.getAddressWidth(), request.getDataWidth());
}

/// Whether requests of the type are executed when they are of the class that belongs to it.
bool isExecuted(XURequestType type) {
    return type == XU_UVC_COMMAND || type == XU_SET_I2C_REGISTER || type == XU_GET_I2C_REGISTER ||
           type == XU_SET_I2C_ARRAY || type == XU_GET_I2C_ARRAY;
}

} // namespace

void refuse(const char* chip, const xuRequest& request) {
    const char* const message = isExecuted(request.type())
                                    ? "%: a request of type % that is not of the class of this type"
                                    : "% does not execute % requests";
    throw Plugin::NotSupportedPluginException(Format(message) % chip % typeName(request.type()));
}

// By the class, for the type is only what the request says of itself.
void executeCommand(CommandExecutor& executor, const char* chip, const xuRequest& request) {
    if (const auto* command = dynamic_cast<const UVCCommandRequest*>(&request)) {
        executor.execute(*command);
    } else if (const auto* write = dynamic_cast<const setI2CRegisterRequest*>(&request)) {
        executor.setI2c(write->getDeviceAddress(), write->getRegisterAddress(), write->getValue(),
                        write->getAddressWidth(), write->getDataWidth());
    } else if (const auto* read = dynamic_cast<const getI2CRegisterRequest*>(&request)) {
        readRegister(executor, *read);
    } else if (const auto* array = dynamic_cast<const setI2CArrayRequest*>(&request)) {
        writeArray(executor, *array);
    } else if (const auto* arrayRead = dynamic_cast<const getI2CArrayRequest*>(&request)) {
        readArray(executor, *arrayRead);
    } else {
        refuse(chip, request);
    }
}

void checkCommand(const char* chip, const xuRequest* request) {
    if (!request)
        throw Plugin::ArgumentPluginException(Format("%: null request") % chip);
}

} // namespace Zentara::IO
