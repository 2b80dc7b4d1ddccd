#include <algorithm>
#include <cmath>

#include "host/model/curves/bulge_path.h"

namespace sg::model {

namespace {

// Left of a direction in the plane.
AcGeVector3d leftOf(const AcGeVector3d& direction) {
    const double length = direction.length();
    return length > 0 ? AcGeVector3d(-direction.y, direction.x, 0) / length : AcGeVector3d();
}

// The sides of a joint run on until they meet, unless the corner is so sharp that they would meet
// far away.
AcGeVector3d mitred(const AcGeVector3d& before, const AcGeVector3d& after) {
    const double sum = 1 + before.dotProduct(after);
    return sum > 0.1 ? (before + after) / sum : AcGeVector3d();
}

int chordCount(const Piece& piece, double width, double deviation) {
    if (piece.kind == Piece::Kind::Line) return 1;
    const double outer = piece.radius() + width / 2;
    const double share = std::clamp(1 - deviation / outer, -1.0, 1.0);
    const double step = std::max(2 * std::acos(share), 0.01);
    return std::clamp(static_cast<int>(std::ceil(piece.last / step)), 2, 512);
}

class Outliner {
  public:
    Outliner(const BulgePath& path, double deviation) : path_(path), deviation_(deviation) {
        toWorld_ = AcGeMatrix3d::planeToWorld(path.normal) *
                   AcGeMatrix3d::translation({0, 0, path.elevation});
    }

    std::vector<AcGePoint3d> outline(size_t index) const {
        const BulgeVertex& vertex = path_.vertices[index];
        const Piece piece = path_.segmentInPlane(index);
        const double widest = std::max(vertex.startWidth, vertex.endWidth);
        const int chords = chordCount(piece, widest, deviation_);
        std::vector<AcGePoint3d> left;
        std::vector<AcGePoint3d> right;
        for (int i = 0; i <= chords; ++i) {
            const double share = static_cast<double>(i) / chords;
            const double t = piece.first + (piece.last - piece.first) * share;
            const double half =
                (vertex.startWidth + (vertex.endWidth - vertex.startWidth) * share) / 2;
            const AcGeVector3d side = i == 0        ? sideAtStart(index)
                                      : i == chords ? sideAtEnd(index)
                                                    : leftOf(piece.derivative(t));
            left.push_back(toWorld_ * (piece.at(t) + side * half));
            right.push_back(toWorld_ * (piece.at(t) - side * half));
        }
        left.insert(left.end(), right.rbegin(), right.rend());
        return left;
    }

  private:
    AcGeVector3d startLeft(size_t index) const {
        const Piece piece = path_.segmentInPlane(index);
        return leftOf(piece.derivative(piece.first));
    }

    AcGeVector3d endLeft(size_t index) const {
        const Piece piece = path_.segmentInPlane(index);
        return leftOf(piece.derivative(piece.last));
    }

    AcGeVector3d sideAtStart(size_t index) const {
        const AcGeVector3d own = startLeft(index);
        if (index == 0 && !path_.closed) return own;
        const size_t count = path_.segments();
        return joint(endLeft((index + count - 1) % count), own, own);
    }

    AcGeVector3d sideAtEnd(size_t index) const {
        const AcGeVector3d own = endLeft(index);
        const size_t count = path_.segments();
        if (index + 1 == count && !path_.closed) return own;
        return joint(own, startLeft((index + 1) % count), own);
    }

    static AcGeVector3d joint(const AcGeVector3d& before, const AcGeVector3d& after,
                              const AcGeVector3d& own) {
        const AcGeVector3d shared = mitred(before, after);
        return shared.lengthSqrd() > 0 ? shared : own;
    }

    const BulgePath& path_;
    double deviation_;
    AcGeMatrix3d toWorld_;
};

// A segment's sides; of an arc whose width changes, by points close together.
void addSides(const BulgePath& path, size_t index, AcDbExtents& extents) {
    const BulgeVertex& vertex = path.vertices[index];
    const Piece piece = path.segment(index);
    const double first = vertex.startWidth / 2;
    const double last = vertex.endWidth / 2;
    if (first == last && piece.kind == Piece::Kind::Conic) {
        for (const double factor : {1 + first / piece.radius(), 1 - first / piece.radius()}) {
            Piece side = piece;
            side.u = piece.u * factor;
            side.v = piece.v * factor;
            side.addExtents(extents);
        }
        return;
    }
    const int steps = piece.kind == Piece::Kind::Line ? 1 : 256;
    for (int i = 0; i <= steps; ++i) {
        const double share = static_cast<double>(i) / steps;
        const double t = piece.first + (piece.last - piece.first) * share;
        AcGeVector3d side;
        if (!setUnit(side, path.normal.crossProduct(piece.derivative(t)))) continue;
        const double half = first + (last - first) * share;
        extents.addPoint(piece.at(t) + side * half);
        extents.addPoint(piece.at(t) - side * half);
    }
}

}  // namespace

bool BulgePath::hasWidth() const {
    return std::any_of(vertices.begin(), vertices.end(), [](const BulgeVertex& vertex) {
        return vertex.startWidth > 0 || vertex.endWidth > 0;
    });
}

void BulgePath::addExtents(AcDbExtents& extents) const {
    AcDbExtents box;
    for (size_t i = 0; i < segments(); ++i) {
        segment(i).addExtents(box);
        if (vertices[i].startWidth > 0 || vertices[i].endWidth > 0) addSides(*this, i, box);
    }
    if (segments() == 0 && !vertices.empty()) box.addPoint(worldPoint(vertices.front().point));
    if (box.isEmpty()) return;
    extents.addExt(box);
    const AcGeVector3d rise = normal * thickness;
    extents.addExt({box.minPoint() + rise, box.maxPoint() + rise});
}

std::vector<std::vector<AcGePoint3d>> BulgePath::outlines(double deviation) const {
    std::vector<std::vector<AcGePoint3d>> result;
    const Outliner outliner(*this, deviation);
    for (size_t i = 0; i < segments(); ++i) {
        if (vertices[i].startWidth > 0 || vertices[i].endWidth > 0) {
            result.push_back(outliner.outline(i));
        }
    }
    return result;
}

void BulgePath::drawWide(AcGiWorldDraw* draw) const {
    if (thickness != 0) draw->subEntityTraits().setThickness(thickness);
    double deviation = draw->deviation(worldPoint(vertices.front().point));
    if (!(deviation > 0)) deviation = 1e-3;
    draw->subEntityTraits().setFillType(kAcGiFillAlways);
    for (const std::vector<AcGePoint3d>& outline : outlines(deviation)) {
        draw->geometry().polygon(static_cast<uint32_t>(outline.size()), outline.data());
    }
}

}  // namespace sg::model
