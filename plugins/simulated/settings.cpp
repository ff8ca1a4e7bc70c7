#include "plugins/simulated/settings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <optional>
#include <utility>

#include <zentara/io/camera_chip.h>
#include <zentara/utils/environment_variable.h>
#include <zentara/utils/exceptions.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

namespace Zentara::Simulated {
namespace {

using Utils::Format;

constexpr std::array<const char*, operationCount> operationNames{
    "create",
    "initialize",
    "dispose",
    "threadInitialize",
    "threadUninitialize",
    "readBuffer",
    "open",
    "close",
    "disable",
    "getControlRanges",
    "getConfigurations",
    "enableColor",
    "enableDepth",
    "setControl",
    "send",
    "recv",
    "len",
    "setup",
    "controlRead",
    "controlWrite",
    "bulkWrite",
    "pause",
    "resume",
    "setRegion",
    "setOutputFormat",
    "getDefault",
    "enableAudio",
    "setLevel",
    "setMute",
    "transfer",
};

/// In the order of the exception kinds' numbers.
constexpr std::array<const char*, 9> kindNames{
    "streaming",    "configuration",  "timeout",          "argument",           "io",
    "notSupported", "initialization", "invalidOperation", "unauthorizedAccess",
};

/// In the order of the fault kinds, from Hang on.
constexpr std::array<const char*, 6> transferFaultNames{"hang", "fail", "late", "short", "long", "corrupt"};
constexpr std::uint32_t usualHangMillis = 10000;

template<std::size_t count>
int indexOf(const std::array<const char*, count>& names, const std::string& name) {
    for (std::size_t index = 0; index < count; ++index) {
        if (name == names[index])
            return static_cast<int>(index);
    }
    return -1;
}

template<std::size_t count>
std::string list(const std::array<const char*, count>& names) {
    std::string text;
    for (const char* name : names)
        text += (text.empty() ? "" : " ") + std::string(name);
    return text;
}

/// Takes one statement apart, word by word. Knows where it stands, for the message.
class Statement {
public:
    Statement(std::string line, std::string where) : text(std::move(line)), place(std::move(where)) {
        skipSpace();
    }

    [[nodiscard]] bool atEnd() const { return position == text.size(); }

    /// The next word; `what` says what should stand there.
    std::string word(const char* what) {
        if (atEnd())
            fail(Format("% is missing at the end of the line") % what);
        const std::size_t start = position;
        while (position < text.size() && !isSpace(text[position]))
            ++position;
        std::string taken = text.substr(start, position - start);
        skipSpace();
        return taken;
    }

    std::string rest() { return text.substr(std::exchange(position, text.size())); }

    std::uint32_t number(const char* what) {
        const std::string digits = word(what);
        std::uint32_t value = 0;
        const char* end = digits.data() + digits.size();
        const bool hexadecimal = digits.size() > 2 && digits[0] == '0' && digits[1] == 'x';
        const auto result =
            std::from_chars(digits.data() + (hexadecimal ? 2 : 0), end, value, hexadecimal ? 16 : 10);
        if (result.ec != std::errc() || result.ptr != end)
            fail(Format("% must be a whole number from 0 to 4294967295, not '%'") % what % digits);
        return value;
    }

    [[nodiscard]] const std::string& where() const { return place; }

    void expect(const char* keyword) {
        const std::string found = word(keyword);
        if (found != keyword)
            fail(Format("expected '%', found '%'") % keyword % found);
    }

    [[noreturn]] void fail(const std::string& reason) const {
        throw Plugin::ConfigurationPluginException(Format("simulated camera settings: %: %") % place %
                                                   reason);
    }

private:
    static bool isSpace(char character) { return character == ' ' || character == '\t' || character == '\r'; }

    void skipSpace() {
        while (position < text.size() && isSpace(text[position]))
            ++position;
    }

