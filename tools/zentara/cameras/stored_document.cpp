#include "tools/zentara/cameras/stored_document.h"

#include <zentara/utils/format.h>

namespace Zentara::Tool {

void checkDocument(JsonFields& fields) {
    const Json& schema = fields.need("schema");
    if (!schema.is_number_integer() || schema < 1 || schema > jsonSchema)
        fields.fail("schema", Utils::Format("this program reads schemas 1 to %, not %") % jsonSchema %
                                  shortText(schema));
}

std::string serialNumberIn(const Json& document) {
    const auto camera = document.find("camera");
    if (camera == document.end() || !camera->is_object())
        return {};
    for (const char* key : {"serial", "serialNumber"}) { // schema 1 had the longer name
        const auto serial = camera->find(key);
        if (serial != camera->end() && serial->is_string())
            return serial->get<std::string>();
    }
    return {};
}

void noteOtherCamera(const std::string& serialNumber, const CameraSession& session, Console& console) {
    const std::string& present = session.camera().info().serial;
    if (!serialNumber.empty() && serialNumber != present)
        note(console, "the file is of camera " + serialNumber + ", this one is " + present);
}

} // namespace Zentara::Tool
