#include "plugins/descriptions/located_json.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include <nlohmann/json.hpp>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

namespace Zentara::Cameras {
namespace {

using Utils::Format;

constexpr std::size_t deepest = 32;
constexpr std::size_t mostMembers = 1024; // each one is compared with all before it

/// How far the parser has read.
struct ReadPosition {
    int line = 1;
    bool afterLineEnd = false;
};

/// Characters of the text; each step is noted.
class CountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator(const char* start, ReadPosition& noted) : at(start), position(&noted) {}

    reference operator*() const { return *at; }
    CountingIterator& operator++() {
        position->afterLineEnd = *at == '\n';
        position->line += position->afterLineEnd;
        ++at;
        return *this;
    }
    CountingIterator operator++(int) {
        CountingIterator before = *this;
        ++*this;
        return before;
    }
    bool operator==(const CountingIterator& other) const { return at == other.at; }
    bool operator!=(const CountingIterator& other) const { return at != other.at; }

private:
    const char* at;
    ReadPosition* position;
};

/// Builds the values while the parser runs, which tells of each one as soon as it has read it.
class TreeBuilder final : public nlohmann::json_sax<nlohmann::json> {
public:
    TreeBuilder(const ReadPosition& read, const std::string& name) : position(read), source(name) {}

    LocatedJson root;

    bool null() override { return add(LocatedJson::Kind::Null), true; }
    bool boolean(bool value) override { return add(LocatedJson::Kind::Bool).truth = value, true; }
    bool number_integer(number_integer_t value) override { return addNumber(static_cast<double>(value)); }
    bool number_unsigned(number_unsigned_t value) override {
        LocatedJson& added = add(LocatedJson::Kind::Whole, numberLine());
        added.whole = value;
        added.number = static_cast<double>(value);
        return true;
    }
    bool number_float(number_float_t value, const string_t&) override { return addNumber(value); }
    bool string(string_t& value) override { return add(LocatedJson::Kind::Text).text = value, true; }
    bool binary(binary_t&) override { return false; }

    bool start_object(std::size_t) override { return open(LocatedJson::Kind::Object); }
    bool start_array(std::size_t) override { return open(LocatedJson::Kind::List); }
    bool end_object() override { return containers.pop_back(), true; }
    bool end_array() override { return containers.pop_back(), true; }

    bool key(string_t& name) override {
        auto& members = containers.back()->items;
        const auto same = [&name](const LocatedJson& member) { return member.name == name; };
        if (std::any_of(members.begin(), members.end(), same))
            fail(Format("'%' stands there twice") % name);
        if (members.size() == mostMembers)
            fail(Format("an object has more than % members") % mostMembers);
        members.emplace_back().name = name;
        return true;
    }

    bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception& error) override {
        const std::string text = error.what();
        // "[json.exception.out_of_range.406] REASON", for a number that is too great
        const std::size_t tag = text.find("] ");
        // "[json.exception.parse_error.101] parse error at line 1, column 2: REASON"
        const std::size_t column = text.find("column");
        if (column == std::string::npos && tag != std::string::npos)
            fail(text.substr(tag + 2), openField());
        const std::size_t reason = text.find(": ", column);
        fail(reason == std::string::npos ? text : text.substr(reason + 2));
    }

private:
    [[noreturn]] void fail(const std::string& reason, const std::string& field = {}) const {
        const std::string where = Format("%, line %") % source % position.line;
        throw Plugin::ConfigurationPluginException(where + (field.empty() ? ": " : ", " + field + ": ") +
                                                   reason);
    }

    /// Where the value that is being read stands: "nodes[0].interfaceNumber".
    [[nodiscard]] std::string openField() const {
        std::string path;
        for (const LocatedJson* container : containers) {
            const std::vector<LocatedJson>& items = container->items;
            // In a list its last element is open; where no container is open in it, the next one is meant.
            const bool isLast = container == containers.back();
            if (container->kind == LocatedJson::Kind::List)
                path += Format("[%]") % (isLast ? items.size() : items.size() - 1);
            else if (!items.empty())
                path += (path.empty() ? "" : ".") + items.back().name;
        }
        return path;
    }

    /// A number ends with the first character after it, which may be a line's end.
    [[nodiscard]] int numberLine() const { return position.line - (position.afterLineEnd ? 1 : 0); }

    bool addNumber(double value) {
        add(LocatedJson::Kind::Number, numberLine()).number = value;
        return true;
    }

    LocatedJson& add(LocatedJson::Kind kind) { return add(kind, position.line); }

    LocatedJson& add(LocatedJson::Kind kind, int line) {
        LocatedJson& added = next();
        added.kind = kind;
        added.line = line;
        return added;
    }

    LocatedJson& next() {
        if (containers.empty())
            return root;
        LocatedJson& parent = *containers.back();
        return parent.kind == LocatedJson::Kind::List ? parent.items.emplace_back() : parent.items.back();
    }

    bool open(LocatedJson::Kind kind) {
        if (containers.size() == deepest)
            fail(Format("values are nested deeper than %") % deepest);
        containers.push_back(&add(kind));
        return true;
    }

    const ReadPosition& position;
    const std::string& source;
    std::vector<LocatedJson*> containers; ///< those that are open; none of them grows but the last
};

} // namespace

LocatedJson parseLocatedJson(const std::string& text, const std::string& source) {
    ReadPosition position;
    TreeBuilder builder(position, source);
    const char* const first = text.data();
    nlohmann::json::sax_parse(CountingIterator(first, position),
                              CountingIterator(first + text.size(), position), &builder);
    return std::move(builder.root);
}

} // namespace Zentara::Cameras
