#include "bindings/gstreamer/stream_source.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <utility>

#include <zentara/host/failure.h>
#include <zentara/host/frame_clock.h>
#include <zentara/host/stream.h>
#include <zentara/host/stream_line.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

#include "bindings/gstreamer/failure_messages.h"
#include "bindings/gstreamer/frame_buffers.h"

namespace Zentara::GStreamer {

namespace {

using Host::Failure;
using Host::Frame;
using Host::Kind;
using Host::Mode;
using Host::Stream;
using std::chrono::milliseconds;
using Utils::Format;

constexpr std::size_t queuedFrames = 4;
constexpr GstClockTime longestAge = GST_SECOND; ///< that the latency follows; what comes later comes too late
constexpr milliseconds lookPause(20);
constexpr milliseconds lookPatience(200); ///< for a frame, before it is looked what has happened

GstClockTime periodOf(const Mode& mode) {
    return mode.kind == Kind::Audio ? GST_MSECOND : GST_SECOND / std::max(1U, mode.rate);
}

/// The stream behind the element. Of the streaming thread, but for what says otherwise.
class StreamReader {
public:
    explicit StreamReader(GstBaseSrc* element) : base(element) {}

    void prepare(StreamWish wanted, std::shared_ptr<CameraSession> with, GstPad* pad) {
        const std::lock_guard hold(lock);
        wish = std::move(wanted);
        session = std::move(with);
        outside = pad;
    }

    GstFlowReturn create(GstBuffer** buffer);

    // Any thread.
    void interrupt(bool now) { isInterrupted = now; }
    void resume() { isResumed = true; }
    [[nodiscard]] GstCaps* caps() const;
    [[nodiscard]] bool answerLatency(GstQuery* query) const;

    /// No streaming thread runs any more.
    void end();
    [[nodiscard]] std::optional<Errand<bool>> takeEnd() { return std::exchange(ending, std::nullopt); }

private:
    [[nodiscard]] bool goesOn() const { return !isInterrupted; }
    [[nodiscard]] bool awaitLink() const;
    [[nodiscard]] Mode chooseMode(const std::vector<Mode>& modes, const Host::Camera& camera) const;
    [[nodiscard]] bool begin();
    void announce(const Mode& mode);
    [[nodiscard]] std::optional<Frame> next();
    void skipOldFrames();
    void stamp(GstBuffer* buffer, const Frame& frame);
    void tellGap(GstBuffer* buffer);
    void raiseLatency(GstClockTime age);
    [[nodiscard]] GstElement* element() const { return GST_ELEMENT(base); }

    GstBaseSrc* const base;
    // Set while no streaming thread runs, under `lock` for who asks meanwhile.
    StreamWish wish;
    std::shared_ptr<CameraSession> session; ///< null while there is none
    GstPad* outside = nullptr;
    std::atomic<bool> isInterrupted{false};
    std::atomic<bool> isResumed{false}; ///< what is queued is from before a pause

    std::shared_ptr<Stream> stream; ///< null until it has begun
    Host::FrameClock clock;
    bool isAway = false;
    GstClockTime lastTime = 0;
    guint64 delivered = 0;
    guint64 missing = 0; ///< of all time
    guint64 gap = 0;     ///< missing before the next buffer
    std::optional<Errand<bool>> ending;

