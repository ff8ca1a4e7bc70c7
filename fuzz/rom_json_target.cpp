// The import of a storage's content from JSON. Whatever the text is, it is refused with a message or becomes
// a content that is printed and read again as the same, and that an image takes whole or not at all.
#include <cstdint>
#include <cstdlib>
#include <string>

#include <zentara/host/failure.h>
#include <zentara/host/flash_content.h>

#include "host/flash/rehearsal.h"

namespace {

using namespace Zentara::Host;

void expect(bool holds) {
    if (!holds)
        std::abort();
}

void importInto(const FlashContent& content, bool headerAtStart) {
    const FlashImage empty(FlashArea{64, 4096, 64, headerAtStart});
    const Rehearsal rehearsal = rehearse(empty, content, true);
    if (!rehearsal.isGood())
        return;
    expect(contentOf(rehearsal.image) == content);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FlashContent content;
    try {
        content = contentFromJson(std::string(reinterpret_cast<const char*>(data), size), "the input");
    } catch (const Failure& failure) {
        expect(failure.what()[0] != '\0');
        return 0;
    }
    expect(contentFromJson(toJson(content), "its text") == content);
    importInto(content, size % 2 == 0);
    return 0;
}
