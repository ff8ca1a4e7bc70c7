// Changes a recording, and mostly makes its checksums, lengths and counts right again, so that what is behind them is
// reached.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "host/recordings/recording_format.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

using namespace Zentara::Host::RecordingFormat;

template<typename Number>
Number load(const std::uint8_t* at) {
    Number value = 0;
    for (std::size_t i = 0; i < sizeof value; ++i)
        value = static_cast<Number>(value | static_cast<Number>(Number{at[i]} << 8 * i));
    return value;
}

template<typename Number>
void store(std::uint8_t* at, Number value) {
    for (std::size_t i = 0; i < sizeof value; ++i)
        at[i] = static_cast<std::uint8_t>(value >> 8 * i);
}

class Repair {
public:
    Repair(std::uint8_t* bytes, std::size_t count, bool cutsLengths)
        : data(bytes), size(count), cuts(cutsLengths) {}

    void all() {
        if (size < fileHeaderBytes)
            return;
        store(data + fileHeaderBytes - checksumBytes, checksum(data, fileHeaderBytes - checksumBytes));
        counts.resize(load<std::uint16_t>(data + magic.size() + 2));
        std::size_t position = fileHeaderBytes;
        while (size - position >= chunkHeaderBytes + checksumBytes)
            position += chunk(data + position, size - position);
    }

private:
    /// \return its bytes
    std::size_t chunk(std::uint8_t* head, std::size_t left) {
        const std::size_t room = left - chunkHeaderBytes - checksumBytes;
        if (cuts && load<std::uint32_t>(head + 16) > room)
            store(head + 16, static_cast<std::uint32_t>(room));
        store(head + chunkHeaderBytes - checksumBytes, checksum(head, chunkHeaderBytes - checksumBytes));
        const std::size_t length = load<std::uint32_t>(head + 16);
        if (length > room)
            return left;
        std::uint8_t* payload = head + chunkHeaderBytes;
        count(load<std::uint32_t>(head), load<std::uint16_t>(head + 4), payload, length);
        store(payload + length, checksum(payload, length));
        return chunkHeaderBytes + length + checksumBytes;
    }

    void count(std::uint32_t tag, std::uint16_t stream, std::uint8_t* payload, std::size_t length) {
        if (tag == Tag_FRAME && stream < counts.size())
            ++counts[stream];
        if (tag == Tag_END && length == counts.size() * sizeof(std::uint64_t)) {
            for (std::size_t index = 0; index < counts.size(); ++index)
                store(payload + index * sizeof(std::uint64_t), counts[index]);
        }
    }

    std::uint8_t* const data;
    const std::size_t size;
    const bool cuts;
    std::vector<std::uint64_t> counts;
};

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most,
                                               unsigned seed) {
    size = LLVMFuzzerMutate(data, size, most);
    if (seed % 4 != 0)
        Repair(data, size, seed % 8 > 3).all();
    return size;
}
