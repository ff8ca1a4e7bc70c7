#pragma once

#include "tools/viewer/canvas.h"
#include "tools/viewer/scene.h"

namespace Zentara::Viewer {

/// Lays out the panel at the side: cameras, what is shown and how, temperatures, parameters as sliders; and what happens
/// when somebody uses it.
void layOutPanel(Scene& scene, const Area& room);

/// The line at the bottom: recording, pause, what happened last.
void layOutStatus(Scene& scene, const Area& room);

/// The keys, over all else.
void layOutHelp(Scene& scene);

} // namespace Zentara::Viewer
