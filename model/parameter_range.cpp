#include <zentara/parameter_range.h>

#include <cstddef>
#include <limits>
#include <new>
#include <utility>

#include <zentara/plugin/plugin_exceptions.h>

#include "model/little_endian.h"

namespace Zentara {

using Model::loadLittleEndian;
using Model::storeLittleEndian;
using Utils::SmartPtr;

namespace {

// The type first, then values of 32 bits, low byte first. A region's ranges keep their type bytes, so that each is a whole
// encoding in itself.
constexpr unsigned int typeBytes = 1;
constexpr unsigned int countBytes = 2;
constexpr unsigned int valueBytes = 4;
constexpr unsigned int rangeBytes = typeBytes + 3 * valueBytes;
constexpr unsigned int setHeaderBytes = typeBytes + countBytes;
constexpr unsigned int regionBytes = typeBytes + 4 * rangeBytes;
constexpr std::size_t maximumValues = std::numeric_limits<std::uint16_t>::max();

/// Whether the encoding fits; if not, tells how many bytes it needs.
bool fits(const unsigned char* buffer, unsigned int* size, unsigned int needed) {
    if (!size)
        return false;
    if (buffer && *size >= needed)
        return true;
    *size = needed;
    return false;
}

/// What decodes foreign bytes throws nothing: without memory there is no object.
template<typename Make>
auto orNull(Make make) -> decltype(make()) {
    try {
        return make();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

/// The range whose 13 bytes these are.
template<typename T>
ParameterRangeInternal<T>* decodeRange(const unsigned char* bytes) {
    return new ParameterRangeInternal<T>(loadLittleEndian<T>(bytes + typeBytes),
                                         loadLittleEndian<T>(bytes + typeBytes + valueBytes),
                                         loadLittleEndian<T>(bytes + typeBytes + 2 * valueBytes));
}

/// Takes over the reference that the pointer came with.
template<typename T>
SmartPtr<ParameterRangeBaseInternal> adopt(T* range) {
    return SmartPtr<T>::adopt(range);
}

template<typename T>
SmartPtr<ParameterRangeBaseInternal> unmarshalNumbers(const unsigned char* buffer, unsigned int size) {
    switch (buffer[0]) {
    case ParameterRangeType_RANGE:
        return adopt(ParameterRangeInternal<T>::unmarshal(buffer, size));
    case ParameterRangeType_DISCRETE_SET:
        return adopt(ParameterDiscreteSetInternal<T>::unmarshal(buffer, size));
    default:
        return nullptr;
    }
}

} // namespace

ParameterRangeBaseInternal::~ParameterRangeBaseInternal() = default;

SmartPtr<ParameterRangeBaseInternal> ParameterRangeBaseInternal::unmarshal(ParameterValueType valueType,
                                                                           const unsigned char* buffer,
                                                                           unsigned int size) {
    if (!buffer || size < typeBytes)
        return nullptr;
    // A region's range announces itself; the parameter's value type has no say in it.
    if (buffer[0] == ParameterRangeType_REGION_OF_INTEREST)
        return adopt(RegionOfInterestRangeInternal::unmarshal(buffer, size));
    if (valueType == ParameterValueType_FLOAT)
        return unmarshalNumbers<float>(buffer, size);
    if (valueType == ParameterValueType_INT)
        return unmarshalNumbers<int>(buffer, size);
    return nullptr;
}

template<typename T>
ParameterRangeInternal<T>::ParameterRangeInternal(T newMin, T newMax, T newStep)
    : ParameterRangeBaseInternal(ParameterRangeType_RANGE), min(newMin), max(newMax), step(newStep) {}

template<typename T>
ParameterRangeInternal<T>::~ParameterRangeInternal() = default;

template<typename T>
T ParameterRangeInternal<T>::getMin() const {
    return min;
}

template<typename T>
T ParameterRangeInternal<T>::getMax() const {
    return max;
}

template<typename T>
T ParameterRangeInternal<T>::getStep() const {
    return step;
}

template<typename T>
ErrorCode ParameterRangeInternal<T>::marshal(unsigned char* buffer, unsigned int* size) const {
    if (!fits(buffer, size, rangeBytes))
        return ErrorCode_BUFFER_TOO_SMALL;
    buffer[0] = ParameterRangeType_RANGE;
    storeLittleEndian(buffer + typeBytes, min);
    storeLittleEndian(buffer + typeBytes + valueBytes, max);
    storeLittleEndian(buffer + typeBytes + 2 * valueBytes, step);
    return ErrorCode_SUCCESS;
}

template<typename T>
ParameterRangeInternal<T>* ParameterRangeInternal<T>::unmarshal(const unsigned char* buffer,
                                                                unsigned int size) {
    if (!buffer || size < rangeBytes)
        return nullptr;
    return orNull([buffer] { return decodeRange<T>(buffer); });
}

template<typename T>
ParameterDiscreteSetInternal<T>::ParameterDiscreteSetInternal(std::vector<T> newValues)
    : ParameterRangeBaseInternal(ParameterRangeType_DISCRETE_SET), values(std::move(newValues)) {
    if (values.size() > maximumValues)
        throw Plugin::ArgumentPluginException("a discrete set holds at most 65535 values");
}

template<typename T>
ParameterDiscreteSetInternal<T>::~ParameterDiscreteSetInternal() = default;

template<typename T>
std::vector<T> ParameterDiscreteSetInternal<T>::getSupportedValues() const {
    return values;
}

template<typename T>
ErrorCode ParameterDiscreteSetInternal<T>::marshal(unsigned char* buffer, unsigned int* size) const {
    const auto count = static_cast<std::uint16_t>(values.size());
    if (!fits(buffer, size, setHeaderBytes + valueBytes * count))
        return ErrorCode_BUFFER_TOO_SMALL;
    buffer[0] = ParameterRangeType_DISCRETE_SET;
    storeLittleEndian(buffer + typeBytes, count);
    for (unsigned int i = 0; i < count; ++i)
        storeLittleEndian(buffer + setHeaderBytes + valueBytes * i, values[i]);
    return ErrorCode_SUCCESS;
}

template<typename T>
ParameterDiscreteSetInternal<T>* ParameterDiscreteSetInternal<T>::unmarshal(const unsigned char* buffer,
                                                                            unsigned int size) {
    if (!buffer || size < setHeaderBytes)
        return nullptr;
    const auto count = loadLittleEndian<std::uint16_t>(buffer + typeBytes);
    // A back-end may announce more values than it sends.
    if (size - setHeaderBytes < valueBytes * count)
        return nullptr;
    return orNull([=] {
        std::vector<T> decoded(count);
        for (unsigned int i = 0; i < count; ++i)
            decoded[i] = loadLittleEndian<T>(buffer + setHeaderBytes + valueBytes * i);
        return new ParameterDiscreteSetInternal(std::move(decoded));
    });
}

template class ParameterRangeInternal<float>;
template class ParameterRangeInternal<int>;
template class ParameterDiscreteSetInternal<float>;
template class ParameterDiscreteSetInternal<int>;

RegionOfInterestRangeInternal::RegionOfInterestRangeInternal(Range* x, Range* y, Range* width, Range* height)
    : ParameterRangeBaseInternal(ParameterRangeType_REGION_OF_INTEREST), ranges{
                                                                             SmartPtr<Range>::adopt(x),
                                                                             SmartPtr<Range>::adopt(y),
                                                                             SmartPtr<Range>::adopt(width),
                                                                             SmartPtr<Range>::adopt(height)} {
    for (const SmartPtr<Range>& range : ranges) {
        if (!range)
            throw Plugin::ArgumentPluginException("a region-of-interest range needs four ranges");
    }
}

RegionOfInterestRangeInternal::~RegionOfInterestRangeInternal() = default;

ErrorCode RegionOfInterestRangeInternal::marshal(unsigned char* buffer, unsigned int* size) const {
    if (!fits(buffer, size, regionBytes))
        return ErrorCode_BUFFER_TOO_SMALL;
    buffer[0] = ParameterRangeType_REGION_OF_INTEREST;
    unsigned char* nested = buffer + typeBytes;
    for (const SmartPtr<Range>& range : ranges) {
        // The nested ranges keep their own type bytes.
        unsigned int nestedSize = rangeBytes;
        range->marshal(nested, &nestedSize);
        nested += rangeBytes;
    }
    return ErrorCode_SUCCESS;
}

RegionOfInterestRangeInternal* RegionOfInterestRangeInternal::unmarshal(const unsigned char* buffer,
                                                                        unsigned int size) {
    if (!buffer || size < regionBytes)
        return nullptr;
    return orNull([buffer] {
        std::array<SmartPtr<Range>, 4> nested;
        for (std::size_t i = 0; i < nested.size(); ++i)
            nested[i] = SmartPtr<Range>::adopt(decodeRange<int>(buffer + typeBytes + rangeBytes * i));
        return new RegionOfInterestRangeInternal(nested[0].detach(), nested[1].detach(), nested[2].detach(),
                                                 nested[3].detach());
    });
}

} // namespace Zentara
