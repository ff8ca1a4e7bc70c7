#include <array>
#include <thread>

#include <gmock/gmock.h>

#include <turbojpeg.h>

#include <zentara/color_configuration.h>
#include <zentara/io/camera_control_requests.h>
#include <zentara/io/streaming_requests.h>

#include "plugins/v4l2/v4l2_device.h"
#include "support/failure.h"
#include "tests/plugins/linux/fake_kernel.h"

namespace Zentara::V4l2 {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using TestSupport::Bytes;
using TestSupport::failure;
using TestSupport::FakeKernel;
using Utils::makeRefcounted;
using Utils::SmartPtr;

/// A host of one device on a kernel of its own.
class V4l2DeviceTest : public testing::Test {
protected:
    V4l2DeviceTest() {
        node.path = "/dev/video7";
        node.parentPath = "camera";
        node.nodeType = NodeType_COLOR;
        device->initialize(&node, nullptr);
    }
    ~V4l2DeviceTest() override { device->dispose(); }

    template<typename Request, typename... Arguments>
    SmartPtr<Request> request(Arguments&&... arguments) {
        return makeRefcounted<Request>(device.get(), std::forward<Arguments>(arguments)...);
    }
    void open() { device->open(request<IO::deviceRequest>(IO::RequestType_OPEN).get()); }
    void close() { device->close(request<IO::deviceRequest>(IO::RequestType_CLOSE).get()); }
    void stop() { device->disableStreaming(request<IO::disableRequest>(false).get()); }
    void start(CompressionType compression = CompressionType_NONE, FrameFormat size = FrameFormat_VGA) {
        const auto mode =
            makeRefcounted<ColorConfiguration>(size, 30, PowerLineFrequency_DISABLED, compression);
        device->enableColorStreaming(request<IO::enableColorRequest>(mode, CameraControls()).get());
    }
    std::string failureOfStart() {
        return failure([this] { start(); });
    }
    ReadBufferStatus read() {
        frame.assign(1 << 20, 0);
        const ReadBufferStatus status = device->readBuffer(frame.data(), 1 << 20, &micros, &length);
        if (status == ReadBufferStatus_OK)
            frame.resize(static_cast<std::size_t>(length));
        return status;
    }

