/* plain_reader NODE FEW MANY [2]: takes MANY frames of 320 x 240 pixels of YUYV, 60 a second, from the driver and copies each once, as a
 * program does that has no library. Prints the processor time from frame FEW to the last, in milliseconds a frame: what the host library's
 * way costs is compared with it. With 2 a second thread takes them, which can be told to stop, and the first waits for each with a limit:
 * the least that a wait costs which ends in time whatever the driver does. */
#include <fcntl.h>
#include <linux/videodev2.h>
#include <poll.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <time.h>

enum { width = 320, height = 240, rate = 60, wantedBuffers = 4, patienceMilliseconds = 2000 };

static int node;
static int stopped; /* an event */
static int few;
static int many;
static unsigned char* memory[wantedBuffers];
static unsigned char frame[2][width * height * 2]; /* one is given away while the other is written */

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t came;
static int arrived;

static void require(int result, const char* what) {
    if (result >= 0)
        return;
    perror(what);
    exit(1);
}

static void choose_mode(void) {
    struct v4l2_format format = {.type = V4L2_BUF_TYPE_VIDEO_CAPTURE};
    format.fmt.pix.width = width;
    format.fmt.pix.height = height;
    format.fmt.pix.pixelformat = V4L2_PIX_FMT_YUYV;
    require(ioctl(node, VIDIOC_S_FMT, &format), "format");
    if (format.fmt.pix.sizeimage != sizeof frame[0]) {
        fprintf(stderr, "the driver makes frames of %u bytes\n", format.fmt.pix.sizeimage);
        exit(1);
    }
    struct v4l2_streamparm parameters = {.type = V4L2_BUF_TYPE_VIDEO_CAPTURE};
    parameters.parm.capture.timeperframe.numerator = 1;
    parameters.parm.capture.timeperframe.denominator = rate;
    require(ioctl(node, VIDIOC_S_PARM, &parameters), "frame rate");
}

static double used_milliseconds(void) { return (double)clock() * 1000 / CLOCKS_PER_SEC; }

/* files: 2 to be told to stop as well */
static void take_frame(int number, int files) {
    struct pollfd wait[] = {{.fd = node, .events = POLLIN}, {.fd = stopped, .events = POLLIN}};
    require(poll(wait, (nfds_t)files, patienceMilliseconds) == 1 ? 0 : -1, "no frame");
    struct v4l2_buffer buffer = {.type = V4L2_BUF_TYPE_VIDEO_CAPTURE, .memory = V4L2_MEMORY_MMAP};
    require(ioctl(node, VIDIOC_DQBUF, &buffer), "frame");
    memcpy(frame[number % 2], memory[buffer.index],
           buffer.bytesused < sizeof frame[0] ? buffer.bytesused : sizeof frame[0]);
    require(ioctl(node, VIDIOC_QBUF, &buffer), "queue");
}

static void* give_frames(void* unused) {
    for (int taken = 0; taken < many; ++taken) {
        take_frame(taken, 2);
        pthread_mutex_lock(&lock);
        ++arrived;
        pthread_mutex_unlock(&lock);
        pthread_cond_signal(&came);
    }
    return unused;
}

static double take_from_thread(void) {
    pthread_condattr_t monotonic;
    pthread_condattr_init(&monotonic);
    pthread_condattr_setclock(&monotonic, CLOCK_MONOTONIC);
    pthread_cond_init(&came, &monotonic);
    pthread_t giver;
    require(-pthread_create(&giver, NULL, give_frames, NULL), "thread");
    double before = 0;
    for (int taken = 0; taken < many; ++taken) {
        if (taken == few)
            before = used_milliseconds();
        struct timespec end;
        clock_gettime(CLOCK_MONOTONIC, &end);
        end.tv_sec += patienceMilliseconds / 1000;
        pthread_mutex_lock(&lock);
        int failed = 0;
        while (arrived <= taken && !failed)
            failed = pthread_cond_timedwait(&came, &lock, &end);
        pthread_mutex_unlock(&lock);
        require(-failed, "no frame");
    }
    pthread_join(giver, NULL);
    return before;
}

static double take_frames(void) {
    double before = 0;
    for (int taken = 0; taken < many; ++taken) {
        if (taken == few)
            before = used_milliseconds();
        take_frame(taken, 1);
    }
    return before;
}

int main(int argc, char** argv) {
    if (argc != 4 && argc != 5)
        return 2;
    few = atoi(argv[2]);
    many = atoi(argv[3]);
    stopped = eventfd(0, EFD_CLOEXEC);
    require(stopped, "event");
    node = open(argv[1], O_RDWR | O_NONBLOCK | O_CLOEXEC);
    require(node, argv[1]);
    choose_mode();
    struct v4l2_requestbuffers request = {
        .count = wantedBuffers, .type = V4L2_BUF_TYPE_VIDEO_CAPTURE, .memory = V4L2_MEMORY_MMAP};
    require(ioctl(node, VIDIOC_REQBUFS, &request), "buffers");
    for (unsigned i = 0; i < request.count && i < wantedBuffers; ++i) {
        struct v4l2_buffer buffer = {
            .index = i, .type = V4L2_BUF_TYPE_VIDEO_CAPTURE, .memory = V4L2_MEMORY_MMAP};
        require(ioctl(node, VIDIOC_QUERYBUF, &buffer), "memory");
        void* const place =
            mmap(NULL, buffer.length, PROT_READ | PROT_WRITE, MAP_SHARED, node, buffer.m.offset);
        require(place == MAP_FAILED ? -1 : 0, "mapping");
        memory[i] = place;
        require(ioctl(node, VIDIOC_QBUF, &buffer), "queue");
    }
    int type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    require(ioctl(node, VIDIOC_STREAMON, &type), "start");
    const double before = argc == 5 ? take_from_thread() : take_frames();
    printf("%.5f\n", (used_milliseconds() - before) / (many - few));
    return ioctl(node, VIDIOC_STREAMOFF, &type) < 0;
}