    std::string text;
    std::string place;
    std::size_t position = 0;
};

void readKind(Statement& statement, Fault& fault) {
    const std::string name = statement.word("the kind of exception");
    if (name == "foreign") {
        fault.kind = Fault::Kind::Foreign;
        return;
    }
    const int kind = indexOf(kindNames, name);
    if (kind < 0)
        statement.fail(Format("unknown kind of exception '%'; known: % foreign") % name % list(kindNames));
    fault.exception = static_cast<Plugin::PluginExceptionType>(kind);
}

void readPlace(Statement& statement, Fault& fault) {
    statement.expect("at");
    std::string name = statement.word("the operation");
    const std::size_t dot = name.find('.');
    if (dot != std::string::npos) {
        const std::string device = name.substr(0, dot);
        if (device != "video" && device != "audio")
            statement.fail(Format("unknown device '%'; known: video audio") % device);
        fault.device = device == "video" ? Device::Video : Device::Audio;
        name.erase(0, dot + 1);
    }
    const int operation = indexOf(operationNames, name);
    if (operation < 0)
        statement.fail(Format("unknown operation '%'; known: %") % name % list(operationNames));
    fault.at = static_cast<Operation>(operation);
}

void readOptions(Statement& statement, Fault& fault) {
    while (!statement.atEnd()) {
        const std::string option = statement.word("an option");
        if (option == "after")
            fault.after = statement.number("the count after 'after'");
        else if (option == "times")
            fault.times = statement.number("the count after 'times'");
        else if (option == "saying" && fault.kind != Fault::Kind::Hang && !statement.atEnd())
            fault.message = statement.rest();
        else
            statement.fail(Format("unexpected '%' at the end of the line") % option);
    }
}

Fault readFault(Statement& statement, bool hang) {
    Fault fault;
    if (hang) {
        fault.kind = Fault::Kind::Hang;
        fault.milliseconds = statement.number("the time in milliseconds");
    } else {
        readKind(statement, fault);
    }
    readPlace(statement, fault);
    readOptions(statement, fault);
    return fault;
}

/// Empty for none.
std::string chipNamed(const std::string& name, const std::string& place) {
    if (name == "none")
        return {};
    const std::vector<std::string> known = firmwareNames();
    const auto found = std::find(known.begin(), known.end(), Utils::toUpper(name));
    if (found == known.end())
        throw Plugin::ConfigurationPluginException(
            Format("simulated camera settings: %: unknown chip '%'; known: % none") % place % name %
            Utils::join(known, " "));
    return *found;
}

std::uint32_t numberUpTo(Statement& statement, const char* what, std::uint32_t least, std::uint32_t most) {
    const std::uint32_t value = statement.number(what);
    if (value < least || value > most)
        statement.fail(Format("% must be % to %, not %") % what % least % most % value);
    return value;
}

OV0570Firmware::Device readDevice(Statement& statement) {
    OV0570Firmware::Device device{};
    device.busAddress = static_cast<std::uint16_t>(numberUpTo(statement, "the bus address", 0, 0xFFFF));
    device.addressCode = static_cast<std::uint8_t>(numberUpTo(statement, "the address bytes", 1, 4) - 1);
    device.dataCode = static_cast<std::uint8_t>(numberUpTo(statement, "the data bytes", 1, 4) - 1);
    return device;
}

Fault readTransferFault(Statement& statement) {
    Fault fault;
    fault.at = Operation::Transfer;
    fault.after = numberUpTo(statement, "the number of the transfer", 1, 0xFFFFFFFF) - 1;
    fault.times = 1;
    const std::string name = statement.word("what goes wrong with it");
    const int kind = indexOf(transferFaultNames, name);
    if (kind < 0)
        statement.fail(Format("unknown transfer fault '%'; known: %") % name % list(transferFaultNames));
    fault.kind = static_cast<Fault::Kind>(static_cast<int>(Fault::Kind::Hang) + kind);
    fault.milliseconds = usualHangMillis;
    if (!statement.atEnd())
        fault.milliseconds = statement.number("the time in milliseconds");
    return fault;
}

/// False for a statement that is not about the controller.
bool readFirmwareStatement(Statement& statement, const std::string& verb, FirmwareSettings& settings) {
    if (verb == "chip")
        settings.chip = chipNamed(statement.word("the chip"), statement.where());
    else if (verb == "device")
        settings.devices.push_back(readDevice(statement));
    else if (verb == "claim")
        settings.claimedDevices =
            static_cast<std::uint8_t>(numberUpTo(statement, "the devices claimed", 0, 255));
    else if (verb == "fpgaRounds")
        settings.fpgaRounds = numberUpTo(statement, "the rounds", 0, 1000);
    else if (verb == "resetReads")
        settings.resetReads = numberUpTo(statement, "the reads", 0, 1000);
    else if (verb == "flash")
        settings.flash = statement.rest();
    else if (verb == "keepFlash")
        settings.keptFlash = statement.rest();
    else if (verb == "keepRegisters")
        settings.keptRegisters = statement.rest();
    else
        return false;
    return true;
}

void readStatement(Statement& statement, Settings& settings) {
    const std::string verb = statement.word("the statement");
    if (verb == "throw" || verb == "hang") {
        settings.faults.push_back(readFault(statement, verb == "hang"));
        return;
    }
    if (verb == "seed") {
        settings.seed = statement.number("the seed");
    } else if (verb == "refuse") {
        statement.expect("cancel");
        settings.refuseCancel = true;
    } else if (verb == "transfer") {
        settings.faults.push_back(readTransferFault(statement));
    } else if (verb == "transferLog") {
        settings.transferLog = statement.rest();
    } else if (!readFirmwareStatement(statement, verb, settings.firmware)) {
        statement.fail(
            Format("unknown statement '%'; known: seed throw hang refuse chip device claim fpgaRounds "
                   "resetReads flash keepFlash keepRegisters transfer transferLog") %
            verb);
    }
    if (!statement.atEnd())
        statement.fail(Format("unexpected '%' at the end of the line") % statement.rest());
}

} // namespace

const char* operationName(Operation operation) noexcept {
    return operationNames[static_cast<std::size_t>(operation)];
}

namespace {

void readStatements(const std::string& text, const std::string& source, Settings& settings) {
    std::size_t start = 0;
    for (int line = 1; start <= text.size(); ++line) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string whole = text.substr(start, end - start);
        Statement statement(whole.substr(0, whole.find('#')), Format("%, line %") % source % line);
        if (!statement.atEnd())
            readStatement(statement, settings);
        start = end + 1;
    }
}

/// The text with a line for each statement, so that messages count statements as lines.
std::string splitStatements(std::string text) {
    std::replace(text.begin(), text.end(), ';', '\n');
    return text;
}

Settings readEnvironment() {
    Utils::EnvironmentVariable setting(Settings::variable);
    if (!setting.isDefined())
        return {};
    const std::string text = setting.getValue();
    if (text.front() != '@')
        return Settings::parse(splitStatements(text), Settings::variable);
    const std::string path = text.substr(1);
    try {
        return Settings::parse(Utils::readFile(path), path);
    } catch (const Utils::UIOException& failure) {
        throw Plugin::ConfigurationPluginException(Format("simulated camera settings: %") % failure.what());
    }
}

} // namespace

Settings Settings::parse(const std::string& text, const std::string& source) {
    Settings settings;
    readStatements(text, source, settings);
    return settings;
}

void Settings::add(const std::string& text, const std::string& source) {
    readStatements(splitStatements(text), source, *this);
}

Settings Settings::fromEnvironment() {
    Settings settings = readEnvironment();
    Utils::EnvironmentVariable chip(IO::CameraChip::wantedVariable);
    if (chip.isDefined())
        settings.firmware.chip = chipNamed(chip.getValue(), IO::CameraChip::wantedVariable);
    return settings;
}

} // namespace Zentara::Simulated
