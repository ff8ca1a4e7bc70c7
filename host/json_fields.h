#pragma once

#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include <zentara/host/output_file.h>

#include "host/json.h"

namespace Zentara::Host {

/// The JSON of a file, or of standard input for "-". Whatever the file is, it takes a bounded time and a bounded memory: its size and its depth have a
/// limit, and no object may have a key twice.
/// \throws Failure naming the file and the place of what is wrong
[[nodiscard]] Json readJsonFile(const std::string& path);

/// Writes a file whole or not at all. \throws Failure, also when it is there and is not to be replaced
void writeJsonFile(const std::string& path, const Json& json, const OutputFile::Rules& rules);

/// A value for a message, cut where it is long: "40000", "an object".
[[nodiscard]] std::string shortText(const Json& value);

/// Reads the fields of one object of a file, and knows which it was asked for. Every failure is a Failure that
/// names the file and the path of the field: "'a.json', /calibration/phaseDelay: ...". A view of the object.
class JsonFields {
public:
    /// The object that the file is.
    JsonFields(const Json& object, const std::string& source) : JsonFields(object, source, "") {}

    [[nodiscard]] const Json& need(const std::string& name);
    [[nodiscard]] JsonFields object(const std::string& name) { return {need(name), file, path + "/" + name}; }

    template<typename Integer>
    [[nodiscard]] Integer integer(const std::string& name) {
        return static_cast<Integer>(numberIn(need(name), name, std::numeric_limits<Integer>::min(),
                                             std::numeric_limits<Integer>::max()));
    }
    [[nodiscard]] std::vector<std::int32_t> integers(const std::string& name, std::size_t most);

    /// Every field must have been asked for, but for those that are named here.
    void refuseOthers(std::initializer_list<const char*> others = {}) const;

    /// "'a.json', /calibration/phaseDelay"
    [[nodiscard]] std::string place(const std::string& name) const;
    /// \param name of the field, empty for the object itself
    [[noreturn]] void fail(const std::string& name, const std::string& what) const;

private:
    JsonFields(const Json& object, const std::string& source, std::string way);
    [[nodiscard]] std::int64_t numberIn(const Json& value, const std::string& name, std::int64_t least,
                                        std::int64_t most) const;

    const Json& json;
    const std::string file;
    const std::string path;
    std::set<std::string> known;
};

} // namespace Zentara::Host
