#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <zentara/guid.h>

#include "plugins/descriptions/located_json.h"

namespace Zentara::Cameras {

/// A value of a description, with the name of its field for messages. Whatever is wrong throws
/// `Plugin::ConfigurationPluginException` "SOURCE, line N, FIELD: REASON". Refers to a tree that outlives it.
class JsonValue {
public:
    JsonValue(const LocatedJson& located, const std::string& sourceName, std::string fieldPath);

    [[nodiscard]] std::string text() const;
    /// A text that is not empty.
    [[nodiscard]] std::string name() const;
    [[nodiscard]] bool truth() const;
    [[nodiscard]] float number() const;
    /// A number from 0 on, also as a hexadecimal text "0x1F".
    [[nodiscard]] std::uint64_t whole(std::uint64_t least, std::uint64_t most) const;
    [[nodiscard]] std::uint32_t word() const { return static_cast<std::uint32_t>(whole(0, 0xFFFFFFFF)); }
    [[nodiscard]] std::int64_t signedWhole(std::int64_t least, std::int64_t most) const;
    /// A well-known name, or registry form with or without braces.
    [[nodiscard]] GUID guid() const;
    /// \param most how many there may be
    [[nodiscard]] std::vector<JsonValue> list(std::size_t most = 1024) const;

    [[nodiscard]] bool isObject() const { return value->kind == LocatedJson::Kind::Object; }
    [[nodiscard]] int line() const { return value->line; }

    [[noreturn]] void fail(const std::string& reason) const;

private:
    friend class JsonFields;

    void require(LocatedJson::Kind kind, const char* what) const;

    const LocatedJson* value;
    const std::string* source;
    std::string path;
};

/// An object of a description, taken apart field by field.
class JsonFields {
public:
    /// \throws as JsonValue does, for a value that is no object
    explicit JsonFields(JsonValue object);

    [[nodiscard]] std::optional<JsonValue> find(const char* name);
    [[nodiscard]] JsonValue need(const char* name);
    [[nodiscard]] bool has(const char* name) const;

    /// Refuses fields that nobody has asked for. To be called last.
    void finish() const;

    [[noreturn]] void fail(const std::string& reason) const { object.fail(reason); }

private:
    [[nodiscard]] JsonValue member(const LocatedJson& located) const;

    JsonValue object;
    std::set<std::string> known;
};

} // namespace Zentara::Cameras
