#include "plugins/simulated/descriptions/located_json.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include <nlohmann/json.hpp>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

namespace Zentara::Simulated {
namespace {

using Utils::Format;

constexpr std::size_t deepest = 32;

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
        members.emplace_back().name = name;
        return true;
    }

    bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception& error) override {
        // "[json.exception.parse_error.101] parse error at line 1, column 2: REASON"
        const std::string text = error.what();
        const std::size_t column = text.find("column");
        const std::size_t reason = text.find(": ", column == std::string::npos ? 0 : column);
        fail(reason == std::string::npos ? text : text.substr(reason + 2));
    }

private:
    [[noreturn]] void fail(const std::string& reason) const {
        throw Plugin::ConfigurationPluginException(Format("%, line %: %") % source % position.line % reason);
    }

    /// A number ends with the first character after it, which may be a line's end.
    [[nodiscard]] int numberLine() const { return position.line - (position.afterLineEnd ? 1 : 0); }

    bool addNumber(double value) {
        add(LocatedJson::Kind::Number, numberLine()).number = value;
        return true;
    }

    LocatedJson& add(LocatedJson::Kind kind) { return add(kind, position.line); }

    LocatedJson& add(LocatedJson::Kind kind, int line) {
        LocatedJson& added = place();
        added.kind = kind;
        added.line = line;
        return added;
    }

    LocatedJson& place() {
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

} // namespace Zentara::Simulated
