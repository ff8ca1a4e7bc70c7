#include <zentara/utils/wave_writer.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "utils/platform/files.h"

namespace Platform = Zentara::Utils::Platform;

namespace {

enum Result {
    NoError = 0,
    AlreadyOpen = 1,
    CannotOpen = 2,
    CannotWrite = 3,
    CannotSeek = 4,
    CannotClose = 5
};

/// The three pieces of the header, in which a file begins.
constexpr std::size_t riffBytes = 4 + 4 + 4;
constexpr std::size_t formatBytes = 4 + 4 + 2 + 2 + 4 + 4 + 2 + 2;
constexpr std::size_t dataBytes = 4 + 4;
constexpr std::size_t headerBytes = riffBytes + formatBytes + dataBytes;

constexpr std::uint32_t riffSizeWithoutData = headerBytes - 8;
constexpr std::uint32_t formatChunkSize = formatBytes - 8;
constexpr std::uint16_t pcmFormat = 1;

/// Fills the header's bytes from front to back, little-endian.
class HeaderCursor {
public:
    explicit HeaderCursor(unsigned char* first) : next(first) {}

    HeaderCursor& text(const char* fourCharacters) {
        for (int i = 0; i < 4; ++i)
            *next++ = static_cast<unsigned char>(fourCharacters[i]);
        return *this;
    }
    HeaderCursor& number(std::uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i)
            *next++ = static_cast<unsigned char>(value >> 8 * i);
        return *this;
    }

private:
    unsigned char* next;
};

} // namespace

struct WaveWriter::Impl {
    std::uint32_t sampleBytes() const { return (bitsPerSample + 7u) / 8u; }

    void fillHeader(unsigned char* header) const {
        const std::uint32_t blockBytes = channels * sampleBytes();
        HeaderCursor(header)
            .text("RIFF")
            .number(riffSize, 4)
            .text("WAVE")
            .text("fmt ")
            .number(formatChunkSize, 4)
            .number(pcmFormat, 2)
            .number(channels, 2)
            .number(samplesPerSecond, 4)
            .number(samplesPerSecond * blockBytes, 4)
            .number(blockBytes, 2)
            .number(bitsPerSample, 2)
            .text("data")
            .number(dataSize, 4);
    }

    bool writeHeader() const {
        unsigned char header[headerBytes];
        fillHeader(header);
        // Piece by piece, as the format has them.
        return writeBytes(header, riffBytes) && writeBytes(header + riffBytes, formatBytes) &&
               writeBytes(header + riffBytes + formatBytes, dataBytes);
    }

    bool writeBytes(const void* bytes, std::size_t count) const {
        return std::fwrite(bytes, 1, count, file) == count;
    }

    /// Takes from the count what the system did not take of this file's data: the C library drops what it has kept
    /// back when it cannot write it.
    void countWhatIsThere() {
        const std::int64_t length = Platform::fileLength(file);
        if (length < 0)
            return;
        const std::int64_t present =
            std::max<std::int64_t>(0, length - static_cast<std::int64_t>(headerBytes));
        dataSize =
            formerData + static_cast<std::uint32_t>(std::min<std::int64_t>(dataSize - formerData, present));
    }

    std::FILE* file = nullptr; ///< null while nothing is open
    std::uint32_t riffSize = riffSizeWithoutData;
    std::uint16_t channels = 2;
    std::uint32_t samplesPerSecond = 48000;
    std::uint16_t bitsPerSample = 16;
    std::uint32_t dataSize = 0;   ///< also the count of data bytes written
    std::uint32_t formerData = 0; ///< the part of it that earlier files have
};

WaveWriter::WaveWriter() : impl(std::make_unique<Impl>()) {}

WaveWriter::~WaveWriter() { close(); }

int WaveWriter::open(const char* path) {
    if (impl->file)
        return AlreadyOpen;
    impl->file = path ? Platform::openFile(path, Platform::FileMode::WriteBinary) : nullptr;
    if (!impl->file)
        return CannotOpen;
    impl->formerData = impl->dataSize;
    return impl->writeHeader() ? NoError : CannotWrite;
}

int WaveWriter::write(const void* data, int size) {
    constexpr std::uint32_t mostData = std::numeric_limits<std::uint32_t>::max() - riffSizeWithoutData;
    if (!impl->file || size == 0)
        return NoError;
    if (!data || size < 0)
        return CannotWrite;
    const auto count = static_cast<std::uint32_t>(size);
    // Sizes have 32 bits in the format: what does not fit is refused whole, and what is there stays playable.
    if (count > mostData - impl->dataSize || !impl->writeBytes(data, count))
        return CannotWrite;
    impl->dataSize += count;
    return NoError;
}

int WaveWriter::close() {
    if (!impl->file)
        return NoError;
    // Before the seek, which would write as well, and whose failure has another meaning.
    int result = std::fflush(impl->file) == 0 ? NoError : CannotWrite;
    if (std::ferror(impl->file) != 0)
        impl->countWhatIsThere();
    impl->riffSize = impl->dataSize + riffSizeWithoutData;
    // A file that cannot be rewound, such as a pipe, keeps the header that was written first.
    const bool rewritten =
        std::fseek(impl->file, 0, SEEK_SET) != 0 || (impl->writeHeader() && std::fflush(impl->file) == 0);
    if (!rewritten && result == NoError)
        result = CannotSeek;
    if (std::fclose(impl->file) != 0 && result == NoError)
        result = CannotClose;
    impl->file = nullptr;
    return result;
}

bool WaveWriter::isOpen() const { return impl->file != nullptr; }

int WaveWriter::getNumChannels() const { return impl->channels; }

void WaveWriter::setNumChannels(int channels) { impl->channels = static_cast<std::uint16_t>(channels); }

int WaveWriter::getSamplingRate() const { return static_cast<int>(impl->samplesPerSecond); }

void WaveWriter::setSamplingRate(int rate) { impl->samplesPerSecond = static_cast<std::uint32_t>(rate); }

int WaveWriter::getBitsPerChannel() const { return impl->bitsPerSample; }

void WaveWriter::setBitsPerChannel(int bits) { impl->bitsPerSample = static_cast<std::uint16_t>(bits); }

const char* WaveWriter::errorString(int code) {
    switch (code) {
    case NoError:
        return "no error";
    case AlreadyOpen:
        return "file already open";
    case CannotOpen:
        return "cannot open file";
    case CannotWrite:
        return "cannot write to file";
    case CannotSeek:
        return "cannot seek file";
    case CannotClose:
        return "cannot close file";
    default:
        return "unknown error";
    }
}
