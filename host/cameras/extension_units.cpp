#include "host/cameras/extension_units.h"

#include <algorithm>

#include <zentara/io/extension_unit_query.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

#include "host/attempt.h"
#include "host/guid_text.h"
#include "utils/visible_text.h"

namespace Zentara::Host {

using IO::ExtensionUnitQuery;
using Plugin::PluginException;
using Utils::Format;

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int mostBytes = 0xFFFF; // the length field of a control transfer has 16 bits
constexpr std::uint8_t canBeGot = 1;
constexpr std::uint8_t canBeSet = 2;

Bytes receive(IO::VideoDeviceProxy& device, std::uint32_t unit, std::int32_t control, std::size_t length) {
    Bytes bytes(length);
    device.recv(unit, control, static_cast<std::uint32_t>(length), bytes.data(), true);
    return bytes;
}

Bytes readList(IO::VideoDeviceProxy& device) {
    const int length = device.len(IO::extensionUnitList, IO::extensionUnitList);
    return receive(device, IO::extensionUnitList, static_cast<std::int32_t>(IO::extensionUnitList),
                   static_cast<std::size_t>(std::clamp(length, 0, mostBytes)));
}

/// What a control need not tell is empty when it does not.
Bytes limitOf(IO::VideoDeviceProxy& device, std::uint32_t unit, const ExtensionControl& control,
              ExtensionUnitQuery query) {
    try {
        return Plugin::callPlugin([&] {
            return receive(device, unit, static_cast<std::int32_t>(control.selector) + query, control.length);
        });
    } catch (const Plugin::TimeoutPluginException&) {
        throw;
    } catch (const PluginException&) {
        return {};
    }
}

void fill(IO::VideoDeviceProxy& device, std::uint32_t unit, ExtensionControl& control) {
    control.length = static_cast<std::uint32_t>(std::clamp(device.len(unit, control.selector), 0, mostBytes));
    const std::uint8_t abilities = receive(
        device, unit, static_cast<std::int32_t>(control.selector) + IO::ExtensionUnitQuery_ABILITIES, 1)[0];
    control.canGet = (abilities & canBeGot) != 0;
    control.canSet = (abilities & canBeSet) != 0;
    if (control.length == 0)
        return;
    control.minimum = limitOf(device, unit, control, IO::ExtensionUnitQuery_MINIMUM);
    control.maximum = limitOf(device, unit, control, IO::ExtensionUnitQuery_MAXIMUM);
    control.step = limitOf(device, unit, control, IO::ExtensionUnitQuery_STEP);
    control.standard = limitOf(device, unit, control, IO::ExtensionUnitQuery_DEFAULT);
}

/// What is being handled is about the one control, unless the camera is silent or gone: that is thrown on.
void tellUnlessRefused(const std::string& what) {
    try {
        rethrowAsFailure(what);
    } catch (const Failure& failure) {
        if (failure.code() == Failure::TimedOut || failure.code() == Failure::NoDevice)
            throw;
    }
}

ExtensionControl describe(IO::VideoDeviceProxy& device, std::uint32_t unit, std::uint8_t selector) {
    ExtensionControl control;
    control.selector = selector;
    const std::string what = Format("ask about control % of extension unit %") % int{selector} % unit;
    attempt(what, [&] {
        try {
            Plugin::callPlugin([&] { fill(device, unit, control); });
        } catch (const PluginException& refusal) {
            tellUnlessRefused(what);
            control.failure = Utils::visibleText(refusal.message());
        }
    });
    return control;
}

} // namespace

std::string ExtensionUnit::guidText() const { return Host::guidText(guid); }

std::vector<ExtensionUnit> readExtensionUnits(IO::VideoDeviceProxy& device) {
    Bytes list;
    attempt("ask for the extension units", [&] { list = readList(device); });
    std::vector<ExtensionUnit> units;
    for (const IO::ExtensionUnitEntry& entry : IO::extensionUnitsOf(list)) {
        ExtensionUnit unit{entry.unit, entry.guid, {}};
        for (const std::uint8_t selector : entry.selectors)
            unit.controls.push_back(describe(device, unit.number, selector));
        units.push_back(std::move(unit));
    }
    return units;
}

} // namespace Zentara::Host
