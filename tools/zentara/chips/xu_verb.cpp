#include <algorithm>
#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/host/hex_bytes.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/utils/format.h>

#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/chips/chip_session.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

constexpr int maxControlBytes = 0xFFFF; ///< the length field of a control transfer has 16 bits

struct XuOptions : ChipOptions {
    unsigned control = 0;
    std::string bytes;
    bool flag = false;
};

/// Bytes from pairs of hexadecimal digits, with or without blanks, colons or dashes between.
Bytes parseBytes(const std::string& text) {
    std::string digits;
    for (const char letter : text) {
        if (letter != ' ' && letter != ':' && letter != '-')
            digits += letter;
    }
    if (auto bytes = fromHex(digits))
        return *std::move(bytes);
    throw Failure(Failure::Usage,
                  Format("'%' is no list of bytes; want pairs of digits from 00 to FF") % text);
}

/// A device may answer anything: what no control transfer can hold is not taken for a length.
unsigned lengthOf(ChipSession& session, const XuOptions& options) {
    int length = 0;
    attempt(Format("ask for the length of control %") % options.control,
            [&] { length = session.device().len(session.chip().unit(), options.control); });
    if (length < 0 || length > maxControlBytes)
        throw Failure(Failure::Failed, Format("the camera gives control % % bytes; a control has 0 to %") %
                                           options.control % length % maxControlBytes);
    return static_cast<unsigned>(length);
}

/// The bytes of a packet, filled up with zeros to the control's length.
Bytes packetOf(ChipSession& session, const XuOptions& options) {
    Bytes packet = parseBytes(options.bytes);
    const unsigned length = lengthOf(session, options);
    if (packet.size() > length)
        throw Failure(Failure::Usage, Format("% bytes are out of range for control %: 0 to %") %
                                          static_cast<unsigned>(packet.size()) % options.control % length);
    packet.resize(length);
    return packet;
}

Json resultOf(ChipSession& session, const XuOptions& options) {
    return {{"unit", session.chip().unit()}, {"control", options.control}};
}

ExitCode runLen(const XuOptions& options, Console& console) {
    ChipSession session(options, console);
    const unsigned length = lengthOf(session, options);
    Json result = resultOf(session, options);
    result["length"] = length;
    session.finish(result, std::to_string(length));
    return Failure::None;
}

/// To get may take asking: the packet goes out, and comes back with the answer. With the flag it only comes.
ExitCode runXuGet(const XuOptions& options, Console& console) {
    ChipSession session(options, console);
    Bytes packet = packetOf(session, options);
    attempt(Format("get control %") % options.control, [&] {
        session.chip().wire().recv(session.chip().unit(), options.control,
                                   static_cast<unsigned long>(packet.size()), packet.data(),
                                   options.flag || options.bytes.empty());
    });
    Json result = resultOf(session, options);
    result["bytes"] = IO::bytesText(packet);
    session.finish(result, IO::bytesText(packet));
    return Failure::None;
}

ExitCode runXuSet(XuOptions options, Console& console) {
    options.writes = true;
    ChipSession session(options, console);
    Bytes packet = packetOf(session, options);
    attempt(Format("set control %") % options.control, [&] {
        session.chip().wire().send(session.chip().unit(), options.control,
                                   static_cast<unsigned long>(packet.size()), packet.data());
    });
    Json result = resultOf(session, options);
    result["bytes"] = IO::bytesText(packet);
    session.finish(result, Format("control % := %") % options.control % IO::bytesText(packet));
    return Failure::None;
}

/// What a control may tell of its values, and by which name.
std::vector<std::pair<const char*, const Bytes*>> limitsOf(const ExtensionControl& control) {
    std::vector<std::pair<const char*, const Bytes*>> limits{{"minimum", &control.minimum},
                                                             {"maximum", &control.maximum},
                                                             {"step", &control.step},
                                                             {"default", &control.standard}};
    std::erase_if(limits, [](const auto& limit) { return limit.second->empty(); });
    return limits;
}

/// Bytes that are all the same as one of them.
std::string shortBytes(const Bytes& bytes) {
    const auto same = std::count(bytes.begin(), bytes.end(), bytes.front());
    return static_cast<std::size_t>(same) == bytes.size() && same > 4
               ? IO::bytesText({bytes.front()}) + " ..."
               : IO::bytesText(bytes);
}

std::string textOf(const ExtensionUnit& unit) {
    std::string text = Format("unit %  %\n") % unit.number % unit.guidText();
    for (const ExtensionControl& control : unit.controls) {
        text += Format("  control %  % bytes ") % control.selector % control.length;
        text += std::string(control.canGet ? " get" : "") + (control.canSet ? " set" : "");
        for (const auto& [name, bytes] : limitsOf(control))
            text += std::string("  ") + name + " " + shortBytes(*bytes);
        text += (control.failure.empty() ? "" : "  " + control.failure) + "\n";
    }
    return text;
}

Json jsonOf(const ExtensionUnit& unit) {
    Json json{{"unit", unit.number}, {"guid", unit.guidText()}, {"controls", Json::array()}};
    for (const ExtensionControl& control : unit.controls) {
        Json told{{"control", control.selector},
                  {"length", control.length},
                  {"get", control.canGet},
                  {"set", control.canSet}};
        for (const auto& [name, bytes] : limitsOf(control))
            told[name] = IO::bytesText(*bytes);
        if (!control.failure.empty())
            told["failure"] = control.failure;
        json["controls"].push_back(std::move(told));
    }
    return json;
}

ExitCode runXuList(const CameraOptions& options, Console& console) {
    return withCamera(options, console, [](CameraSession& session) {
        Json result{{"units", Json::array()}};
        std::string text;
        for (const ExtensionUnit& unit : session.camera().extensionUnits()) {
            result["units"].push_back(jsonOf(unit));
            text += textOf(unit);
        }
        session.finish(result, text.empty() ? "the camera has no extension units\n" : text);
        return Failure::None;
    });
}

CLI::App* addAction(CLI::App& command, const char* name, const char* text, XuOptions& options) {
    CLI::App* action = command.add_subcommand(name, text);
    action->add_option("CONTROL", options.control, "The control's selector")
        ->required()
        ->check(CLI::Range(1U, 255U));
    addChipOptions(*action, options);
    return action;
}

} // namespace

Verb addXuVerb(CLI::App& program) {
    auto options = std::make_shared<XuOptions>();
    CLI::App* command =
        program.add_subcommand("xu", "Raw transfers to a camera's extension unit")->group("Verbs");
    command->require_subcommand(1);
    CLI::App* get = addAction(*command, "get", "Prints a control's bytes", *options);
    get->add_option("BYTES", options->bytes, "What to ask with, as pairs of digits; the rest is zeros");
    get->add_flag("--flag", options->flag,
                  "Receive with the device's flag set: BYTES ask nothing; so without BYTES");
    CLI::App* set = addAction(*command, "set", "Sets a control", *options);
    set->add_option("BYTES", options->bytes, "The packet, as pairs of digits; the rest is zeros")->required();
    auto listed = std::make_shared<CameraOptions>();
    CLI::App* list =
        command->add_subcommand("list", "Prints the camera's extension units: controls, lengths, limits");
    addCameraOptions(*list, *listed);
    CLI::App* len = addAction(*command, "len", "Prints how many bytes a control has", *options);
    return {command, [options, listed, get, list, len](Console& console) {
                if (list->parsed())
                    return runXuList(*listed, console);
                return len->parsed()
                           ? runLen(*options, console)
                           : (get->parsed() ? runXuGet(*options, console) : runXuSet(*options, console));
            }};
}

} // namespace Zentara::Tool
