#include "host/json_file.h"

#include <zentara/utils/format.h>

#include "host/files/file_failure.h"

namespace Zentara::Host {

using Utils::Format;

namespace {

constexpr std::size_t mostBytes = 1 << 24;

} // namespace

Json readJsonFile(const std::string& path) {
    try {
        return parseJson(path == "-" ? readInputBytes(mostBytes) : readFileBytes(path, mostBytes));
    } catch (const JsonError& failure) {
        throw Failure(Failure::Failed, Format("'%' is no JSON: %") % path % failure.what());
    }
}

std::string printed(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace Zentara::Host
