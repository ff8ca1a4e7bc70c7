#include <zentara/core/guids.h>

#include <cstdio>

#include <gtest/gtest.h>

#include <zentara/utils/crc.h>

using namespace Zentara::Core;

namespace {

std::string registryForm(const GUID& guid) {
    char text[40];
    const auto* last = guid.Data4;
    std::snprintf(text, sizeof text, "%08lX-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X",
                  static_cast<unsigned long>(guid.Data1), guid.Data2, guid.Data3, last[0], last[1], last[2],
                  last[3], last[4], last[5], last[6], last[7]);
    return text;
}

TEST(Guids, TheTableIsTheOneGivenOut) {
    std::size_t count = 0;
    const WellKnownGuid* table = wellKnownGuids(count);
    std::string text;
    for (std::size_t row = 0; row < count; ++row)
        text += table[row].name + (" " + registryForm(table[row].guid)) + " " +
                std::to_string(table[row].type) + "\n";
    // Over the published list, a line "NAME GUID KIND" each.
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    EXPECT_EQ(0x6798F79Cu,
              Zentara::Utils::Crc32::compute(bytes, static_cast<unsigned>(text.size()), 0xFFFFFFFFu))
        << text;
}

TEST(Guids, AreNamedOrWrittenInHexadecimal) {
    EXPECT_EQ("NULL_IMPL", GUID_toString(Guids::NULL_IMPL));
    EXPECT_EQ("MOCK_ENUMERATOR_IMPL", GUID_toString(Guids::MOCK_ENUMERATOR_IMPL));
    EXPECT_EQ("{0,0,0,{0,0,0,0,0,0,0,0}}", GUID_toString(GUID{}));
    // Bytes are numbers here, also those that are letters.
    GUID near = Guids::ZT325;
    near.Data4[7] = 0x41;
    EXPECT_EQ("{7fd15529,ca81,4ee6,{82,eb,e5,3c,2a,fa,c8,41}}", GUID_toString(near));
}

} // namespace
