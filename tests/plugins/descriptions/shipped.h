#pragma once

#include <string>

#include <gtest/gtest.h>

#include <zentara/utils/files.h>

#include "plugins/descriptions/camera_description.h"

namespace Zentara::TestSupport {

/// The text of a description that comes with the plug-ins.
inline std::string shipped(const std::string& name) {
    return Utils::readFile(Cameras::descriptionFolder() + name + ".json");
}

/// The text with its first `from` replaced.
inline std::string changed(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

} // namespace Zentara::TestSupport
