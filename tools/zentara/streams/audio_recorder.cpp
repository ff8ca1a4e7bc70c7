#include "tools/zentara/streams/audio_recorder.h"

#include <algorithm>

#include <zentara/utils/format.h>

#include "host/files/file_failure.h"
#include "tools/zentara/exit_code.h"
#include "utils/visible_text.h"

namespace Zentara::Tool {

AudioRecorder::AudioRecorder(const StreamDescription& stream, std::uint64_t count, const std::string& path)
    : rate(stream.rate()), channels(stream.mode.fields[0]),
      blockAlignment(static_cast<std::size_t>(std::max(1, channels * ((stream.mode.fields[1] + 7) / 8)))),
      wanted(count) {
    if (path.empty())
        return;
    file = std::make_unique<OutputFile>(path);
    writer.setNumChannels(channels);
    writer.setSamplingRate(rate);
    writer.setBitsPerChannel(stream.mode.fields[1]);
    check("create", writer.open(file->partPath().c_str()));
}

bool AudioRecorder::take(const std::uint8_t* data, std::size_t size, std::int64_t) {
    std::uint64_t count = size / blockAlignment;
    if (wanted != 0)
        count = std::min(count, wanted - taken);
    if (file) {
        const int code = writer.write(data, static_cast<int>(count * blockAlignment));
        isCut |= code != 0;
        check("write", code);
    }
    taken += count;
    return !full();
}

void AudioRecorder::commit() {
    if (!file)
        return;
    if (const int code = writer.close(); code != 0 || isCut)
        repair();
    file->commit();
}

void AudioRecorder::repair() {
    constexpr std::uint64_t headerBytes = 44;
    constexpr std::uint64_t riffPlace = 4; // each followed by the number of bytes that come after it
    constexpr std::uint64_t dataPlace = 40;
    if (file->size() < headerBytes)
        throw FileFailure(Failure::Failed,
                          Utils::Format("cannot write '%': no whole sample is in it") % file->path());
    taken = std::min(taken, (file->size() - headerBytes) / blockAlignment);
    const std::uint64_t end = headerBytes + taken * blockAlignment;
    file->cut(end);
    for (const std::uint64_t place : {riffPlace, dataPlace}) {
        const std::uint64_t count = end - place - 4;
        const unsigned char bytes[] = {
            static_cast<unsigned char>(count), static_cast<unsigned char>(count >> 8),
            static_cast<unsigned char>(count >> 16), static_cast<unsigned char>(count >> 24)};
        file->patch(place, bytes, sizeof bytes);
    }
}

void AudioRecorder::discard() {
    if (!file)
        return;
    writer.close();
    file->discard();
}

void AudioRecorder::print(std::ostream& out) const {
    out << "sound    " << taken << " samples of " << channels << " channels at " << rate << " Hz\n";
    if (file)
        out << "wav      " << Utils::visibleText(file->path()) << '\n';
}

void AudioRecorder::fill(Json& stream) const {
    stream["audio"] = {{"samples", taken}, {"sampleRate", rate}, {"channels", channels}};
    if (file)
        stream["files"]["wav"] = file->path();
}

void AudioRecorder::check(const char* what, int code) const {
    if (code != 0)
        throw FileFailure(Failure::Failed, Utils::Format("cannot % '%': %") % what % file->path() %
                                               WaveWriter::errorString(code));
}

} // namespace Zentara::Tool
