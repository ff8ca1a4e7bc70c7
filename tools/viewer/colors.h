#pragma once

#include <imgui.h>

/// What the window's texts are written in, over pictures and beside them.
namespace Zentara::Viewer {

constexpr ImU32 bright = IM_COL32(230, 230, 230, 255);
constexpr ImU32 pale = IM_COL32(160, 160, 160, 255);
constexpr ImU32 alarming = IM_COL32(255, 150, 90, 255);

} // namespace Zentara::Viewer
