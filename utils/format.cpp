#include <zentara/utils/format.h>

#include <charconv>
#include <cstddef>
#include <memory_resource>
#include <streambuf>
#include <string_view>
#include <vector>

#include <zentara/utils/exceptions.h>
#include <zentara/utils/text.h>

#include "utils/message.h"

namespace Zentara::Utils {

namespace {

constexpr std::size_t usualSegments = 8;
constexpr std::size_t usualValues = 96;
/// Room inside the object for the usual message, so that it needs no further memory.
constexpr std::size_t inlineBytes = 512;

/// One literal run or one placeholder of a format string.
struct Segment {
    std::string_view text; ///< points into the format string; empty for a placeholder
    char code = 0;         ///< 0, 'x' or 'X'
    int width = -1;        ///< -1 for none

    bool isPlaceholder() const noexcept { return text.empty(); }
};

/// Appends what a stream writes to a text.
class TextSink final : public std::streambuf {
public:
    explicit TextSink(std::pmr::string& target) : text(target) {}

protected:
    int_type overflow(int_type character) override {
        if (!traits_type::eq_int_type(character, traits_type::eof()))
            text.push_back(traits_type::to_char_type(character));
        return traits_type::not_eof(character);
    }
    std::streamsize xsputn(const char* characters, std::streamsize count) override {
        text.append(characters, static_cast<std::size_t>(count));
        return count;
    }

private:
    std::pmr::string& text;
};

/// A stream that writes to a text, alike under every global locale.
class TextStream {
public:
    explicit TextStream(std::pmr::string& target) : sink(target), stream(&sink) {
        stream.imbue(std::locale::classic());
        stream.setf(std::ios::boolalpha);
    }

private:
    TextSink sink;

public:
    std::ostream stream;
};

/// What a placeholder's code and width change of the stream, put back at the end of the scope.
class StreamState {
public:
    StreamState(std::ostream& target, const Segment& item)
        : stream(target), flags(stream.flags()), width(stream.width()), fill(stream.fill()) {
        if (item.code != 0)
            stream.setf(std::ios::hex, std::ios::basefield);
        if (item.code == 'X')
            stream.setf(std::ios::uppercase);
        if (item.width != -1) {
            stream.width(item.width);
            stream.fill('0');
        }
    }
    ~StreamState() {
        stream.flags(flags);
        stream.width(width);
        stream.fill(fill);
    }
    StreamState(const StreamState&) = delete;
    StreamState& operator=(const StreamState&) = delete;

private:
    std::ostream& stream;
    std::ios::fmtflags flags;
    std::streamsize width;
    char fill;
};

int parseWidth(std::string_view text) {
    int width = 0;
    try {
        width = parseInt(std::string(text));
    } catch (const UFormatException&) {
        throw UFormatException(formatMessage("invalid width \"%\"", std::string(text)));
    }
    if (width < 0)
        throw UFormatException("negative width");
    return width;
}

/// `item` is the text between the braces.
Segment parseFormatItem(std::string_view item) {
    if (item.empty())
        return {};
    if (item.front() != ':')
        throw UFormatException("\":\" expected");
    item.remove_prefix(1);
    if (item.empty())
        throw UFormatException("format code or width expected after \":\"");
    Segment segment;
    if (item.front() == 'x' || item.front() == 'X') {
        segment.code = item.front();
        item.remove_prefix(1);
        if (item.empty())
            return segment;
    }
    segment.width = parseWidth(item);
    return segment;
}

Segment parseBracedItem(std::string_view item) {
    try {
        return parseFormatItem(item);
    } catch (const UFormatException& failure) {
        throw UFormatException(
            formatMessage("invalid format item \"%\": %", std::string(item), failure.message()));
    }
}

/// The views in the result point into `format`.
std::pmr::vector<Segment> parse(std::string_view format, std::pmr::memory_resource& memory) {
    std::pmr::vector<Segment> segments(&memory);
    segments.reserve(usualSegments);
    for (std::size_t position = 0; position < format.size();) {
        const std::size_t percent = format.find('%', position);
        if (percent == std::string_view::npos) {
            segments.push_back({format.substr(position)});
            break;
        }
        const char next = percent + 1 < format.size() ? format[percent + 1] : '\0';
        if (next == '%') {
            // The run ends with the first of the two signs.
            segments.push_back({format.substr(position, percent + 1 - position)});
            position = percent + 2;
            continue;
        }
        if (percent > position)
            segments.push_back({format.substr(position, percent - position)});
        position = percent + 1;
        if (next != '{') {
            segments.push_back({});
            continue;
        }
        const std::size_t end = format.find('}', percent + 2);
        if (end == std::string_view::npos)
            throw UFormatException("unterminated format item");
        segments.push_back(parseBracedItem(format.substr(percent + 2, end - percent - 2)));
        position = end + 1;
    }
    return segments;
}

/// The digits of an integer, as a stream in the classic locale prints them.
template<typename Integer>
std::string_view digitsOf(Integer value, char code, char (&buffer)[24]) noexcept {
    std::to_chars_result result{};
    if (code == 0)
        result = std::to_chars(buffer, buffer + sizeof buffer, value);
    else
        result = std::to_chars(buffer, buffer + sizeof buffer,
                               static_cast<std::make_unsigned_t<Integer>>(value), 16);
    if (code == 'X') {
        for (char* digit = buffer; digit != result.ptr; ++digit)
            // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): to_chars wrote it
            *digit = *digit >= 'a' ? static_cast<char>(*digit - 'a' + 'A') : *digit;
    }
    return {buffer, static_cast<std::size_t>(result.ptr - buffer)};
}

} // namespace

/// Until a value needs a real stream, texts and numbers are appended directly, to the same effect and much
/// faster. From then on everything goes through the stream, for a value may have left its marks on it.
struct Format::Impl {
    explicit Impl(std::string text)
        : format(std::move(text)), segments(parse(format, memory)), output(&memory) {
        output.reserve(format.size() + usualValues);
    }

