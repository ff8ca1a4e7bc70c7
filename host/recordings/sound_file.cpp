#include <zentara/host/sound_file.h>

#include <algorithm>

#include <zentara/host/failure.h>
#include <zentara/utils/format.h>
#include <zentara/utils/wave_writer.h>

#include "host/files/file_failure.h"

namespace Zentara::Host {
namespace {

using Utils::Format;

constexpr std::uint64_t headerBytes = 44;
constexpr std::uint64_t riffPlace = 4; // each followed by the number of bytes that come after it
constexpr std::uint64_t dataPlace = 40;

} // namespace

struct SoundFile::Impl {
    Impl(const std::string& path, const Mode& mode, const OutputFile::Rules& rules)
        : file(path, rules), sampleBytes(static_cast<std::uint64_t>(
                                 std::max(1, mode.channels * ((mode.bitsPerSample + 7) / 8)))) {
        writer.setNumChannels(mode.channels);
        writer.setSamplingRate(static_cast<int>(mode.rate));
        writer.setBitsPerChannel(mode.bitsPerSample);
        check("create", writer.open(file.partPath().c_str()));
    }

    void check(const char* what, int code) const {
        if (code != 0)
            throw FileFailure(Failure::Failed,
                              Format("cannot % '%': %") % what % file.path() % WaveWriter::errorString(code));
    }
    void repair();

    OutputFile file; ///< outlives the writer, which must have closed when the part is removed
    WaveWriter writer;
    const std::uint64_t sampleBytes; ///< of all channels
    bool isCut = false;              ///< not all could be written
};

/// Makes a file that could not be written to its end say what whole samples it has.
void SoundFile::Impl::repair() {
    if (file.size() < headerBytes)
        throw FileFailure(Failure::Failed,
                          Format("cannot write '%': no whole sample is in it") % file.path());
    const std::uint64_t end = headerBytes + (file.size() - headerBytes) / sampleBytes * sampleBytes;
    file.cut(end);
    for (const std::uint64_t place : {riffPlace, dataPlace}) {
        const std::uint64_t count = end - place - 4;
        const unsigned char bytes[] = {
            static_cast<unsigned char>(count), static_cast<unsigned char>(count >> 8),
            static_cast<unsigned char>(count >> 16), static_cast<unsigned char>(count >> 24)};
        file.patch(place, bytes, sizeof bytes);
    }
}

SoundFile::SoundFile(const std::string& path, const Mode& mode, const OutputFile::Rules& rules)
    : impl(std::make_unique<Impl>(path, mode, rules)) {}

SoundFile::~SoundFile() = default;

std::uint64_t SoundFile::add(const Frame& block, std::uint64_t most) {
    const std::uint64_t samples = std::min<std::uint64_t>(block.bytes().size() / impl->sampleBytes, most);
    const int code = impl->writer.write(block.bytes().data(), static_cast<int>(samples * impl->sampleBytes));
    impl->isCut |= code != 0;
    impl->check("write", code);
    return samples;
}

void SoundFile::commit() {
    if (impl->file.isCommitted())
        return;
    if (impl->writer.close() != 0 || impl->isCut)
        impl->repair();
    impl->file.commit();
}

void SoundFile::discard() noexcept {
    impl->writer.close();
    impl->file.discard();
}

const std::string& SoundFile::path() const noexcept { return impl->file.path(); }

} // namespace Zentara::Host
