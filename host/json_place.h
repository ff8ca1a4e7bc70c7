#pragma once

#include <cstdint>
#include <initializer_list>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/json.h"
#include <zentara/host/hex_bytes.h>

namespace Zentara::Host {

/// What is wrong with a JSON text, and where: "/sections/2/uid: expected a number from 1 to 65535".
class JsonError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A value for a message, cut where it is long: "40000", "an object".
[[nodiscard]] std::string shortText(const Json& value);

/// A JSON text. It takes a bounded depth, and no object may have a key twice. \throws JsonError
[[nodiscard]] Json parseJson(const std::string& text);

/// A value inside a JSON document together with the path to it. A view: the document must outlive it. Every
/// question whose answer is not there throws JsonError with the path.
class JsonPlace {
public:
    explicit JsonPlace(const Json& document) : JsonPlace(document, "") {}

    /// The keys that the object may have; any other is an error.
    void allow(std::initializer_list<const char*> keys) const;
    void allow(const std::vector<std::string>& keys) const;
    [[nodiscard]] bool has(const std::string& key) const;
    [[nodiscard]] JsonPlace at(const std::string& key) const;
    [[nodiscard]] std::vector<JsonPlace> items() const;
    /// The places of an object's fields, by their keys.
    [[nodiscard]] std::vector<std::pair<std::string, JsonPlace>> fields() const;

    [[nodiscard]] bool isText() const { return value->is_string(); }
    [[nodiscard]] std::string text() const;
    [[nodiscard]] std::int64_t number(std::int64_t least, std::int64_t most) const;
    /// A number of that type.
    template<typename Integer>
    [[nodiscard]] Integer integer() const {
        return static_cast<Integer>(
            number(std::numeric_limits<Integer>::min(), std::numeric_limits<Integer>::max()));
    }
    [[nodiscard]] float real() const;
    [[nodiscard]] Bytes hex() const;
    [[nodiscard]] const Json& json() const { return *value; }

    [[noreturn]] void fail(const std::string& reason) const;

private:
    JsonPlace(const Json& place, std::string way) : value(&place), path(std::move(way)) {}
    void checkObject() const;

    const Json* value;
    std::string path;
};

} // namespace Zentara::Host
