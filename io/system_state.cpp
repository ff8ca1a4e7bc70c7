#include "io/system_state.h"

#include <bit>
#include <cstddef>
#include <cstdint>

#include <zentara/io/parameter_interpreter.h>
#include <zentara/utils/format.h>

#include "model/little_endian.h"

namespace Zentara::IO {

using Model::loadLittleEndian;
using Utils::Format;

namespace {

// An entry is the parameter's number in one byte and its value, low byte first; nothing stands before, between or after
// the entries, so a reader has to know every parameter to find the next one.
constexpr unsigned char trueByte = 0xFF;
constexpr std::size_t numberBytes = 4;
constexpr std::size_t boolBytes = 1;
constexpr std::size_t wordBytes = 2;
constexpr std::size_t regionBytes = 4 * wordBytes;

template<typename T>
void append(std::vector<unsigned char>& bytes, T value) {
    const std::size_t position = bytes.size();
    bytes.resize(position + sizeof(T));
    Model::storeLittleEndian(bytes.data() + position, value);
}

void append(std::vector<unsigned char>& bytes, const RegionOfInterestInternal& region) {
    for (const std::uint32_t word : {region.x, region.y, region.width, region.height})
        append(bytes, static_cast<std::uint16_t>(word)); // upper bits are lost
}

/// \return false for a number that does not fit its one byte; cut, it would name another parameter
[[nodiscard]] bool appendNumber(std::vector<unsigned char>& bytes, ParameterType parameter) {
    const auto number = static_cast<unsigned char>(parameter);
    append(bytes, number);
    return number == parameter;
}

[[nodiscard]] bool appendEntry(std::vector<unsigned char>& bytes, ParameterType parameter,
                               const xuRequest* request) {
    bool fits = true;
    if (const auto* asFloat = dynamic_cast<const setFloatParameterRequest*>(request)) {
        fits = appendNumber(bytes, parameter);
        append(bytes, asFloat->getValue());
    } else if (const auto* asInt = dynamic_cast<const setIntParameterRequest*>(request)) {
        fits = appendNumber(bytes, parameter);
        append(bytes, static_cast<std::int32_t>(asInt->getValue()));
    } else if (const auto* asBool = dynamic_cast<const setBoolParameterRequest*>(request)) {
        fits = appendNumber(bytes, parameter);
        append(bytes, asBool->getValue() ? trueByte : static_cast<unsigned char>(0));
    } else if (const auto* asRegion = dynamic_cast<const setRegionOfInterestRequest*>(request)) {
        fits = appendNumber(bytes, ParameterType_REGION_OF_INTEREST);
        append(bytes, asRegion->getRegion());
    }
    return fits;
}

std::size_t valueBytes(ParameterValueType type) {
    switch (type) {
    case ParameterValueType_FLOAT:
    case ParameterValueType_INT:
        return numberBytes;
    case ParameterValueType_BOOL:
        return boolBytes;
    case ParameterValueType_REGION_OF_INTEREST:
        return regionBytes;
    default:
        return 0;
    }
}

/// Whether the request can take a value of this type. Floats and integers share one form, 32 raw bits.
bool takes(const xuRequest* request, ParameterValueType type) {
    switch (type) {
    case ParameterValueType_FLOAT:
    case ParameterValueType_INT:
        return dynamic_cast<const setFloatParameterRequest*>(request) ||
               dynamic_cast<const setIntParameterRequest*>(request);
    case ParameterValueType_BOOL:
        return dynamic_cast<const setBoolParameterRequest*>(request);
    case ParameterValueType_REGION_OF_INTEREST:
        return dynamic_cast<const setRegionOfInterestRequest*>(request);
    default:
        return false;
    }
}

/// Stores a value that `takes` has allowed.
void store(xuRequest* request, const unsigned char* value) {
    if (auto* asFloat = dynamic_cast<setFloatParameterRequest*>(request))
        asFloat->setValue(loadLittleEndian<float>(value));
    else if (auto* asInt = dynamic_cast<setIntParameterRequest*>(request))
        asInt->setValue(loadLittleEndian<std::int32_t>(value));
    else if (auto* asBool = dynamic_cast<setBoolParameterRequest*>(request))
        asBool->setValue(*value != 0);
    else if (auto* asRegion = dynamic_cast<setRegionOfInterestRequest*>(request))
        asRegion->setRegion({loadLittleEndian<std::uint16_t>(value),
                             loadLittleEndian<std::uint16_t>(value + wordBytes),
                             loadLittleEndian<std::uint16_t>(value + 2 * wordBytes),
                             loadLittleEndian<std::uint16_t>(value + 3 * wordBytes)});
}

struct Entry {
    xuRequest* request;
    const unsigned char* value;
};

/// Finds the entry at `position` and moves on behind it. Null request: `reason` tells what is wrong with it.
Entry nextEntry(const std::vector<unsigned char>& bytes, std::size_t& position,
                const ParameterRequestMap& state, std::string& reason) {
    const unsigned int number = bytes[position];
    const auto parameter = static_cast<ParameterType>(number);
    const ParameterValueType type = ParameterInterpreter::getParameterValueType(parameter);
    if (type == ParameterValueType_NONE) {
        reason = Format("unknown parameter % at offset %") % number % position;
        return {};
    }
    if (valueBytes(type) > bytes.size() - position - 1) {
        reason = Format("the entry of parameter % at offset % is cut short") % number % position;
        return {};
    }
    const auto found = state.find(parameter);
    if (found == state.end() || !takes(found->second.get(), type)) {
        reason = Format("parameter % at offset % was not asked for") % number % position;
        return {};
    }
    const Entry entry{found->second.get(), bytes.data() + position + 1};
    position += 1 + valueBytes(type);
    return entry;
}

} // namespace

std::string marshalSystemState(const ParameterRequestMap& state, std::vector<unsigned char>& bytes) {
    bytes.clear();
    bytes.reserve(1); // has an address also without entries: by null some back-ends mean a question
    for (const auto& entry : state) {
        if (!appendEntry(bytes, entry.first, entry.second.get()))
            return Format("the number of parameter % does not fit one byte") %
                   static_cast<std::int32_t>(entry.first);
    }
    return {};
}

std::string unmarshalSystemState(const std::vector<unsigned char>& bytes, ParameterRequestMap& state) {
    std::string reason;
    std::vector<Entry> entries;
    for (std::size_t position = 0; position < bytes.size();) {
        entries.push_back(nextEntry(bytes, position, state, reason));
        if (!entries.back().request)
            return reason;
    }
    for (const Entry& entry : entries)
        store(entry.request, entry.value);
    return {};
}

} // namespace Zentara::IO
