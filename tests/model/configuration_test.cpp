#include <gtest/gtest.h>

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/depth_configuration.h>

namespace Testing {
namespace {

using namespace Zentara;
using Utils::makeRefcounted;

TEST(ConfigurationTest, NamesFollowEverySetter) {
    const auto audio = makeRefcounted<AudioConfiguration>(2, 16, 44100);
    const auto color = makeRefcounted<ColorConfiguration>(FrameFormat_VGA, 30, PowerLineFrequency_60HZ,
                                                          CompressionType_MJPEG);
    const auto depth =
        makeRefcounted<DepthConfiguration>(FrameFormat_QVGA, 60, DepthNode::CameraMode_1, true, 7);
    const auto after = [](auto& configuration, auto setter, auto value) {
        ((*configuration).*setter)(value);
        return configuration->getName();
    };
    using Audio = AudioConfiguration;
    EXPECT_EQ("AUCH2BPS16SR44100", audio->getName());
    EXPECT_EQ("AUCH1BPS16SR44100", after(audio, &Audio::setChannels, 1));
    EXPECT_EQ("AUCH1BPS24SR44100", after(audio, &Audio::setBitsPerSample, 24));
    EXPECT_EQ("AUCH1BPS24SR8000", after(audio, &Audio::setSampleRate, 8000));
    EXPECT_EQ("mine", after(audio, &Audio::setName, "mine"));
    using Color = ColorConfiguration;
    EXPECT_EQ("COFF3FR30PLF2COMP1", color->getName());
    EXPECT_EQ("COFF2FR30PLF2COMP1", after(color, &Color::setFrameFormat, FrameFormat_QVGA));
    EXPECT_EQ("COFF2FR60PLF2COMP1", after(color, &Color::setFramerate, 60));
    EXPECT_EQ("COFF2FR60PLF0COMP1", after(color, &Color::setPowerLineFrequency, PowerLineFrequency_DISABLED));
    EXPECT_EQ("COFF2FR60PLF0COMP0", after(color, &Color::setCompression, CompressionType_NONE));
    using Depth = DepthConfiguration; // whose saturation is a number, not a word
    EXPECT_EQ("DEFF2FR60CM1S1", depth->getName());
    EXPECT_EQ(7, depth->getCalibration().getPhaseOffset());
    EXPECT_EQ("DEFF1FR60CM1S1", after(depth, &Depth::setFrameFormat, FrameFormat_QQVGA));
    EXPECT_EQ("DEFF1FR30CM1S1", after(depth, &Depth::setFramerate, 30));
    EXPECT_EQ("DEFF1FR30CM-1S1", after(depth, &Depth::setCameraMode, DepthNode::CameraMode_NONE));
    EXPECT_EQ("DEFF1FR30CM-1S0", after(depth, &Depth::setSaturation, false));
}

TEST(ConfigurationTest, Equality) {
    const auto audio = makeRefcounted<AudioConfiguration>(1, 2, 3);
    EXPECT_TRUE(audio->isEqual(makeRefcounted<AudioConfiguration>(1, 2, 3).get()));
    EXPECT_FALSE(audio->isEqual(makeRefcounted<AudioConfiguration>(1, 2, 4).get()));
    EXPECT_FALSE(audio->isEqual(nullptr));
    const auto color = makeRefcounted<ColorConfiguration>();
    const auto other = makeRefcounted<ColorConfiguration>(*color);
    // The fields count, not the name.
    other->setName("other");
    EXPECT_TRUE(color->isEqual(other.get()));
    other->setCompression(CompressionType_H264);
    EXPECT_FALSE(color->isEqual(other.get()));
    EXPECT_FALSE(color->isEqual(nullptr));

    // Depth configurations: the name counts, and nothing else.
    const auto depth =
        makeRefcounted<DepthConfiguration>(FrameFormat_QVGA, 60, DepthNode::CameraMode_0, false, 7);
    const auto twin =
        makeRefcounted<DepthConfiguration>(FrameFormat_QVGA, 60, DepthNode::CameraMode_0, false, 8);
    EXPECT_TRUE(depth->isEqual(twin.get()));
    twin->setName("other");
    EXPECT_FALSE(depth->isEqual(twin.get()));
    EXPECT_FALSE(depth->isEqual(nullptr));
}

} // namespace
} // namespace Testing