    /// Emits the literals up to the next placeholder and steps over it; null at the end.
    const Segment* findPlaceholder() {
        while (position < segments.size()) {
            const Segment& segment = segments[position++];
            if (segment.isPlaceholder())
                return &segment;
            write(segment.text, segment.text);
        }
        return nullptr;
    }

    const Segment& nextPlaceholder() {
        const Segment* item = findPlaceholder();
        if (!item)
            throw UFormatException("too many format arguments");
        return *item;
    }

    void moveToNextFormatItem() {
        const Segment& item = nextPlaceholder();
        if (item.code != 0)
            throw UFormatException(formatMessage("format code \"%\" is only valid for integer arguments",
                                                 std::string(1, item.code)));
        if (item.width != -1)
            throw UFormatException("the format width can only be specified for integer arguments");
    }

    /// Writes a value whose printed form is `text`.
    template<typename Value>
    void write(const Value& value, std::string_view text) {
        if (streaming)
            streaming->stream << value;
        else
            output.append(text);
    }

    template<typename Integer>
    void insertInteger(Integer value) {
        const Segment& item = nextPlaceholder();
        if (streaming) {
            const StreamState state(streaming->stream, item);
            streaming->stream << value;
        } else if constexpr (sizeof value == 1) {
            const char character = static_cast<char>(value);
            appendPadded({&character, 1}, item.width);
        } else {
            char buffer[24];
            appendPadded(digitsOf(value, item.code, buffer), item.width);
        }
    }

    void appendPadded(std::string_view text, int width) {
        if (width > 0 && static_cast<std::size_t>(width) > text.size())
            output.append(static_cast<std::size_t>(width) - text.size(), '0');
        output.append(text);
    }

    std::byte storage[inlineBytes];
    std::pmr::monotonic_buffer_resource memory{storage, sizeof storage};
    const std::string format;
    const std::pmr::vector<Segment> segments;
    std::size_t position = 0; ///< the next segment to emit
    std::pmr::string output;
    std::unique_ptr<TextStream> streaming;
};

Format::Format(std::string format) : impl(std::make_unique<Impl>(std::move(format))) {}

Format::~Format() = default;

Format& Format::operator%(signed char value) {
    impl->insertInteger(value);
    return *this;
}

Format& Format::operator%(unsigned char value) {
    impl->insertInteger(value);
    return *this;
}

Format& Format::operator%(short value) {
    impl->insertInteger(value);
    return *this;
}

Format& Format::operator%(unsigned short value) {
    impl->insertInteger(value);
    return *this;
}

Format& Format::operator%(int value) {
    impl->insertInteger(value);
    return *this;
}

Format& Format::operator%(unsigned int value) {
    impl->insertInteger(value);
    return *this;
}

Format& Format::operator%(long long value) {
    impl->insertInteger(value);
    return *this;
}

Format& Format::operator%(unsigned long long value) {
    impl->insertInteger(value);
    return *this;
}

Format::operator std::string() {
    if (impl->findPlaceholder())
        throw UFormatException("not enough format arguments");
    impl->position = 0;
    if (impl->streaming)
        impl->streaming->stream.clear();
    // The output stays, so a second conversion begins with the text of the first.
    return std::string(impl->output);
}

Format& Format::insertText(const char* text) {
    const std::string_view view = text ? std::string_view(text) : std::string_view();
    return insertText(view.data(), view.size());
}

Format& Format::insertText(const char* text, std::size_t size) {
    impl->moveToNextFormatItem();
    impl->write(std::string_view(text, size), {text, size});
    return *this;
}

Format& Format::insertBool(bool value) {
    impl->moveToNextFormatItem();
    impl->write(value, value ? "true" : "false");
    return *this;
}

Format& Format::insertNumber(double value) {
    constexpr int streamPrecision = 6;
    char buffer[32];
    const std::to_chars_result result =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, streamPrecision);
    impl->moveToNextFormatItem();
    impl->write(value, {buffer, static_cast<std::size_t>(result.ptr - buffer)});
    return *this;
}

std::ostream& Format::nextValueStream() {
    impl->moveToNextFormatItem();
    if (!impl->streaming)
        impl->streaming = std::make_unique<TextStream>(impl->output);
    return impl->streaming->stream;
}

} // namespace Zentara::Utils
