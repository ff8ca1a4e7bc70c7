// Format strings of any bytes, filled with values of any kind, beside the plainest way of doing the same: a list of pieces
// and one stream. The first byte is the string's length; behind it each value is its kind and its bytes.
#include <cctype>
#include <iomanip>
#include <sstream>
#include <vector>

#include <zentara/utils/exceptions.h>
#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

#include "input.h"

namespace Zentara::Fuzz {
namespace {

using Utils::Format;
using Utils::UFormatException;

constexpr int widest = 4096; ///< a text of that many zeros says no less than a longer one

/// Leaves the stream in hexadecimal, as a careless value might.
struct Careless {
    std::uint32_t value;
    friend std::ostream& operator<<(std::ostream& out, const Careless& careless) {
        return out << std::hex << careless.value;
    }
};

class PlainFormat {
public:
    explicit PlainFormat(const std::string& text) {
        out.imbue(std::locale::classic());
        out << std::boolalpha;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t sign = std::min(text.find('%', at), text.size());
            std::string literal = text.substr(at, sign - at);
            const char after = sign + 1 < text.size() ? text[sign + 1] : '\0';
            if (after == '%')
                literal += '%';
            if (!literal.empty())
                pieces.push_back({literal});
            at = sign + (after == '%' ? 2 : 1);
            if (sign == text.size() || after == '%')
                continue;
            if (after != '{') {
                pieces.push_back({"", true});
                continue;
            }
            const std::size_t end = text.find('}', sign + 2);
            if (end == std::string::npos)
                throw UFormatException("unterminated format item");
            pieces.push_back(itemOf(text.substr(sign + 2, end - sign - 2)));
            at = end + 1;
        }
    }

    template<typename Value>
    void fill(const Value& value) {
        const Piece& piece = nextPlaceholder("too many format arguments");
        if constexpr (std::is_integral_v<Value> && !std::is_same_v<Value, bool> &&
                      !std::is_same_v<Value, char>) {
            const auto flags = out.flags();
            if (piece.code != '\0')
                out << std::hex;
            if (piece.code == 'X')
                out << std::uppercase;
            if (piece.width >= 0)
                out << std::setw(piece.width) << std::setfill('0');
            out << value;
            out.flags(flags);
            out << std::setw(0) << std::setfill(' ');
        } else {
            if (piece.code != '\0')
                throw UFormatException("format code \"" + std::string(1, piece.code) +
                                       "\" is only valid for integer arguments");
            if (piece.width >= 0)
                throw UFormatException("the format width can only be specified for integer arguments");
            out << value;
        }
    }

    std::string text() {
        for (; position < pieces.size(); ++position) {
            if (pieces[position].isPlaceholder)
                throw UFormatException("not enough format arguments");
            out << pieces[position].literal;
        }
        position = 0;
        return out.str();
    }

    [[nodiscard]] bool isTooWide() const {
        return std::any_of(pieces.begin(), pieces.end(),
                           [](const Piece& piece) { return piece.width > widest; });
    }

private:
    struct Piece {
        std::string literal;
        bool isPlaceholder = false;
        char code = '\0';
        int width = -1;
    };

    static Piece itemOf(const std::string& item) {
        const auto refuse = [&](const std::string& reason) {
            throw UFormatException("invalid format item \"" + item + "\": " + reason);
        };
        Piece piece{"", true};
        if (item.empty())
            return piece;
        if (item.front() != ':')
            refuse("\":\" expected");
        std::string rest = item.substr(1);
        if (rest.empty())
            refuse("format code or width expected after \":\"");
        if (std::toupper(rest.front()) == 'X') {
            piece.code = rest.front();
            rest.erase(0, 1);
            if (rest.empty())
                return piece;
        }
        try {
            piece.width = Utils::parseInt(rest);
        } catch (const UFormatException&) {
            refuse("invalid width \"" + rest + "\"");
        }
        if (piece.width < 0)
            refuse("negative width");
        return piece;
    }

    const Piece& nextPlaceholder(const char* failure) {
        for (; position < pieces.size(); ++position) {
            if (pieces[position].isPlaceholder)
                return pieces[position++];
            out << pieces[position].literal;
        }
        throw UFormatException(failure);
    }

    std::vector<Piece> pieces;
    std::size_t position = 0;
    std::ostringstream out;
};

template<typename Target, typename Value>
void give(Target& target, const Value& value) {
    if constexpr (std::is_same_v<Target, Format>)
        target % value;
    else
        target.fill(value);
}

template<typename Target>
void giveNext(Target& target, Input& input) {
    switch (input.byte() % 14) {
    case 0:
        return give(target, input.number<signed char>());
    case 1:
        return give(target, input.number<unsigned char>());
    case 2:
        return give(target, input.number<short>());
    case 3:
        return give(target, input.number<unsigned short>());
    case 4:
        return give(target, input.number<int>());
    case 5:
        return give(target, input.number<unsigned int>());
    case 6:
        return give(target, input.number<long>());
    case 7:
        return give(target, input.number<unsigned long long>());
    case 8:
        return give(target, input.number<float>());
    case 9:
        return give(target, input.number<double>());
    case 10:
        return give(target, (input.byte() & 1) != 0);
    case 11:
        return give(target, static_cast<char>(input.byte()));
    case 12:
        return give(target, Careless{input.number<std::uint32_t>()});
    default:
        return give(target, input.text(input.byte()));
    }
}

/// The text, converted once and again, or what is wrong.
template<typename Target>
std::string resultOf(Target& target, Input input) {
    try {
        while (!input.isEmpty())
            giveNext(target, input);
        if constexpr (std::is_same_v<Target, Format>)
            return static_cast<std::string>(target);
        else
            return target.text();
    } catch (const UFormatException& failure) {
        return "refused: " + failure.message();
    }
}

template<typename Target>
std::string resultOf(const std::string& format, const Input& values) {
    try {
        Target target(format);
        return resultOf(target, values);
    } catch (const UFormatException& failure) {
        return "refused: " + failure.message();
    }
}

bool isTooWide(const std::string& format) {
    try {
        return PlainFormat(format).isTooWide();
    } catch (const UFormatException&) {
        return false;
    }
}

} // namespace
} // namespace Zentara::Fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Zentara::Fuzz;
    Input input(data, size);
    const std::string format = input.text(input.byte());
    if (!isTooWide(format))
        require(resultOf<Zentara::Utils::Format>(format, input) == resultOf<PlainFormat>(format, input));
    return 0;
}