    mutable std::mutex lock;
    std::optional<Mode> mode;     // guarded by `lock`: once it is chosen
    GstClockTime greatestAge = 0; // guarded by `lock`: rounded up
};

// Beginning ----------------------------------------------------------------------------------------------------------

bool StreamReader::awaitLink() const {
    while (goesOn()) {
        if (gst_pad_is_linked(outside))
            return true;
        g_usleep(static_cast<gulong>(std::chrono::microseconds(lookPause).count()));
    }
    return false;
}

Mode StreamReader::chooseMode(const std::vector<Mode>& modes, const Host::Camera& camera) const {
    std::vector<Mode> some = modes;
    if (!wish.mode.empty() || some.empty())
        some = {camera.mode(wish.kind, wish.mode)};
    GstCaps* const wanted = gst_pad_peer_query_caps(GST_BASE_SRC_PAD(base), nullptr);
    const auto fitting = std::find_if(some.begin(), some.end(), [wanted](const Mode& one) {
        GstCaps* const caps = capsOf(one);
        const bool fits = wanted == nullptr || gst_caps_can_intersect(caps, wanted) != FALSE;
        gst_caps_unref(caps);
        return fits;
    });
    gchar* const text = wanted == nullptr ? nullptr : gst_caps_to_string(wanted);
    const std::string what = text == nullptr ? std::string() : text;
    g_free(text);
    if (wanted != nullptr)
        gst_caps_unref(wanted);
    if (fitting != some.end())
        return *fitting;
    std::string all;
    for (const Mode& one : some)
        all += (all.empty() ? "" : ", ") + one.text();
    throw Failure(Failure::Usage, "cannot stream " + camera.info().label(wish.kind),
                  "downstream takes " + what + ", and the camera can " + all,
                  "leave the caps to the camera, or convert behind it");
}

bool StreamReader::begin() {
    Errand<Host::Camera> opening([held = session] { return held->camera(); });
    const std::optional<Host::Camera> camera = opening.fetch([this] { return goesOn(); });
    if (!camera)
        return false;
    const Mode chosen = chooseMode(session->modes(wish.kind).value_or(std::vector<Mode>()), *camera);
    Host::StreamOptions options;
    options.mode = chosen.name;
    options.queue = queuedFrames;
    options.awaitReturn = wish.onUnplug == OnUnplug::Wait;
    Errand<std::shared_ptr<Stream>> starting([from = *camera, kind = wish.kind, options] {
        return std::make_shared<Stream>(from.stream(kind, options));
    });
    const auto started = starting.fetch([this] { return goesOn(); });
    if (!started)
        return false;
    stream = *started;
    announce(chosen);
    return true;
}

/// Caps, what belongs to every frame, and the latency.
void StreamReader::announce(const Mode& chosen) {
    {
        const std::lock_guard hold(lock);
        mode = chosen;
    }
    GstCaps* const caps = capsOf(chosen);
    gst_base_src_set_caps(base, caps);
    gst_caps_unref(caps);
    const Host::StreamInfo& info = stream->info();
    GstTagList* const tags = gst_tag_list_new(GST_TAG_COMMENT, Host::streamLine(info).c_str(), nullptr);
    // Queued behind the segment. Past gst_element_send_event(), which takes the lock of who waits for this thread to end.
    GST_ELEMENT_GET_CLASS(base)->send_event(element(), gst_event_new_tag(tags));
    gst_element_post_message(element(), gst_message_new_latency(GST_OBJECT(base)));
}

// Frames -------------------------------------------------------------------------------------------------------------

std::optional<Frame> StreamReader::next() {
    const bool waits = wish.onUnplug == OnUnplug::Wait;
    const milliseconds step = wish.silence.count() > 0 ? std::min(lookPatience, wish.silence) : lookPatience;
    for (milliseconds silent(0);; silent += step) {
        try {
            std::optional<Frame> frame = stream->next(step, [this] { return goesOn(); });
            if (frame && std::exchange(isAway, false))
                postWarning(element(), stream->label() + " is back");
            return frame;
        } catch (const Failure& failure) {
            if (failure.code() == Failure::TimedOut &&
                (wish.silence.count() == 0 || silent + step < wish.silence))
                continue;
            if (failure.code() != Failure::NoDevice || wish.onUnplug == OnUnplug::Error)
                throw;
            if (!std::exchange(isAway, true))
                postWarning(element(), failure.what());
            if (!waits || stream->state() != Stream::State::Away)
                return {};
            silent = milliseconds(0);
        }
    }
}

/// After a pause: who asks for live pictures wants new ones.
void StreamReader::skipOldFrames() {
    while (const std::optional<Frame> old = stream->poll())
        gap += 1 + old->droppedBefore();
}

void StreamReader::raiseLatency(GstClockTime age) {
    {
        const std::lock_guard hold(lock);
        const GstClockTime step = periodOf(*mode);
        const GstClockTime rounded = (std::min(age, longestAge) + step - 1) / step * step;
        if (rounded <= std::max(greatestAge, step))
            return;
        greatestAge = rounded;
    }
    gst_element_post_message(element(), gst_message_new_latency(GST_OBJECT(base)));
}

void StreamReader::stamp(GstBuffer* buffer, const Frame& frame) {
    const GstClockTime now = gst_element_get_current_running_time(element());
    const std::int64_t age = std::max<std::int64_t>(0, Utils::Clock::nowMicros() - clock.timeOf(frame));
    const GstClockTime since = static_cast<GstClockTime>(age) * GST_USECOND;
    if (GST_CLOCK_TIME_IS_VALID(now)) {
        lastTime = std::max(lastTime, now > since ? now - since : 0);
        GST_BUFFER_PTS(buffer) = lastTime;
    }
    const Mode& in = frame.info().mode;
    GST_BUFFER_DURATION(buffer) = periodOf(in);
    if (in.kind == Kind::Audio) {
        const guint64 sample = std::max<guint64>(1, guint64{1} * in.channels * in.bitsPerSample / 8);
        GST_BUFFER_DURATION(buffer) =
            gst_util_uint64_scale(gst_buffer_get_size(buffer) / sample, GST_SECOND, std::max(1U, in.rate));
    }
    GST_BUFFER_OFFSET(buffer) = frame.number();
    GST_BUFFER_OFFSET_END(buffer) = frame.number() + 1;
    gap += frame.droppedBefore();
    if (gap > 0 || frame.isFirstAfterReturn() || delivered == 0)
        GST_BUFFER_FLAG_SET(buffer, GST_BUFFER_FLAG_DISCONT);
    raiseLatency(since);
}

void StreamReader::tellGap(GstBuffer* buffer) {
    if (gap == 0)
        return;
    missing += std::exchange(gap, 0);
    const GstClockTime time = GST_BUFFER_PTS(buffer);
    GstMessage* const message =
        gst_message_new_qos(GST_OBJECT(base), TRUE, time, time, time, GST_BUFFER_DURATION(buffer));
    gst_message_set_qos_stats(message, GST_FORMAT_BUFFERS, delivered, missing);
    gst_element_post_message(element(), message);
}

GstFlowReturn StreamReader::create(GstBuffer** buffer) try {
    if (!stream && (!awaitLink() || !begin()))
        return GST_FLOW_FLUSHING;
    if (isResumed.exchange(false) && delivered > 0)
        skipOldFrames();
    for (;;) {
        const std::optional<Frame> frame = next();
        if (!frame)
            return GST_FLOW_EOS;
        try {
            *buffer = bufferOf(*frame);
        } catch (const Failure& tooShort) {
            postWarning(element(), tooShort.what());
            gap += 1 + frame->droppedBefore();
            continue;
        }
        stamp(*buffer, *frame);
        tellGap(*buffer);
        ++delivered;
        return GST_FLOW_OK;
    }
} catch (const Failure& failure) {
    if (failure.code() == Failure::Interrupted)
        return GST_FLOW_FLUSHING;
    postError(element(), failure);
    return GST_FLOW_EOS; // an error of the flow would be posted once more
} catch (const std::exception& failure) {
    postError(element(), Failure(Failure::Failed, "cannot stream", failure.what()));
    return GST_FLOW_EOS;
}

void StreamReader::end() {
    if (stream)
        ending.emplace(letGo(std::exchange(stream, nullptr)));
    clock = {};
    isAway = false;
    lastTime = delivered = missing = gap = 0;
    const std::lock_guard hold(lock);
    session = nullptr;
    mode.reset();
    greatestAge = 0;
}

// Questions ----------------------------------------------------------------------------------------------------------

GstCaps* StreamReader::caps() const {
    const std::lock_guard hold(lock);
    if (mode)
        return capsOf(*mode);
    return gst_caps_from_string(templateCaps(wish.kind));
}

bool StreamReader::answerLatency(GstQuery* query) const {
    const std::lock_guard hold(lock);
    std::optional<Mode> asked = mode;
    if (!asked && session) { // the stream has not begun: most likely it will be that
        for (const Mode& one : session->modes(wish.kind).value_or(std::vector<Mode>())) {
            if (!asked && (wish.mode.empty() || one.isCalled(wish.mode)))
                asked = one;
        }
    }
    if (!asked)
        return false;
    const GstClockTime least = std::max(greatestAge, periodOf(*asked));
    gst_query_set_latency(query, TRUE, least, least + queuedFrames * periodOf(*asked));
    return true;
}

} // namespace

} // namespace Zentara::GStreamer