    std::shared_ptr<FakeKernel> kernel = std::make_shared<FakeKernel>();
    NodeEvent node;
    SmartPtr<V4l2Device> device = makeRefcounted<V4l2Device>(kernel);
    Bytes frame;
    std::int64_t micros = 0;
    int length = 0;
};

TEST_F(V4l2DeviceTest, DeliversWholeFramesWithTheKernelsTime) {
    open();
    start();
    kernel->frames.push_back(Bytes(614400, 9));
    kernel->frames.push_back(Bytes(614399, 8));
    EXPECT_EQ(read(), ReadBufferStatus_OK);
    EXPECT_EQ(frame, Bytes(614400, 9));
    EXPECT_EQ(micros, 12'345'678);
    EXPECT_EQ(read(), ReadBufferStatus_FAILED) << "cut short";
    kernel->flags |= V4L2_BUF_FLAG_ERROR;
    kernel->frames.push_back(Bytes(614400, 7));
    EXPECT_EQ(read(), ReadBufferStatus_FAILED) << "marked by the driver";
    kernel->flags = V4L2_BUF_FLAG_TIMESTAMP_MONOTONIC;
    kernel->frames.push_back(Bytes(614400, 6));
    char small = 0;
    EXPECT_EQ(device->readBuffer(&small, 1, &micros, &length), ReadBufferStatus_TOO_SMALL);
    EXPECT_EQ(length, 614400);
    EXPECT_EQ(read(), ReadBufferStatus_OK) << "it waits for a larger buffer";
    stop();
    EXPECT_FALSE(kernel->streams);
    EXPECT_EQ(read(), ReadBufferStatus_NOT_STREAMING);
    close();
    EXPECT_EQ(kernel->openFiles, 0);
}

TEST_F(V4l2DeviceTest, OffersSizesWithoutANameAndStreamsThem) {
    kernel->made.width = 320, kernel->made.height = 180, kernel->made.bytesperline = 640;
    kernel->made.sizeimage = 115200;
    open();
    std::vector<SmartPtr<ColorConfiguration>> modes;
    device->getConfigurations(request<IO::getColorConfigurationsRequest>(modes).get());
    ASSERT_EQ(modes.size(), 1U);
    EXPECT_EQ(modes.front()->getName(), "COFF20971700FR30PLF0COMP0");
    start(CompressionType_NONE, frameFormatOf({320, 180}));
    kernel->frames.push_back(Bytes(115200, 9));
    EXPECT_EQ(read(), ReadBufferStatus_OK);
    EXPECT_EQ(frame.size(), 115200U);
    EXPECT_EQ(frameSize(static_cast<FrameFormat>(-1)), FrameSize());
}

TEST_F(V4l2DeviceTest, EndsAReadersWaitAndNeverSpins) {
    open();
    start();
    std::thread ending([this] { stop(); });
    EXPECT_EQ(read(), ReadBufferStatus_NOT_STREAMING);
    ending.join();
    start();
    kernel->gone = true;
    EXPECT_EQ(read(), ReadBufferStatus_DISCONNECTED);
    EXPECT_EQ(read(), ReadBufferStatus_DISCONNECTED) << "for good";
    device->dispose();
    EXPECT_EQ(kernel->openFiles, 0);
}

TEST_F(V4l2DeviceTest, SaysWhatAnErrorMeans) {
    for (const auto& [error, text] : {std::pair(EPERM, "8: /dev/video7: cannot open the camera; be a member"),
                                      {EACCES, "8: /dev/video7: cannot open the camera; be a member of its"},
                                      {ENXIO, "4: /dev/video7: there is no camera any more: No such device"},
                                      {EBUSY, "4: /dev/video7: cannot open the camera: Device or resource"},
                                      {EMFILE, "4: /dev/video7: cannot open the camera: Too many open"}}) {
        kernel->openErrors["/dev/video7"] = error;
        EXPECT_THAT(failure([&] { open(); }), StartsWith(text));
    }
    kernel->openErrors.clear();
    open();
    for (const auto& [call, error, text] :
         {std::tuple(VIDIOC_REQBUFS, EBUSY,
                     "7: cannot share memory for frames: it is in use: Device or resource busy; another "),
          {VIDIOC_S_FMT, EPERM, "8: cannot set the format: Operation not permitted"},
          {VIDIOC_S_PARM, ETIMEDOUT, "2: cannot set the frame rate: Connection timed out"},
          {VIDIOC_G_FMT, ENOTTY, "5: cannot ask for the format: Inappropriate ioctl"},
          {VIDIOC_QUERYBUF, ENXIO, "4: cannot ask for the memory of a frame: the camera was unplugged"},
          {VIDIOC_STREAMON, ENOSPC, "4: cannot start the stream: the bus has no room"}}) {
        kernel->callErrors = {{call, error}};
        EXPECT_THAT(failureOfStart().erase(3, 13), StartsWith(text));
    }
    kernel->callErrors.clear();
    EXPECT_THAT(
        failure([&] { start(CompressionType_NONE, FrameFormat_QVGA); }),
        StartsWith("1: /dev/video7: the camera has no mode COFF2FR30PLF0COMP0; it offers 'YUYV' 640x480@30"));
    for (const auto& [width, height, bytes] :
         {std::array{0U, 480U, 614400U}, std::array{65535U, 480U, 614400U}, std::array{640U, 480U, 614399U},
          std::array{640U, 480U, 1U << 31}}) {
        kernel->onCall = [this, w = width, h = height, b = bytes](unsigned long call) {
            if (call == VIDIOC_REQBUFS) // the format changes as memory is asked for
                kernel->made.width = w, kernel->made.height = h, kernel->made.sizeimage = b;
        };
        kernel->made.width = 640, kernel->made.height = 480, kernel->made.sizeimage = 614400;
        EXPECT_THAT(failure([&] { start(); }),
                    StartsWith(bytes > 1U << 30 ? "" : "1: the driver's frames are none"));
        EXPECT_FALSE(kernel->streams);
    }
}

template<typename Argument>
std::function<int(void*)> answer(void (*change)(Argument&)) {
    return [change](void* argument) { return change(*static_cast<Argument*>(argument)), 0; };
}

/// Drivers make something else of a mode than they list.
TEST_F(V4l2DeviceTest, RefusesWhatADriverMakesOfAMode) {
    const auto original = kernel->calls;
    const std::tuple<unsigned long, std::function<int(void*)>, const char*> rows[] = {
        {VIDIOC_QUERYCAP, answer<v4l2_capability>([](auto& a) { a.capabilities = 1; }),
         "delivers no pictures"},
        {VIDIOC_S_FMT, answer<v4l2_format>([](auto& a) { a.fmt.pix.height = 9; }),
         "makes 640 x 9 of 'YUYV' of"},
        {VIDIOC_S_FMT, answer<v4l2_format>([](auto& a) { a.fmt.pix.pixelformat = 0; }), "makes 640 x 480 of"},
        {VIDIOC_S_PARM, answer<v4l2_streamparm>([](auto& a) {
             a.parm.capture.timeperframe = {1, 15};
         }),
         "makes 15 frames"},
        {VIDIOC_REQBUFS, answer<v4l2_requestbuffers>([](auto& a) { a.count = 1; }), "memory for 1 frames"},
        {VIDIOC_G_SELECTION, answer<v4l2_selection>([](auto& a) { a.r.width = 9; }), "fill the whole frame"},
    };
    for (const auto& [call, change, text] : rows) {
        kernel->calls[call] = change;
        EXPECT_THAT(failure([&] { open(), start(), close(); }), HasSubstr(text));
        static_cast<void>(failure([&] { close(); })); // unless it was never open
        kernel->calls = original;
    }
    EXPECT_EQ(kernel->openFiles, 0);
}

TEST_F(V4l2DeviceTest, OutlivesWhatTheQueueSays) {
    open();
    const auto next = [this](std::function<int(void*)> queue) {
        kernel->frames.assign(1, Bytes(614400, 9));
        kernel->calls[VIDIOC_DQBUF] = std::move(queue);
        return read();
    };
    const auto fetched = kernel->calls[VIDIOC_DQBUF];
    start();
    EXPECT_THAT(failureOfStart(), HasSubstr("streams already"));
    EXPECT_THAT(failure([&] { device->readBuffer(nullptr, 1, &micros, &length); }), StartsWith("3: "));
    EXPECT_EQ(next([this](void*) { return kernel->frames.clear(), -EAGAIN; }), ReadBufferStatus_TIMEOUT);
    EXPECT_EQ(next([](void*) { return -EIO; }), ReadBufferStatus_FAILED);
    EXPECT_EQ(next(answer<v4l2_buffer>([](auto& a) { a.index = 4; })), ReadBufferStatus_FAILED);
    kernel->flags = 0;
    EXPECT_EQ(next(fetched), ReadBufferStatus_OK);
    EXPECT_NE(micros, 12'345'678) << "the time of another clock";
    kernel->gone = true; // it has an error that no call names
    int asked = 0;
    EXPECT_EQ(next([&](void*) { return ++asked, -EAGAIN; }), ReadBufferStatus_TIMEOUT);
    EXPECT_LT(asked, 25) << "a node that is always ready";
    kernel->gone = false;
    kernel->callErrors[VIDIOC_QBUF] = ENODEV;
    EXPECT_EQ(next(fetched), ReadBufferStatus_OK) << "the last one before it was pulled out";
    EXPECT_EQ(read(), ReadBufferStatus_DISCONNECTED);
}

TEST(ExtensionUnits, SendNoQuestionToWhatCanOnlyBeRead) {
    const auto kernel = std::make_shared<FakeKernel>();
    std::string asked;
    kernel->onUnit = [&asked](const uvc_xu_control_query& query) {
        asked += query.query == UVC_GET_LEN    ? "L"
                 : query.query == UVC_GET_INFO ? "I"
                 : query.query == UVC_SET_CUR  ? "S"
                                               : "G";
        query.data[0] =
            query.query == UVC_GET_INFO ? query.selector : 2; // control 1 can be read, 3 also be set
        return 0;
    };
    ExtensionUnits units(std::make_shared<DeviceFile>(kernel, "/dev/video7"), {}, {18, 1});
    for (const std::uint8_t selector : {1, 3, 3, 1})
        EXPECT_EQ(units.ask(4, selector, Bytes{9, 8}), Bytes({2, 8}));
    EXPECT_EQ(asked, "LIG"
                     "LISG"
                     "SG"
                     "G");
}

TEST(Picture, MakesYuy2OfWhatCamerasSend) {
    const auto made = [](std::uint32_t fourCC, std::uint32_t line, const Bytes& bytes) {
        Bytes place(16, 0xEE);
        const Picture picture({fourCC, 4, 2, line, static_cast<std::uint32_t>(bytes.size())},
                              Delivery::Color);
        EXPECT_TRUE(
            picture.make(std::as_bytes(std::span(bytes)), reinterpret_cast<std::byte*>(place.data())));
        return place;
    };
    const Bytes wanted{1, 50, 2, 60, 3, 51, 4, 61, 5, 50, 6, 60, 7, 51, 8, 61};
    EXPECT_EQ(made(V4L2_PIX_FMT_NV12, 5, {1, 2, 3, 4, 0, 5, 6, 7, 8, 0, 50, 60, 51, 61, 0}), wanted);
    EXPECT_EQ(made(V4L2_PIX_FMT_NV21, 4, {1, 2, 3, 4, 5, 6, 7, 8, 60, 50, 61, 51}), wanted);
    EXPECT_EQ(made(V4L2_PIX_FMT_YUV420, 4, {1, 2, 3, 4, 5, 6, 7, 8, 50, 51, 60, 61}), wanted);
    EXPECT_EQ(made(V4L2_PIX_FMT_YVU420, 4, {1, 2, 3, 4, 5, 6, 7, 8, 60, 61, 50, 51}), wanted);
    EXPECT_EQ(made(V4L2_PIX_FMT_UYVY, 8, {50, 1, 60, 2, 51, 3, 61, 4, 50, 5, 60, 6, 51, 7, 61, 8}), wanted);
    EXPECT_EQ(made(V4L2_PIX_FMT_GREY, 4, {1, 2, 3, 4, 5, 6, 7, 8}),
              Bytes({1, 128, 2, 128, 3, 128, 4, 128, 5, 128, 6, 128, 7, 128, 8, 128}));
}

TEST(Picture, DecodesJpegAlsoWithoutHuffmanTablesAndDropsWhatIsCutShort) {
    const Bytes pixels(3 * 16 * 16, 255);
    unsigned char* jpeg = nullptr;
    unsigned long bytes = 0;
    void* const coder = tjInitCompress();
    ASSERT_EQ(tjCompress2(coder, pixels.data(), 16, 0, 16, TJPF_RGB, &jpeg, &bytes, TJSAMP_422, 90, 0), 0);
    Bytes whole(jpeg, jpeg + bytes);
    tjFree(jpeg);
    tjDestroy(coder);
    Bytes bare = whole;
    const Bytes tableMark{0xFF, 0xC4};
    for (auto at = bare.begin();
         (at = std::search(bare.begin(), bare.end(), tableMark.begin(), tableMark.end())) != bare.end();)
        bare.erase(at, at + 2 + (at[2] << 8 | at[3]));
    ASSERT_LT(bare.size(), whole.size());
    const Picture picture({V4L2_PIX_FMT_MJPEG, 16, 16, 0, 4096}, Delivery::Color);
    Bytes place(512);
    const auto make = [&](const Bytes& frame) {
        return picture.make(std::as_bytes(std::span(frame)), reinterpret_cast<std::byte*>(place.data()));
    };
    for (const Bytes& frame : {whole, bare}) {
        EXPECT_TRUE(make(frame));
        EXPECT_THAT(Bytes(place.begin(), place.begin() + 4), ElementsAre(235, 128, 235, 128)) << "white";
    }
    whole.resize(whole.size() - 8);
    EXPECT_FALSE(make(whole));
    EXPECT_FALSE(make({1, 2, 3}));
    EXPECT_FALSE(Picture({V4L2_PIX_FMT_MJPEG, 32, 16, 0, 4096}, Delivery::Color)
                     .make(std::as_bytes(std::span(bare)), reinterpret_cast<std::byte*>(Bytes(1024).data())))
        << "a picture of another size";
}

} // namespace
} // namespace Zentara::V4l2
