#include "tools/zentara/audio_recorder.h"

#include <algorithm>

#include <zentara/utils/format.h>

#include "tools/zentara/exit_code.h"

namespace Zentara::Tool {

AudioRecorder::AudioRecorder(const std::string& path, const AudioConfiguration& mode, std::uint64_t count)
    : file(path), rate(mode.getSampleRate()), channelCount(mode.getChannels()),
      blockAlignment(
          static_cast<std::size_t>(std::max(1, mode.getChannels() * ((mode.getBitsPerSample() + 7) / 8)))),
      wanted(count) {
    writer.setNumChannels(mode.getChannels());
    writer.setSamplingRate(mode.getSampleRate());
    writer.setBitsPerChannel(mode.getBitsPerSample());
    check("create", writer.open(file.partPath().c_str()));
}

bool AudioRecorder::take(const std::uint8_t* data, std::size_t size, std::int64_t) {
    const std::uint64_t count = std::min<std::uint64_t>(size / blockAlignment, wanted - taken);
    check("write", writer.write(data, static_cast<int>(count * blockAlignment)));
    taken += count;
    return taken < wanted;
}

void AudioRecorder::commit() {
    check("complete", writer.close());
    file.commit();
}

void AudioRecorder::discard() {
    writer.close();
    file.discard();
}

void AudioRecorder::check(const char* what, int code) const {
    if (code != 0)
        throw ToolFailure(ExitCode_FAILED, Utils::Format("cannot % '%': %") % what % file.partPath() %
                                               WaveWriter::errorString(code));
}

} // namespace Zentara::Tool
