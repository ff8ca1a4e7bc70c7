#include "tools/zentara/streams/audio_recorder.h"

#include <algorithm>

#include <zentara/utils/format.h>

#include "tools/zentara/exit_code.h"

namespace Zentara::Tool {

AudioRecorder::AudioRecorder(const StreamDescription& stream, std::uint64_t count, const std::string& path)
    : rate(stream.rate()), channels(stream.mode.fields[0]),
      blockAlignment(static_cast<std::size_t>(std::max(1, channels * ((stream.mode.fields[1] + 7) / 8)))),
      wanted(count) {
    if (path.empty())
        return;
    file = std::make_unique<PendingFile>(path);
    writer.setNumChannels(channels);
    writer.setSamplingRate(rate);
    writer.setBitsPerChannel(stream.mode.fields[1]);
    check("create", writer.open(file->partPath().c_str()));
}

bool AudioRecorder::take(const std::uint8_t* data, std::size_t size, std::int64_t) {
    std::uint64_t count = size / blockAlignment;
    if (wanted != 0)
        count = std::min(count, wanted - taken);
    if (file)
        check("write", writer.write(data, static_cast<int>(count * blockAlignment)));
    taken += count;
    return !full();
}

void AudioRecorder::commit() {
    if (!file)
        return;
    check("complete", writer.close());
    file->commit();
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
        out << "wav      " << file->path() << '\n';
}

void AudioRecorder::fill(Json& stream) const {
    stream["audio"] = {{"samples", taken}, {"sampleRate", rate}, {"channels", channels}};
    if (file)
        stream["files"]["wav"] = file->path();
}

void AudioRecorder::check(const char* what, int code) const {
    if (code != 0)
        throw ToolFailure(ExitCode_FAILED, Utils::Format("cannot % '%': %") % what % file->path() %
                                               WaveWriter::errorString(code));
}

} // namespace Zentara::Tool