// The class, as GStreamer has it -------------------------------------------------------------------------------------

using Zentara::GStreamer::StreamReader;

struct ZentaraStreamSrc {
    GstPushSrc parent;
    StreamReader* reader;
};
struct ZentaraStreamSrcClass {
    GstPushSrcClass parent;
};

G_DEFINE_TYPE(ZentaraStreamSrc, zentara_stream_src, GST_TYPE_PUSH_SRC)

namespace {

StreamReader& readerOf(gpointer element) { return *static_cast<ZentaraStreamSrc*>(element)->reader; }

GstFlowReturn create(GstPushSrc* source, GstBuffer** buffer) { return readerOf(source).create(buffer); }

gboolean unlock(GstBaseSrc* source) {
    readerOf(source).interrupt(true);
    return TRUE;
}

gboolean unlockStop(GstBaseSrc* source) {
    readerOf(source).interrupt(false);
    readerOf(source).resume();
    return TRUE;
}

gboolean stop(GstBaseSrc* source) {
    readerOf(source).end();
    return TRUE;
}

GstCaps* getCaps(GstBaseSrc* source, GstCaps* filter) {
    GstCaps* const all = readerOf(source).caps();
    if (filter == nullptr)
        return all;
    GstCaps* const some = gst_caps_intersect_full(filter, all, GST_CAPS_INTERSECT_FIRST);
    gst_caps_unref(all);
    return some;
}

/// Caps are set once the camera has told its modes.
gboolean negotiate(GstBaseSrc* /*source*/) { return TRUE; }

gboolean query(GstBaseSrc* source, GstQuery* asked) {
    if (GST_QUERY_TYPE(asked) == GST_QUERY_LATENCY && readerOf(source).answerLatency(asked))
        return TRUE;
    return GST_BASE_SRC_CLASS(zentara_stream_src_parent_class)->query(source, asked);
}

void finalize(GObject* object) {
    delete static_cast<ZentaraStreamSrc*>(static_cast<gpointer>(object))->reader;
    G_OBJECT_CLASS(zentara_stream_src_parent_class)->finalize(object);
}

} // namespace

