#include "bindings/gstreamer/frame_buffers.h"

#include <cstring>
#include <memory>
#include <span>
#include <string>

#include <gst/audio/audio.h>
#include <gst/video/video.h>
#include <zentara/compression_type.h>
#include <zentara/host/failure.h>
#include <zentara/host/stream_info.h>
#include <zentara/utils/format.h>

namespace Zentara::GStreamer {

namespace {

using Host::Frame;
using Host::Kind;
using Host::Mode;
using Bytes = std::span<const std::byte>;

GstAudioFormat sampleFormat(int bits) {
    return bits == 8 ? GST_AUDIO_FORMAT_U8
                     : gst_audio_format_build_integer(TRUE, G_LITTLE_ENDIAN, bits, bits);
}

GstCaps* pictureCaps(const Mode& mode) {
    const char* media = "video/x-raw";
    if (mode.compression == CompressionType_MJPEG)
        media = "image/jpeg";
    if (mode.compression == CompressionType_H264)
        media = "video/x-h264";
    GstCaps* const caps = gst_caps_new_simple(media, "width", G_TYPE_INT, static_cast<gint>(mode.width),
                                              "height", G_TYPE_INT, static_cast<gint>(mode.height),
                                              "framerate", GST_TYPE_FRACTION, static_cast<gint>(mode.rate), 1,
                                              "pixel-aspect-ratio", GST_TYPE_FRACTION, 1, 1, nullptr);
    if (mode.compression == CompressionType_H264)
        gst_caps_set_simple(caps, "stream-format", G_TYPE_STRING, "byte-stream", "alignment", G_TYPE_STRING,
                            "au", nullptr);
    else if (mode.compression == CompressionType_NONE)
        gst_caps_set_simple(caps, "format", G_TYPE_STRING, mode.kind == Kind::Depth ? "GRAY16_LE" : "YUY2",
                            "interlace-mode", G_TYPE_STRING, "progressive", nullptr);
    return caps;
}

GstCaps* soundCaps(const Mode& mode) {
    const GstAudioFormat format = sampleFormat(mode.bitsPerSample);
    if (format == GST_AUDIO_FORMAT_UNKNOWN)
        return gst_caps_new_empty();
    GstCaps* const caps =
        gst_caps_new_simple("audio/x-raw", "format", G_TYPE_STRING, gst_audio_format_to_string(format),
                            "rate", G_TYPE_INT, static_cast<gint>(mode.rate), "channels", G_TYPE_INT,
                            mode.channels, "layout", G_TYPE_STRING, "interleaved", nullptr);
    if (mode.channels > 2) // which is which, the camera does not say
        gst_caps_set_simple(caps, "channel-mask", GST_TYPE_BITMASK, G_GUINT64_CONSTANT(0), nullptr);
    return caps;
}

void releaseFrame(gpointer frame) { delete static_cast<Frame*>(frame); }

/// The frame's own memory, read-only, for as long as the buffer lives.
GstBuffer* wrapped(const Frame& frame, Bytes bytes) {
    return gst_buffer_new_wrapped_full(GST_MEMORY_FLAG_READONLY,
                                       const_cast<std::byte*>(bytes.data()), // which that flag keeps so
                                       bytes.size(), 0, bytes.size(), new Frame(frame), &releaseFrame);
}

/// Rows as GStreamer has them where it is not told otherwise: each begins at a multiple of four bytes.
GstBuffer* rowsOf(const Frame& frame, Bytes bytes, std::size_t rowBytes) {
    const std::size_t stride = GST_ROUND_UP_4(rowBytes);
    if (stride == rowBytes)
        return wrapped(frame, bytes);
    const std::size_t rows = bytes.size() / rowBytes;
    GstBuffer* const copy = gst_buffer_new_allocate(nullptr, rows * stride, nullptr);
    gst_buffer_memset(copy, 0, 0, rows * stride);
    for (std::size_t row = 0; row < rows; ++row)
        gst_buffer_fill(copy, row * stride, bytes.data() + row * rowBytes, rowBytes);
    return copy;
}

/// So many of the frame's bytes. \throws Host::Failure
Bytes firstOf(const Frame& frame, std::size_t wanted) {
    const Bytes all = frame.bytes();
    if (all.size() < wanted)
        throw Host::Failure(Host::Failure::Failed,
                            "cannot use frame " + std::to_string(frame.number()) + " of " +
                                frame.info().camera.label(frame.kind()),
                            Utils::Format("it has % bytes, where % belong to its mode") % all.size() %
                                wanted);
    return all.first(wanted);
}

} // namespace

const char* templateCaps(Kind kind) noexcept {
    switch (kind) {
    case Kind::Depth:
        return GST_VIDEO_CAPS_MAKE("GRAY16_LE");
    case Kind::Color:
        return GST_VIDEO_CAPS_MAKE(
            "YUY2") "; image/jpeg; video/x-h264, stream-format=byte-stream, alignment=au";
    case Kind::Audio:
        return GST_AUDIO_CAPS_MAKE("{ U8, S16LE, S24LE, S32LE }") ", layout=interleaved";
    }
    return "ANY";
}

GstCaps* capsOf(const Mode& mode) { return mode.kind == Kind::Audio ? soundCaps(mode) : pictureCaps(mode); }

GstCaps* capsOf(const std::vector<Mode>& modes) {
    GstCaps* all = gst_caps_new_empty();
    for (const Mode& mode : modes)
        all = gst_caps_merge(all, capsOf(mode));
    return all;
}

GstBuffer* bufferOf(const Frame& frame) {
    const Mode& mode = frame.info().mode;
    if (mode.kind == Kind::Depth)
        return rowsOf(frame, std::as_bytes(frame.depth()), std::size_t{2} * mode.width);
    if (mode.kind == Kind::Color && mode.compression == CompressionType_NONE) {
        const std::size_t rowBytes = std::size_t{2} * mode.width;
        return rowsOf(frame, firstOf(frame, rowBytes * mode.height), rowBytes);
    }
    const Bytes all = frame.bytes();
    if (mode.kind == Kind::Audio) {
        const std::size_t sample = std::size_t{1} * mode.channels * mode.bitsPerSample / 8;
        return wrapped(frame, all.first(all.size() - all.size() % sample));
    }
    return wrapped(frame, all);
}

} // namespace Zentara::GStreamer
