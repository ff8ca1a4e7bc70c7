#pragma once

#include <cerrno>
#include <cstring>
#include <deque>
#include <functional>
#include <linux/usb/video.h>
#include <linux/uvcvideo.h>
#include <linux/videodev2.h>
#include <map>
#include <poll.h>
#include <string>
#include <vector>

#include <zentara/utils/mutex.h>

#include "plugins/linux/kernel.h"

namespace Zentara::TestSupport {

using Bytes = std::vector<std::uint8_t>;

/// A kernel with one driver, whose nodes all deliver the same pictures, 640 x 480 unless told, at 30 frames a second.
class FakeKernel final : public Linux::Kernel {
public:
    std::map<std::string, int> openErrors;   ///< by path
    std::map<unsigned long, int> callErrors; ///< by request
    std::function<void(unsigned long)> onCall = [](unsigned long) {};
    std::function<int(uvc_xu_control_query&)> onUnit; ///< what the camera's units answer
    std::vector<std::uint32_t> formats{V4L2_PIX_FMT_YUYV};
    v4l2_pix_format made{640, 480, 0, V4L2_FIELD_NONE, 1280, 614400, 0, 0, 0, {0}, 0, 0};
    std::uint32_t flags = V4L2_BUF_FLAG_TIMESTAMP_MONOTONIC; ///< of the frames
    std::deque<Bytes> frames;
    bool gone = false; ///< the camera was pulled out
    bool streams = false;
    int openFiles = 0;
    std::map<std::string, int> opened; ///< how often, by path

    [[nodiscard]] int open(const std::string& path) override {
        ++opened[path];
        return openErrors.count(path) != 0 ? -openErrors[path] : 100 + ++openFiles;
    }
    void close(int) override { --openFiles; }
    int control(int, unsigned long request, void* argument) override {
        const Utils::Threading::AutoLock hold(lock);
        onCall(request);
        if (callErrors.count(request) != 0)
            return -callErrors[request];
        const auto call = calls.find(request);
        return call == calls.end() ? -EINVAL : call->second(argument);
    }
    [[nodiscard]] std::byte* map(int, std::size_t length, std::uint32_t) override {
        memory.resize(length);
        return memory.data();
    }
    void unmap(std::byte*, std::size_t) override {}
    int watch(int, int wake) override { return ++openFiles, wake; }
    [[nodiscard]] Ready wait(int wake, int milliseconds) override {
        pollfd file{wake, POLLIN, 0};
        if (gone || !frames.empty())
            return gone ? Ready::Broken : Ready::Frame;
        return ::poll(&file, 1, milliseconds) > 0 ? Ready::Woken : Ready::Nothing;
    }

    template<typename Argument>
    static Argument& as(void* argument) {
        return *static_cast<Argument*>(argument);
    }

    using Call = std::function<int(void*)>;
    const Call nothing = [](void*) { return 0; };
    /// What the requests do; any other is not known. A test may put others in their place.
    std::map<unsigned long, Call> calls{
        {VIDIOC_QUERYCAP, [](void* a) { return as<v4l2_capability>(a).capabilities = 0x04000001, 0; }},
        {VIDIOC_ENUM_FMT, [this](void* a) { return describe(as<v4l2_fmtdesc>(a)); }},
        {VIDIOC_ENUM_FRAMESIZES,
         [this](void* a) {
             as<v4l2_frmsizeenum>(a).discrete = {made.width, made.height};
             return as<v4l2_frmsizeenum>(a).type = 1, 0;
         }},
        {VIDIOC_ENUM_FRAMEINTERVALS,
         [](void* a) {
             return as<v4l2_frmivalenum>(a).type = 1, as<v4l2_frmivalenum>(a).discrete = {1, 30}, 0;
         }},
        {VIDIOC_S_FMT,
         [this](void* a) { return made.pixelformat = as<v4l2_format>(a).fmt.pix.pixelformat, 0; }},
        {VIDIOC_G_FMT, [this](void* a) { return as<v4l2_format>(a).fmt.pix = made, 0; }},
        {VIDIOC_QUERYBUF, [this](void* a) { return as<v4l2_buffer>(a).length = made.sizeimage, 0; }},
        {VIDIOC_STREAMON, [this](void*) { return streams = true, gone ? -ENODEV : 0; }},
        {VIDIOC_STREAMOFF, [this](void*) { return streams = false, 0; }},
        {VIDIOC_DQBUF, [this](void* a) { return fetch(as<v4l2_buffer>(a)); }},
        {UVCIOC_CTRL_QUERY, [this](void* a) { return onUnit(as<uvc_xu_control_query>(a)); }},
        {VIDIOC_S_PARM, nothing},
        {VIDIOC_REQBUFS, nothing},
        {VIDIOC_QBUF, nothing},
    };

private:
    int describe(v4l2_fmtdesc& format) {
        if (format.index >= formats.size())
            return -EINVAL;
        format.pixelformat = formats[format.index];
        return 0;
    }
    int fetch(v4l2_buffer& buffer) {
        if (gone || frames.empty())
            return gone ? -ENODEV : -EAGAIN;
        buffer.bytesused = static_cast<std::uint32_t>(frames.front().size());
        std::memcpy(memory.data(), frames.front().data(), frames.front().size());
        buffer.flags = flags;
        buffer.timestamp = {12, 345678};
        frames.pop_front();
        return 0;
    }

    Utils::Threading::Mutex lock;
    std::vector<std::byte> memory;
};

} // namespace Zentara::TestSupport