static void zentara_stream_src_class_init(ZentaraStreamSrcClass* type) {
    G_OBJECT_CLASS(type)->finalize = &finalize;
    gst_element_class_add_pad_template(
        GST_ELEMENT_CLASS(type), gst_pad_template_new("src", GST_PAD_SRC, GST_PAD_ALWAYS, GST_CAPS_ANY));
    gst_element_class_set_static_metadata(GST_ELEMENT_CLASS(type), "Stream of a depth camera", "Source",
                                          "One stream of a camera, inside zentarasrc", "Zentara");
    GST_PUSH_SRC_CLASS(type)->create = &create;
    GstBaseSrcClass* const base = GST_BASE_SRC_CLASS(type);
    base->unlock = &unlock;
    base->unlock_stop = &unlockStop;
    base->stop = &stop;
    base->get_caps = &getCaps;
    base->negotiate = &negotiate;
    base->query = &query;
}

static void zentara_stream_src_init(ZentaraStreamSrc* self) {
    self->reader = new StreamReader(GST_BASE_SRC(self));
    gst_base_src_set_live(GST_BASE_SRC(self), TRUE);
    gst_base_src_set_format(GST_BASE_SRC(self), GST_FORMAT_TIME);
}

namespace Zentara::GStreamer {

GstElement* newStreamSource(Host::Kind kind) {
    const gpointer made = g_object_new(zentara_stream_src_get_type(), "name", Host::kindName(kind), nullptr);
    StreamWish wish;
    wish.kind = kind;
    readerOf(made).prepare(std::move(wish), nullptr, nullptr);
    return GST_ELEMENT(made);
}

void prepareStreamSource(GstElement* source, StreamWish wish, std::shared_ptr<CameraSession> session,
                         GstPad* pad) {
    g_object_set(source, "num-buffers", wish.frames, nullptr);
    readerOf(source).prepare(std::move(wish), std::move(session), pad);
}

std::optional<Errand<bool>> endOfStreamSource(GstElement* source) { return readerOf(source).takeEnd(); }

} // namespace Zentara::GStreamer
