#pragma once

#include <vector>

#include "tools/viewer/canvas.h"
#include "tools/viewer/scene.h"

namespace Zentara::Viewer {

/// What is shown of one camera in one place: a picture and, below it, what belongs to it.
struct Tile {
    enum class Shows { Depth, Color, Cloud };

    Shows shows = Shows::Depth;
    SceneCamera* camera = nullptr; ///< shown, as long as the tile lives
    Area cell;                     ///< all of it
    Area picture;                  ///< empty where there is no room, or no picture yet

    [[nodiscard]] const std::optional<Host::Frame>& frame() const noexcept {
        return shows == Shows::Color ? camera->state.color : camera->state.depth;
    }
};

/// The tiles of all cameras that are shown: a row for each. \param lineHeight of letters, pixels
[[nodiscard]] std::vector<Tile> layOutTiles(Scene& scene, const Area& room, float lineHeight);

/// Paints the picture. What cannot be painted is told below it.
void paintTile(const Canvas& canvas, const Tile& tile, const Scene& scene);

/// Lays out what is written below and on the picture: whose it is, how fast it comes, scale, the value under the pointer.
void captionTile(const Tile& tile, Scene& scene, float lineHeight);

} // namespace Zentara::Viewer
