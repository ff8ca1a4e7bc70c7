#include "utils/platform/key_store.h"

#include <string>

#include <gmock/gmock.h>

#include "support/temporary_directory.h"
#include "utils/platform/files.h"
#include "utils/platform/key_store_editor.h"

namespace Zentara::Utils::Platform {
namespace {

class KeyStoreTest : public testing::Test {
protected:
    static constexpr const char* key = "Software\\ZentaraTest\\KeyStore";

    KeyStoreTest() { forget(); }
    ~KeyStoreTest() override { forget(); }

    void forget() {
        removeKey(store, key, KeyView::Bits32);
        removeKey(store, key, KeyView::Bits64);
    }
    std::string read(KeyView view, const std::string& name) {
        std::string text = "untouched";
        const KeyRead result = readKeyValue(store, key, view, name, text);
        const char* results[] = {"", "missing ", "unreadable "};
        return results[static_cast<int>(result)] + text;
    }

    const TestSupport::TemporaryDirectory directory;
    const std::string store = isSeparator('\\') ? "HKEY_LOCAL_MACHINE" : directory.path("keys.ini");
};

TEST_F(KeyStoreTest, ReadsTextsIgnoringLetterCaseOfNames) {
    ASSERT_TRUE(writeKeyText(store, key, KeyView::Bits64, "Name", "v\xC3\xA4lue = with ; signs"));
    EXPECT_EQ(read(KeyView::Bits64, "nAME"), "v\xC3\xA4lue = with ; signs");
    EXPECT_EQ(read(KeyView::Bits64, "Other"), "missing untouched");
    ASSERT_TRUE(removeKey(store, key, KeyView::Bits64));
    EXPECT_EQ(read(KeyView::Bits64, "Name"), "missing untouched");
    EXPECT_TRUE(removeKey(store, key, KeyView::Bits64));
}

TEST_F(KeyStoreTest, ReadsLongAndEmptyTexts) {
    const std::string longText(5000, 'x');
    ASSERT_TRUE(writeKeyText(store, key, KeyView::Bits64, "Long", longText));
    ASSERT_TRUE(writeKeyText(store, key, KeyView::Bits64, "Empty", ""));
    EXPECT_EQ(read(KeyView::Bits64, "Long"), longText);
    EXPECT_EQ(read(KeyView::Bits64, "Empty"), "");
}

} // namespace
} // namespace Zentara::Utils::Platform
