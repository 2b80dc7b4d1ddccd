#pragma once

#include <memory>

namespace sg::grid {

class CGridCellBase;

// A class of cells: how a grid makes new ones.
struct GridCellClass {
    std::unique_ptr<CGridCellBase> (*create)();
};

// The class T, which derives from CGridCellBase and can be made from nothing.
template <class T>
const GridCellClass& gridCellClass() {
    static constexpr GridCellClass made{
        []() -> std::unique_ptr<CGridCellBase> { return std::make_unique<T>(); }};
    return made;
}

}  // namespace sg::grid
