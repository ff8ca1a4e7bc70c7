#include <zentara/host/frame_file.h>

#include <utility>

namespace Zentara::Host {

FrameFile::FrameFile() = default;
FrameFile::~FrameFile() = default;

LastFrameFile::LastFrameFile(const std::string& path, Make maker) : make(std::move(maker)), file(path) {}
LastFrameFile::~LastFrameFile() = default;

void LastFrameFile::take(const Frame&, const Frame& seen) { last = seen; }
void LastFrameFile::commit() {
    if (!last)
        return;
    file.write(make(*last));
    file.commit();
}
void LastFrameFile::discard() noexcept { file.discard(); }
const std::string& LastFrameFile::path() const noexcept { return file.path(); }
bool LastFrameFile::isThere() const noexcept { return last.has_value(); }

RawFile::RawFile(const std::string& path) : file(path) {}
RawFile::~RawFile() = default;

void RawFile::take(const Frame& came, const Frame&) {
    file.append(came.bytes().data(), came.bytes().size());
    whole += came.bytes().size();
}
void RawFile::commit() {
    file.cut(whole); // no half frame
    file.commit();
}
void RawFile::discard() noexcept { file.discard(); }
const std::string& RawFile::path() const noexcept { return file.path(); }

WavFile::WavFile(const std::string& path, const Mode& mode, std::uint64_t most)
    : file(path, mode), left(most == 0 ? UINT64_MAX : most) {}
WavFile::~WavFile() = default;

void WavFile::take(const Frame& came, const Frame&) { left -= file.add(came, left); }
void WavFile::commit() { file.commit(); }
void WavFile::discard() noexcept { file.discard(); }
const std::string& WavFile::path() const noexcept { return file.path(); }

} // namespace Zentara::Host
