#pragma once

#include <QImage>

#include <vector>

namespace sg::grid {

// The pictures of docs/grid.md, as the grid draws them.
struct Scene {
    const char* name;  // of the picture's file, without its ending
    QImage (*draw)();
};

const std::vector<Scene>& scenes();

}  // namespace sg::grid
