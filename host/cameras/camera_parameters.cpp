#include "host/cameras/camera_parameters.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include <zentara/access_mode.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/core/node_labels.h>
#include <zentara/host/nearest_word.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/utils/format.h>

#include "host/attempt.h"

namespace Zentara::Host {

using Utils::Format;
using Utils::makeRefcounted;

namespace {

ParameterType typeOf(int number) { return static_cast<ParameterType>(number); }

std::string nameOf(CameraParts& parts, int number) {
    return Plugin::callPlugin([&] {
        const auto* labels = dynamic_cast<const Core::NodeLabels*>(&parts.store());
        return labels == nullptr ? std::string() : labels->getParameterName(typeOf(number));
    });
}

template<typename T>
std::optional<NumberRange> rangeAs(const ParameterRangeBaseInternal* range) {
    NumberRange told;
    if (const auto* interval = dynamic_cast<const ParameterRangeInternal<T>*>(range)) {
        told.least = static_cast<double>(interval->getMin());
        told.greatest = static_cast<double>(interval->getMax());
        told.step = static_cast<double>(interval->getStep());
        return told;
    }
    if (const auto* choices = dynamic_cast<const ParameterDiscreteSetInternal<T>*>(range)) {
        told.isList = true;
        for (const T value : choices->getSupportedValues())
            told.values.push_back(static_cast<double>(value));
        return told;
    }
    return {};
}

std::vector<NumberRange> rangesOf(const ParameterRangeBaseInternal* range) {
    std::vector<NumberRange> ranges;
    const auto* region = dynamic_cast<const RegionOfInterestRangeInternal*>(range);
    if (region != nullptr) {
        for (const auto* part :
             {region->getXRange(), region->getYRange(), region->getWidthRange(), region->getHeightRange()})
            ranges.push_back(rangeAs<int>(part).value_or(NumberRange()));
    } else if (const auto whole = rangeAs<int>(range)) {
        ranges.push_back(*whole);
    } else if (const auto real = rangeAs<float>(range)) {
        ranges.push_back(*real);
    }
    return ranges;
}

ParameterValue readOne(IO::ParameterInterpreter& camera, int number) {
    const ParameterType type = typeOf(number);
    switch (*parameterKind(number)) {
    case ParameterKind::Float: {
        float value = 0;
        camera.read(type, &value);
        return value;
    }
    case ParameterKind::Int: {
        int value = 0;
        camera.read(type, &value);
        return std::int32_t{value};
    }
    case ParameterKind::Bool: {
        bool value = false;
        camera.read(type, &value);
        return value;
    }
    case ParameterKind::Region:
        return camera.getRegionOfInterest();
    }
    return 0.0F;
}

void writeOne(IO::ParameterInterpreter& camera, int number, const ParameterValue& value) {
    const ParameterType type = typeOf(number);
    if (const auto* real = std::get_if<float>(&value))
        camera.write(type, *real);
    else if (const auto* whole = std::get_if<std::int32_t>(&value))
        camera.write(type, static_cast<int>(*whole));
    else if (const auto* flag = std::get_if<bool>(&value))
        camera.write(type, *flag);
    else if (const auto* region = std::get_if<RegionOfInterestInternal>(&value))
        camera.setRegionOfInterest(*region);
}

Utils::SmartPtr<IO::xuRequest> requestFor(int number, const ParameterValue& value) {
    const ParameterType type = typeOf(number);
    if (const auto* real = std::get_if<float>(&value))
        return makeRefcounted<IO::setFloatParameterRequest>(type, *real);
    if (const auto* whole = std::get_if<std::int32_t>(&value))
        return makeRefcounted<IO::setIntParameterRequest>(type, static_cast<int>(*whole));
    if (const auto* flag = std::get_if<bool>(&value))
        return makeRefcounted<IO::setBoolParameterRequest>(type, *flag);
    return makeRefcounted<IO::setRegionOfInterestRequest>(std::get<RegionOfInterestInternal>(value));
}

ParameterValue emptyValue(int number) {
    switch (*parameterKind(number)) {
    case ParameterKind::Int:
        return std::int32_t{0};
    case ParameterKind::Bool:
        return false;
    case ParameterKind::Region:
        return RegionOfInterestInternal();
    default:
        return 0.0F;
    }
}

ParameterValue valueOf(const IO::xuRequest& request) {
    if (const auto* real = dynamic_cast<const IO::setFloatParameterRequest*>(&request))
        return real->getValue();
    if (const auto* whole = dynamic_cast<const IO::setIntParameterRequest*>(&request))
        return std::int32_t{whole->getValue()};
    if (const auto* flag = dynamic_cast<const IO::setBoolParameterRequest*>(&request))
        return flag->getValue();
    return dynamic_cast<const IO::setRegionOfInterestRequest&>(request).getRegion();
}

/// Nothing where the camera has no such parameter.
std::optional<AccessMode> accessOf(CameraParts& parts, int number) {
    std::optional<AccessMode> access;
    IO::ParameterInterpreter& camera = parts.parameters();
    attempt(Format("ask about parameter %") % number, [&] {
        try {
            access = camera.getAccessMode(typeOf(number));
        } catch (const Plugin::NotSupportedPluginException&) {
            access.reset();
        }
    });
    return access;
}

/// What the description does not list is none of the camera's, whatever its back-end may answer.
void checkListed(CameraParts& parts, int number) {
    const std::vector<int> listed = parameterNumbers(parts);
    if (std::find(listed.begin(), listed.end(), number) != listed.end())
        return;
    std::string numbers;
    for (const int other : listed)
        numbers += (numbers.empty() ? "" : ", ") + std::to_string(other);
    throw Failure(Failure::Failed, Format("the camera has no such parameter: %") % number,
                  "its description lists " + numbers);
}

} // namespace

// A description that lists none says nothing of them: all that there can be are asked for, then.
std::vector<int> parameterNumbers(CameraParts& parts) {
    std::vector<int> numbers;
    for (const ParameterType type : Plugin::callPlugin([&] { return parts.store().getParameters(); }))
        numbers.push_back(type);
    if (numbers.empty()) {
        for (int number = 0; parameterKind(number); ++number)
            numbers.push_back(number);
    }
    return numbers;
}

int parameterNumbered(CameraParts& parts, const std::string& word) {
    int number = -1;
    // As a number in its plain form alone: "07" may be somebody's name.
    const auto result = std::from_chars(word.data(), word.data() + word.size(), number);
    if (result.ec == std::errc() && word == std::to_string(number) && parameterKind(number))
        return number;
    std::vector<std::string> names;
    for (const int listed : parameterNumbers(parts)) {
        names.push_back(nameOf(parts, listed));
        if (!word.empty() && word == names.back())
            return listed;
    }
    const std::string nearest = nearestWord(word, names);
    throw Failure(Failure::Usage,
                  Format("'%' is no parameter; they are numbered from 0 to 15, and the camera's "
                         "description may name them") %
                      word,
                  {}, nearest.empty() ? "" : "did you mean '" + nearest + "'?");
}

Parameter describeParameter(CameraParts& parts, int number) {
    if (!parameterKind(number))
        throw Failure(Failure::Usage, Format("there is no parameter %") % number);
    checkListed(parts, number);
    Parameter told;
    told.number = number;
    told.name = nameOf(parts, number);
    told.kind = *parameterKind(number);
    const auto access = accessOf(parts, number);
    told.isSupported = access.has_value();
    if (!access)
        return told;
    told.isReadable = (*access & AccessMode_READ) != 0;
    told.isWritable = (*access & AccessMode_WRITE) != 0;
    IO::ParameterInterpreter& camera = parts.parameters();
    attempt(Format("ask for the unit of parameter %") % number,
            [&] { told.unit = camera.getUnitType(typeOf(number)); });
    attempt(Format("ask for the range of parameter %") % number, [&] {
        try {
            told.ranges = rangesOf(camera.getParameterRange(typeOf(number)).get());
        } catch (const Plugin::NotSupportedPluginException&) {
            told.ranges.clear(); // it is for the camera to refuse values then
        }
    });
    if (told.isReadable)
        attempt(Format("read parameter %") % number, [&] { told.value = readOne(camera, number); });
    return told;
}

void setParameter(CameraParts& parts, int number, const ParameterValue& value) {
    IO::ParameterInterpreter& camera = parts.parameters();
    attempt(Format("set parameter % to %") % number % valueText(value),
            [&] { writeOne(camera, number, value); });
}

ParameterValues readValues(CameraParts& parts) {
    // All at once, as the back-end can: the request of each says by its class which type is wanted, and takes the value.
    IO::ParameterRequestMap state;
    for (const int number : parameterNumbers(parts)) {
        if (accessOf(parts, number) == AccessMode_READ_WRITE)
            state[typeOf(number)] = requestFor(number, emptyValue(number));
    }
    attempt("read the camera's parameters", [&] { parts.parameters().read(state); });
    ParameterValues values;
    for (const auto& [type, request] : state)
        values.emplace(type, valueOf(*request));
    return values;
}

void writeValues(CameraParts& parts, const ParameterValues& values) {
    IO::ParameterRequestMap state;
    for (const auto& [number, value] : values)
        state[typeOf(number)] = requestFor(number, value);
    attempt("set the camera's parameters", [&] { parts.parameters().write(state); });
}

} // namespace Zentara::Host
