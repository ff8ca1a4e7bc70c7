#include "host/plugins/library_machine.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <vector>

#include <zentara/utils/format.h>

#include "host/files/paths.h"

namespace Zentara::Host {
namespace {

constexpr std::size_t headBytes = 4096; ///< linkers place the headers well within

struct Machine {
    std::uint32_t number;
    const char* name;
};
// By the three formats' own numbers: e_machine, Machine and cputype.
constexpr Machine elfMachines[]{{3, "x86"},        {8, "MIPS"},    {20, "PowerPC"},  {21, "PowerPC, 64 bits"},
                                {40, "ARM"},       {62, "x86-64"}, {183, "AArch64"}, {243, "RISC-V"},
                                {258, "LoongArch"}};
constexpr Machine windowsMachines[]{{0x14C, "x86"}, {0x1C4, "ARM"}, {0x8664, "x86-64"}, {0xAA64, "AArch64"}};
constexpr Machine appleMachines[]{{7, "x86"}, {0x1000007, "x86-64"}, {0x100000C, "AArch64"}};

template<std::size_t count>
std::string nameOf(const char* system, const Machine (&machines)[count], std::uint32_t number) {
    const auto known = std::find_if(std::begin(machines), std::end(machines),
                                    [number](const Machine& machine) { return machine.number == number; });
    if (known != std::end(machines))
        return std::string(system) + " on " + known->name;
    return Utils::Format("% on machine %") % system % number;
}

/// The first bytes of a file.
class Head {
public:
    explicit Head(const std::string& path) : bytes(headBytes) {
        std::ifstream file(pathOf(path), std::ios::binary);
        file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        bytes.resize(static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0)));
    }

    [[nodiscard]] bool begins(std::string_view mark, std::size_t at = 0) const {
        return at <= bytes.size() && mark.size() <= bytes.size() - at &&
               std::equal(
                   mark.begin(), mark.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at),
                   [](char left, std::uint8_t right) { return static_cast<std::uint8_t>(left) == right; });
    }
    /// 0 beyond the end.
    [[nodiscard]] std::uint32_t number(std::size_t at, std::size_t count, bool bigEndian = false) const {
        std::uint32_t value = 0;
        for (std::size_t index = 0; index < count; ++index) {
            const std::size_t place = at + (bigEndian ? index : count - 1 - index);
            value = value << 8 | (place < bytes.size() ? bytes[place] : 0U);
        }
        return value;
    }

private:
    std::vector<std::uint8_t> bytes;
};

} // namespace

std::string machineOf(const std::string& path) {
    using namespace std::string_view_literals;
    const Head head(path);
    if (head.begins("\x7F"
                    "ELF"sv)) {
        const std::uint32_t machine = head.number(18, 2, head.number(5, 1) == 2);
        const bool isAlwaysNarrow = machine == 3 || machine == 20 || machine == 40;
        const bool isNarrow = head.number(4, 1) == 1 && !isAlwaysNarrow;
        return nameOf("Linux", elfMachines, machine) + (isNarrow ? ", 32 bits" : "");
    }
    // The old program in front says where the new header begins.
    if (head.begins("MZ"sv)) {
        const std::size_t start = head.number(0x3C, 4);
        if (head.begins("PE\0\0"sv, start))
            return nameOf("Windows", windowsMachines, head.number(start + 4, 2));
    }
    if (head.begins("\xCF\xFA\xED\xFE"sv) || head.begins("\xCE\xFA\xED\xFE"sv))
        return nameOf("macOS", appleMachines, head.number(4, 4));
    return {};
}

} // namespace Zentara::Host
