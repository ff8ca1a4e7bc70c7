#include <zentara/utils/format.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <new>
#include <streambuf>
#include <string_view>

#include <zentara/utils/exceptions.h>
#include <zentara/utils/text.h>

#include "utils/growing_bytes.h"
#include "utils/message.h"
#include "utils/places.h"

namespace Zentara::Utils {

namespace {

/// Room inside the record for the usual message, so that it needs no further memory.
constexpr std::size_t usualBytes = 512;

using Output = GrowingBytes<usualBytes>;

/// What a placeholder says of the integer that fills it.
struct Item {
    char code = 0;  ///< 0, 'x' or 'X'
    int width = -1; ///< -1 for none
};

/// Appends what a stream writes to a text.
class TextSink final : public std::streambuf {
public:
    explicit TextSink(Output& target) : text(target) {}

protected:
    int_type overflow(int_type character) override {
        if (!traits_type::eq_int_type(character, traits_type::eof()))
            text.append(1, traits_type::to_char_type(character));
        return traits_type::not_eof(character);
    }
    std::streamsize xsputn(const char* characters, std::streamsize count) override {
        text.append(characters, static_cast<std::size_t>(count));
        return count;
    }

private:
    Output& text;
};

/// A stream that writes to a text, alike under every global locale.
class TextStream {
public:
    explicit TextStream(Output& target) : sink(target), stream(&sink) {
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
    StreamState(std::ostream& target, const Item& item)
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
    if (text.size() == 1 && text.front() >= '0' && text.front() <= '9')
        return text.front() - '0';
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
Item parseFormatItem(std::string_view item) {
    if (item.empty())
        return {};
    if (item.front() != ':')
        throw UFormatException("\":\" expected");
    item.remove_prefix(1);
    if (item.empty())
        throw UFormatException("format code or width expected after \":\"");
    Item parsed;
    if (item.front() == 'x' || item.front() == 'X') {
        parsed.code = item.front();
        item.remove_prefix(1);
        if (item.empty())
            return parsed;
    }
    parsed.width = parseWidth(item);
    return parsed;
}

Item parseBracedItem(std::string_view item) {
    try {
        return parseFormatItem(item);
    } catch (const UFormatException& failure) {
        throw UFormatException(
            formatMessage("invalid format item \"%\": %", std::string(item), failure.message()));
    }
}

/// As find(), for what is found soon or not at all.
std::size_t findSoon(std::string_view text, char wanted, std::size_t from) noexcept {
    for (; from < text.size(); ++from) {
        if (text[from] == wanted)
            return from;
    }
    return std::string_view::npos;
}

/// As find(). A text that lies in the string itself was written just now and in small pieces, for which a search that
/// takes many bytes at once has to wait; and what is as short takes less than the call of one.
std::size_t findBrace(std::string_view text, std::size_t from) noexcept {
    constexpr std::size_t insideString = 15;
    return text.size() - from > insideString ? text.find('{', from) : findSoon(text, '{', from);
}

/// The item whose opening brace stands at `position`, which then is behind the closing one.
Item takeItem(std::string_view format, std::size_t& position) {
    const std::size_t start = position + 1;
    const std::size_t end = findSoon(format, '}', start);
    if (end == std::string_view::npos)
        throw UFormatException("unterminated format item");
    position = end + 1;
    return parseBracedItem(format.substr(start, end - start));
}

/// Takes the literal run at `position`, which may be empty, and what ends it: "%%", whose first sign belongs to the run,
/// or the sign of a placeholder. \return whether a placeholder follows
bool takeRun(std::string_view format, std::size_t& position, std::string_view& run) noexcept {
    const std::size_t start = position;
    while (position < format.size() && format[position] != '%')
        ++position;
    const bool isDoubled = position + 1 < format.size() && format[position + 1] == '%';
    run = format.substr(start, position - start + (isDoubled ? 1 : 0));
    const bool isPlaceholder = position < format.size() && !isDoubled;
    position = std::min(position + (isDoubled ? 2 : 1), format.size());
    return isPlaceholder;
}

/// Items in braces may be malformed, which is told before anything is written.
void checkItems(std::string_view format) {
    std::size_t done = 0; // before it all is checked
    for (std::size_t brace = findBrace(format, 0); brace != std::string_view::npos;
         brace = findBrace(format, done)) {
        std::size_t signs = 0;
        while (brace - signs > done && format[brace - signs - 1] == '%')
            ++signs;
        done = brace + 1;
        if (signs % 2 == 0) // each two stand for one percent sign
            continue;
        static_cast<void>(takeItem(format, brace));
        done = brace;
    }
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
    explicit Impl(std::string text) : format(std::move(text)) { checkItems(format); }

    /// Emits the literals up to the next placeholder and steps over it. \return whether there is one
    bool findPlaceholder(Item& item) {
        std::string_view run;
        while (position < format.size()) {
            const bool isPlaceholder = takeRun(format, position, run);
            if (!run.empty())
                write(run, run);
            if (!isPlaceholder)
                continue;
            const bool hasBraces = position < format.size() && format[position] == '{';
            item = hasBraces ? takeItem(format, position) : Item();
            return true;
        }
        return false;
    }

    Item nextPlaceholder() {
        Item item;
        if (!findPlaceholder(item))
            throw UFormatException("too many format arguments");
        return item;
    }

    void moveToNextFormatItem() {
        const Item item = nextPlaceholder();
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
        const Item item = nextPlaceholder();
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

    struct Records;
    static void* operator new(std::size_t size);
    static void operator delete(void* record) noexcept;

    const std::string format;
    std::size_t position = 0; ///< of what has not been emitted yet, in `format`
    Output output;
    std::unique_ptr<TextStream> streaming; ///< null until a value needs it, and then for good
};

struct Format::Impl::Records {
    static Places<sizeof(Impl)> places;
};

constinit Places<sizeof(Format::Impl)> Format::Impl::Records::places;

void* Format::Impl::operator new(std::size_t size) {
    void* const place = Records::places.take();
    return place ? place : ::operator new(size);
}

void Format::Impl::operator delete(void* record) noexcept {
    if (!Records::places.giveBack(record))
        ::operator delete(record);
}

Format::Format(std::string format) : impl(new Impl(std::move(format))) {}

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
    if (Item item; impl->findPlaceholder(item))
        throw UFormatException("not enough format arguments");
    impl->position = 0;
    if (impl->streaming)
        impl->streaming->stream.clear();
    // The output stays, so a second conversion begins with the text of the first.
    return std::string(impl->output.text());
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
