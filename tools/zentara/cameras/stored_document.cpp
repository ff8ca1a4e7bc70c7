#include "tools/zentara/cameras/stored_document.h"

#include <zentara/utils/format.h>

namespace Zentara::Tool {

void checkDocument(JsonFields& fields) {
    const Json& schema = fields.need("schema");
    if (!schema.is_number_integer() || schema != jsonSchema)
        fields.fail("schema",
                    Utils::Format("this program reads schema %, not %") % jsonSchema % shortText(schema));
}

std::string serialNumberIn(const Json& document) {
    const auto camera = document.find("camera");
    if (camera == document.end() || !camera->is_object())
        return {};
    const auto serialNumber = camera->find("serialNumber");
    return serialNumber != camera->end() && serialNumber->is_string() ? serialNumber->get<std::string>()
                                                                      : std::string();
}

void noteOtherCamera(const std::string& serialNumber, const CameraSession& session, const char* verb,
                     Console& console) {
    const std::string present = session.camera().serialNumber();
    if (!serialNumber.empty() && serialNumber != present)
        console.err << "zentara " << verb << ": the file is of camera " << printable(serialNumber)
                    << ", this one is " << printable(present) << '\n';
}

} // namespace Zentara::Tool
