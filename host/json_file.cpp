#include "host/json_file.h"

#include <iostream>

#include <zentara/utils/format.h>

#include "host/files/file_failure.h"

namespace Zentara::Host {

using Utils::Format;

namespace {

constexpr std::size_t mostBytes = 1 << 24;

/// Standard input, as far as it may be; one byte more tells that it is longer.
std::string readInput() {
    std::string text(mostBytes + 1, '\0');
    std::cin.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(std::cin.gcount()));
    if (text.size() > mostBytes)
        throw Failure(Failure::Failed, Format("standard input has more than % bytes") % mostBytes);
    return text;
}

} // namespace

Json readJsonFile(const std::string& path) {
    try {
        return parseJson(path == "-" ? readInput() : readFileBytes(path, mostBytes));
    } catch (const JsonError& failure) {
        throw Failure(Failure::Failed, Format("'%' is no JSON: %") % path % failure.what());
    }
}

std::string printed(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace Zentara::Host
