#include <zentara/host/flash_image.h>

#include <algorithm>
#include <utility>

#include <zentara/host/failure.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/rom/chunked_memory_management_header.h>
#include <zentara/utils/format.h>

namespace Zentara::Host {
namespace {

constexpr std::uint8_t ERASED = 0xFF;
constexpr std::size_t JOINED = 16; ///< equal bytes between two changes that are cheaper sent than skipped

void appendDifferences(std::vector<FlashWrite>& writes, const FlashImage& before, const FlashImage& after,
                       std::uint32_t begin, std::uint64_t end) {
    const std::uint32_t start = after.area().start;
    const auto equal = [&](std::uint64_t at) {
        return before.bytes()[at - start] == after.bytes()[at - start];
    };
    for (std::uint64_t at = begin; at < end; ++at) {
        if (equal(at))
            continue;
        std::uint64_t last = at;
        for (std::uint64_t next = at + 1; next < end && next - last <= JOINED; ++next)
            last = equal(next) ? last : next;
        const auto from = after.bytes().begin() + static_cast<std::ptrdiff_t>(at - start);
        writes.push_back(
            {static_cast<std::uint32_t>(at), Bytes(from, from + static_cast<std::ptrdiff_t>(last + 1 - at))});
        at = last;
    }
}

} // namespace

std::uint32_t FlashArea::headerAddress() const {
    return headerAtStart ? start : start + size - ROM::ChunkedMemoryManagementHeader::SIZE;
}

FlashImage::FlashImage(const FlashArea& where) : FlashImage(where, Bytes(where.size, ERASED)) {}

FlashImage::FlashImage(const FlashArea& where, Bytes initial) : place(where), content(std::move(initial)) {
    if (content.size() != place.size)
        throw Failure(Failure::Usage, Utils::Format("% bytes are no image of an area of % bytes") %
                                          static_cast<unsigned long long>(content.size()) % place.size);
    if (place.end() > std::uint64_t{1} << 32)
        throw Failure(Failure::Usage,
                      Utils::Format("% bytes at 0x%{:x8} reach past the addresses of 32 bits") % place.size %
                          place.start);
}

FlashImage::FlashImage(const FlashImage&) = default;
FlashImage::FlashImage(FlashImage&&) noexcept = default;
FlashImage& FlashImage::operator=(const FlashImage&) = default;
FlashImage& FlashImage::operator=(FlashImage&&) noexcept = default;
FlashImage::~FlashImage() = default;

void FlashImage::check(const char* verb, std::uint32_t address, std::size_t length) const {
    if (!place.holds(address, length))
        throw Plugin::IOPluginException(
            Utils::Format("cannot % % bytes at 0x%{:x8}: outside the area of % bytes at 0x%{:x8}") % verb %
            static_cast<unsigned long long>(length) % address % place.size % place.start);
}

Bytes FlashImage::read(std::uint32_t address, std::uint32_t length) {
    check("read", address, length);
    const auto begin = content.begin() + static_cast<std::ptrdiff_t>(address - place.start);
    return {begin, begin + static_cast<std::ptrdiff_t>(length)};
}

void FlashImage::write(std::uint32_t address, const Bytes& written) {
    check("write", address, written.size());
    std::copy(written.begin(), written.end(),
              content.begin() + static_cast<std::ptrdiff_t>(address - place.start));
    history.push_back({address, written});
}

std::vector<FlashWrite> differences(const FlashImage& before, const FlashImage& after) {
    const FlashArea& area = after.area();
    if (before.area().start != area.start || before.area().size != area.size)
        throw Failure(Failure::Usage, "images of two areas have no differences");
    std::vector<FlashWrite> writes;
    if (area.size < ROM::ChunkedMemoryManagementHeader::SIZE) {
        appendDifferences(writes, before, after, area.start, area.end());
        return writes;
    }
    // The header in a piece of its own, and last: it must not lead to what is not there yet.
    const std::uint32_t header = area.headerAddress();
    const std::uint32_t headerEnd = header + ROM::ChunkedMemoryManagementHeader::SIZE;
    if (area.headerAtStart)
        appendDifferences(writes, before, after, headerEnd, area.end());
    else
        appendDifferences(writes, before, after, area.start, header);
    appendDifferences(writes, before, after, header, headerEnd);
    return writes;
}

} // namespace Zentara::Host
