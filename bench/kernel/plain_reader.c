/* plain_reader NODE FEW MANY: takes MANY frames of 320 x 240 pixels of YUYV, 60 a second, from the driver and copies each once, as a program
 * does that has no library. Prints the processor time from
 * frame FEW to the last, in milliseconds a frame: what the host library's way costs is compared with it. */
#include <fcntl.h>
#include <linux/videodev2.h>
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <time.h>

enum { width = 320, height = 240, rate = 60, wantedBuffers = 4, patienceMilliseconds = 2000 };

static int node;
static unsigned char frame[width * height * 2];

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
    if (format.fmt.pix.sizeimage != sizeof frame) {
        fprintf(stderr, "the driver makes frames of %u bytes\n", format.fmt.pix.sizeimage);
        exit(1);
    }
    struct v4l2_streamparm parameters = {.type = V4L2_BUF_TYPE_VIDEO_CAPTURE};
    parameters.parm.capture.timeperframe.numerator = 1;
    parameters.parm.capture.timeperframe.denominator = rate;
    require(ioctl(node, VIDIOC_S_PARM, &parameters), "frame rate");
}

static double used_milliseconds(void) { return (double)clock() * 1000 / CLOCKS_PER_SEC; }

int main(int argc, char** argv) {
    unsigned char* memory[wantedBuffers] = {NULL};
    if (argc != 4)
        return 2;
    const int few = atoi(argv[2]);
    const int many = atoi(argv[3]);
    double before = 0;
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
    for (int taken = 0; taken < many; ++taken) {
        if (taken == few)
            before = used_milliseconds();
        struct pollfd wait = {.fd = node, .events = POLLIN};
        if (poll(&wait, 1, patienceMilliseconds) <= 0)
            return 1;
        struct v4l2_buffer buffer = {.type = V4L2_BUF_TYPE_VIDEO_CAPTURE, .memory = V4L2_MEMORY_MMAP};
        require(ioctl(node, VIDIOC_DQBUF, &buffer), "frame");
        memcpy(frame, memory[buffer.index],
               buffer.bytesused < sizeof frame ? buffer.bytesused : sizeof frame);
        require(ioctl(node, VIDIOC_QBUF, &buffer), "queue");
    }
    printf("%.5f\n", (used_milliseconds() - before) / (many - few));
    return ioctl(node, VIDIOC_STREAMOFF, &type) < 0;
}
