#include <zentara/parameter_range.h>

#include <gmock/gmock.h>

#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara {
namespace {

using testing::ElementsAre;
using Bytes = std::vector<unsigned char>;
using Range = Utils::SmartPtr<ParameterRangeBaseInternal>;

const Bytes intRange = {0, 0xF6, 0xFF, 0xFF, 0xFF, 0x10, 0x27, 0, 0, 5, 0, 0, 0}; // -10 to 10000 by 5
const Bytes floatRange = {0, 0, 0, 0x20, 0xC0, 0, 0, 0x80, 0x3F, 0, 0, 0, 0x3F};  // -2.5 to 1 by 0.5
const Bytes intSet = {1, 3, 0, 1, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x01, 0x00}; // 1, -2, 65536
const Bytes floatSet = {1, 1, 0, 0, 0, 0x80, 0x3F};                                         // 1

Bytes regionRange() {
    Bytes bytes = {2};
    for (unsigned char i = 0; i < 4; ++i)
        bytes.insert(bytes.end(), {0, i, 0, 0, 0, static_cast<unsigned char>(100 + i), 0, 0, 0, 2, 0, 0, 0});
    return bytes;
}

Range decode(int valueType, const Bytes& bytes) {
    return ParameterRangeBaseInternal::unmarshal(static_cast<ParameterValueType>(valueType), bytes.data(),
                                                 static_cast<unsigned int>(bytes.size()));
}

/// Encodes after asking for the size, into a buffer with room to spare that must stay as it is.
Bytes encode(const ParameterRangeBaseInternal& range) {
    unsigned int needed = 0;
    EXPECT_EQ(range.marshal(nullptr, &needed), -6);
    Bytes bytes(needed + 1, 0xAA);
    EXPECT_EQ(range.marshal(bytes.data(), nullptr), -6);
    unsigned int size = needed - 1;
    EXPECT_EQ(range.marshal(bytes.data(), &size), -6);
    EXPECT_EQ(size, needed);
    EXPECT_EQ(bytes, Bytes(needed + 1, 0xAA));
    size = needed + 1;
    EXPECT_EQ(range.marshal(bytes.data(), &size), 0);
    EXPECT_EQ(size, needed + 1) << "a size that suffices is not touched";
    EXPECT_EQ(bytes.back(), 0xAA);
    bytes.pop_back();
    return bytes;
}

template<typename T>
const T& as(const Range& range) {
    return dynamic_cast<const T&>(*range);
}

TEST(ParameterRange, DecodesEveryFormFromItsBytesAndEncodesItBack) {
    const Range ints = decode(2, intRange);
    const auto& intValues = as<ParameterRangeInternal<int>>(ints);
    EXPECT_THAT((std::vector{intValues.getMin(), intValues.getMax(), intValues.getStep()}),
                ElementsAre(-10, 10000, 5));

    const Range floats = decode(1, floatRange);
    EXPECT_EQ(as<ParameterRangeInternal<float>>(floats).getMin(), -2.5F);

    const Range region = decode(4, regionRange());
    const auto& regionValues = as<RegionOfInterestRangeInternal>(region);
    EXPECT_THAT(
        (std::vector{regionValues.getXRange()->getMax(), regionValues.getYRange()->getMax(),
                     regionValues.getWidthRange()->getMax(), regionValues.getHeightRange()->getMax()}),
        ElementsAre(100, 101, 102, 103));

    EXPECT_THAT(as<ParameterDiscreteSetInternal<int>>(decode(2, intSet)).getSupportedValues(),
                ElementsAre(1, -2, 65536));
    EXPECT_THAT(as<ParameterDiscreteSetInternal<float>>(decode(1, floatSet)).getSupportedValues(),
                ElementsAre(1.0F));

    Bytes otherTypeByte = regionRange();
    otherTypeByte[14] = 9;
    EXPECT_EQ(encode(*decode(4, otherTypeByte)), regionRange()) << "not looked at, and written as 0";

    // Form and value type decide together; but a region's range decodes under any type.
    for (const int valueType : {0, 1, 2, 3, 4}) {
        const bool isNumber = valueType == 1 || valueType == 2;
        EXPECT_EQ(bool(decode(valueType, intRange)), isNumber) << valueType;
        EXPECT_EQ(bool(decode(valueType, intSet)), isNumber) << valueType;
        EXPECT_TRUE(decode(valueType, regionRange())) << valueType;
        EXPECT_FALSE(decode(valueType, Bytes(53, 3))) << valueType;
    }
    EXPECT_EQ(encode(*ints), intRange);
    EXPECT_EQ(encode(*floats), floatRange);
    EXPECT_EQ(encode(*region), regionRange());
    EXPECT_EQ(encode(*decode(2, intSet)), intSet);
    EXPECT_EQ(encode(*decode(1, floatSet)), floatSet);
}

TEST(ParameterRange, EveryTruncationIsRefused) {
    for (const auto& [valueType, bytes] :
         {std::pair{2, intRange}, {1, floatRange}, {2, intSet}, {1, floatSet}, {4, regionRange()}}) {
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            // A copy of exactly this size, so that a read past its end is seen.
            const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_FALSE(decode(valueType, cut)) << "form " << int{bytes[0]} << ", " << size << " bytes";
        }
        Bytes longer = bytes;
        longer.push_back(0xFF);
        EXPECT_TRUE(decode(valueType, longer));
    }
    EXPECT_FALSE(decode(2, {1, 0xFF, 0xFF, 1, 0, 0, 0})) << "a set that announces more than it holds";
    EXPECT_FALSE(ParameterRangeBaseInternal::unmarshal(ParameterValueType_INT, nullptr, 13));
    // A region needs four ranges, and takes them even then.
    const auto range = [] { return new ParameterRangeInternal<int>(0, 1, 1); };
    EXPECT_THROW(RegionOfInterestRangeInternal* never =
                     new RegionOfInterestRangeInternal(range(), range(), nullptr, range());
                 static_cast<void>(never), Plugin::ArgumentPluginException);
}

TEST(ParameterRange, SetHoldsWhatItsCountCanSay) {
    const auto none = Utils::makeRefcounted<ParameterDiscreteSetInternal<int>>(std::vector<int>());
    EXPECT_THAT(encode(*none), ElementsAre(1, 0, 0));
    const auto largest = Utils::makeRefcounted<ParameterDiscreteSetInternal<int>>(std::vector<int>(65535, 7));
    const Bytes bytes = encode(*largest);
    EXPECT_EQ(as<ParameterDiscreteSetInternal<int>>(decode(2, bytes)).getSupportedValues().size(), 65535U);
    EXPECT_THROW(
        static_cast<void>(Utils::makeRefcounted<ParameterDiscreteSetInternal<int>>(std::vector<int>(65536))),
        Plugin::ArgumentPluginException);
}

} // namespace
} // namespace Zentara
