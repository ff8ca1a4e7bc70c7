#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <zentara/error_code.h>
#include <zentara/export.h>
#include <zentara/parameter_value_type.h>
#include <zentara/utils/refcounted.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara {

/// The form of a parameter range; also the first byte of its encoding.
enum ParameterRangeTypeInternal : std::int32_t {
    ParameterRangeType_RANGE = 0,              ///< `ParameterRangeInternal`
    ParameterRangeType_DISCRETE_SET = 1,       ///< `ParameterDiscreteSetInternal`
    ParameterRangeType_REGION_OF_INTEREST = 2, ///< `RegionOfInterestRangeInternal`
};

/// Which values a camera parameter accepts, in one of the three forms below. Parameter back-ends produce
/// ranges as bytes; they are handed out as `Utils::SmartPtr<ParameterRangeBaseInternal>`. Ranges never
/// change. Their numbers are in the parameter's unit (`ParameterInterpreter::getUnitType`), a region's in pixels of
/// the sensor. Safe.
///
/// Encoded, a range is its type in one byte and then, little-endian and 32 bits each unless said otherwise:
///
///     range                min, max, step                                            13 bytes
///     discrete set         the number of values in 16 bits, the values                3 bytes + 4 a value
///     region of interest   four ranges with their type bytes: x, y, width, height    53 bytes
class ZENTARA_API ParameterRangeBaseInternal : public Utils::Refcounted {
public:
    ParameterRangeBaseInternal(const ParameterRangeBaseInternal&) = delete;
    ParameterRangeBaseInternal& operator=(const ParameterRangeBaseInternal&) = delete;

    /// Which of the three it is, and so what it may be cast to.
    [[nodiscard]] ParameterRangeTypeInternal getType() const { return type; }

    /// Writes the encoding that a back-end would have produced.
    /// \param size in: the buffer's bytes; out: the bytes needed, but only when the result is -6
    /// \return 0, or -6 when `buffer` is null or too small; also when `size` is null
    virtual ErrorCode marshal(unsigned char* buffer, unsigned int* size) const = 0;

    /// Decodes a range of any form for a parameter of this value type.
    /// \return a new range; null when there is no such form for this type, the bytes are too few, or memory
    ///         fails. Safe.
    [[nodiscard]] static Utils::SmartPtr<ParameterRangeBaseInternal>
    unmarshal(ParameterValueType valueType, const unsigned char* buffer, unsigned int size);

protected:
    explicit ParameterRangeBaseInternal(ParameterRangeTypeInternal rangeType) : type(rangeType) {}
    ~ParameterRangeBaseInternal() override;

private:
    ParameterRangeTypeInternal type;
};

/// From `min` in steps of `step` up to `max`; a step of 0 sets none. For float and int.
template<typename T>
class ZENTARA_API ParameterRangeInternal : public ParameterRangeBaseInternal {
public:
    /// Keeps what it is given, also a `min` above `max` or a NaN: a back-end's word is not judged here.
    ParameterRangeInternal(T min, T max, T step);

    [[nodiscard]] virtual T getMin() const;
    [[nodiscard]] virtual T getMax() const;
    [[nodiscard]] virtual T getStep() const;

    ErrorCode marshal(unsigned char* buffer, unsigned int* size) const override;

    /// A new range that the caller owns; null when there are fewer than 13 bytes. The type byte is not
    /// looked at.
    [[nodiscard]] static ParameterRangeInternal* unmarshal(const unsigned char* buffer, unsigned int size);

protected:
    ~ParameterRangeInternal() override;

private:
    T min;  ///< the least value
    T max;  ///< the greatest value
    T step; ///< from one value to the next; 0: any between
};

/// Just these values. For float and int.
template<typename T>
class ZENTARA_API ParameterDiscreteSetInternal : public ParameterRangeBaseInternal {
public:
    /// \throws Zentara::Plugin::ArgumentPluginException for more than 65,535 values
    explicit ParameterDiscreteSetInternal(std::vector<T> values);

    /// A copy.
    [[nodiscard]] virtual std::vector<T> getSupportedValues() const;

    ErrorCode marshal(unsigned char* buffer, unsigned int* size) const override;

    /// A new set that the caller owns; null when the bytes do not hold the values that they announce. The
    /// type byte is not looked at.
    [[nodiscard]] static ParameterDiscreteSetInternal* unmarshal(const unsigned char* buffer,
                                                                 unsigned int size);

protected:
    ~ParameterDiscreteSetInternal() override;

private:
    std::vector<T> values; ///< at most 65,535, in the back-end's order
};

/// One integer range for each number of a region of interest.
class ZENTARA_API RegionOfInterestRangeInternal : public ParameterRangeBaseInternal {
public:
    using Range = ParameterRangeInternal<int>;

    /// Takes over the reference that each range was made with, also when it throws.
    /// \throws Zentara::Plugin::ArgumentPluginException if one is null
    RegionOfInterestRangeInternal(Range* x, Range* y, Range* width, Range* height);

    /// The ranges stay the object's.
    [[nodiscard]] Range* getXRange() const { return ranges[0].get(); }
    [[nodiscard]] Range* getYRange() const { return ranges[1].get(); }
    [[nodiscard]] Range* getWidthRange() const { return ranges[2].get(); }
    [[nodiscard]] Range* getHeightRange() const { return ranges[3].get(); }

    ErrorCode marshal(unsigned char* buffer, unsigned int* size) const override;

    /// A new range that the caller owns; null when there are fewer than 53 bytes. Type bytes are not looked
    /// at.
    [[nodiscard]] static RegionOfInterestRangeInternal* unmarshal(const unsigned char* buffer,
                                                                  unsigned int size);

protected:
    ~RegionOfInterestRangeInternal() override;

private:
    std::array<Utils::SmartPtr<Range>, 4> ranges; ///< x, y, width, height; none is null
};

extern template class ParameterRangeInternal<float>;
extern template class ParameterRangeInternal<int>;
extern template class ParameterDiscreteSetInternal<float>;
extern template class ParameterDiscreteSetInternal<int>;

} // namespace Zentara
