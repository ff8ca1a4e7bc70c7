#include "core/failing_root.h"

#include <gtest/gtest.h>

#include <zentara/utils/environment_variable.h>

#include "utils/platform/key_store_editor.h"

using namespace Zentara::Utils;

namespace {

constexpr const char* key = "Software\\Korvalis\\ZentaraSDK";
std::string root;

} // namespace

/// A value of the wrong kind in the real registry, which counts once the environment names no root.
FailingRoot::FailingRoot() {
    EnvironmentVariable variable("ZENTARASDK_ROOT");
    root = variable.isDefined() ? variable.getValue() : "";
    variable.setValue("");
    EXPECT_TRUE(
        Platform::writeKeyNonText(Platform::systemKeyStore(), key, Platform::KeyView::Bits64, "InstallDir"));
}

FailingRoot::~FailingRoot() {
    Platform::removeKey(Platform::systemKeyStore(), key, Platform::KeyView::Bits64);
    EnvironmentVariable("ZENTARASDK_ROOT").setValue(root.c_str());
}
