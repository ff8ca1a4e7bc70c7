#include "plugins/descriptions/command_reader.h"

#include <zentara/io/i2c_requests.h>
#include <zentara/io/uvc_command_request.h>

namespace Zentara::Cameras {
namespace {

using Request = Utils::SmartPtr<IO::xuRequest>;
using Utils::makeRefcounted;

Request readRegister(JsonFields& fields, const char* field, IO::UVCPrefix prefix) {
    const std::uint32_t address = fields.need(field).word();
    return makeRefcounted<IO::UVCCommandRequest>(prefix, address, fields.need("value").word());
}

Request readRaw(JsonFields& fields) {
    const auto prefix = static_cast<IO::UVCPrefix>(fields.need("prefix").whole(0, IO::UVC_SYNC_FPGA));
    const std::uint32_t a = fields.need("a").word();
    return makeRefcounted<IO::UVCCommandRequest>(prefix, a, fields.need("b").word());
}

Request readI2c(JsonFields& fields) {
    const std::uint64_t device = fields.need("i2cDevice").whole(0, 0xFFFF);
    const std::uint32_t address = fields.need("register").word();
    const std::uint32_t value = fields.need("value").word();
    const std::uint64_t addressBytes = fields.need("addressBytes").whole(1, 4);
    const std::uint64_t dataBytes = fields.need("dataBytes").whole(1, 4);
    return makeRefcounted<IO::setI2CRegisterRequest>(static_cast<unsigned>(device), address, value,
                                                     static_cast<unsigned>(addressBytes),
                                                     static_cast<unsigned>(dataBytes));
}

Request readForm(JsonFields& fields) {
    if (fields.has("tofRegister"))
        return readRegister(fields, "tofRegister", IO::UVC_TOF_CONTROLLER_REGISTER);
    if (fields.has("bridgeRegister"))
        return readRegister(fields, "bridgeRegister", IO::UVC_USB_BACKEND_REGISTER);
    if (fields.has("prefix"))
        return readRaw(fields);
    if (fields.has("i2cDevice"))
        return readI2c(fields);
    fields.fail("a command has one of the fields tofRegister, bridgeRegister, prefix and i2cDevice");
}

} // namespace

Core::RequestList readCommands(const JsonValue& list) {
    Core::RequestList requests;
    for (const JsonValue& element : list.list()) {
        JsonFields fields(element);
        requests.push_back(readForm(fields));
        fields.finish();
    }
    return requests;
}

} // namespace Zentara::Cameras
