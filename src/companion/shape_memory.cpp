#include "companion/shape_memory.h"

#include <deque>

namespace sg::companion {
namespace {

constexpr size_t kMostShapes = 64;

std::deque<ShapePtr>& memory() {
    static std::deque<ShapePtr> shapes;
    return shapes;
}

}  // namespace

void keepShape(const ShapePtr& shape) {
    std::deque<ShapePtr>& shapes = memory();
    if (!shapes.empty() && shapes.back() == shape) return;
    shapes.push_back(shape);
    if (shapes.size() > kMostShapes) shapes.pop_front();
}

void forgetShapes() {
    memory().clear();
}

}  // namespace sg::companion
