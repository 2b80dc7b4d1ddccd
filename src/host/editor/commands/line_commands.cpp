#include <cmath>
#include <memory>
#include <vector>

#include "host/editor/commands/planes.h"
#include "host/editor/commands/programs.h"
#include "host/editor/system_variables.h"
#include "host/model/curves/point.h"
#include "platform/db/line.h"
#include "platform/db/polyline.h"

namespace sg::commands {
namespace {

using Reply = Command::Reply;
using model::BulgeVertex;

AcDbObjectId addLine(Command& c, const AcGePoint3d& from, const AcGePoint3d& to) {
    auto made = std::make_unique<AcDbLine>(c.world(from), c.world(to));
    made->setNormal(drawingNormal(c));
    return c.add(std::move(made));
}

}  // namespace

void line(Command& c) {
    std::vector<AcGePoint3d> points(1);
    std::vector<AcDbObjectId> lines;
    if (c.point({L"Specify first point: "}, points[0]) == Reply::enter) {
        points[0] = c.lastPoint();
    }
    for (;;) {
        AcGePoint3d next;
        const bool canClose = lines.size() >= 2;
        const wchar_t* const prompt =
            canClose ? L"Specify next point or [Close/Undo]: " : L"Specify next point or [Undo]: ";
        const Reply reply = c.point({prompt, points.back()}, next);
        if (reply == Reply::enter) return;
        if (reply == Reply::value) {
            lines.push_back(addLine(c, points.back(), next));
            points.push_back(next);
        } else if (c.is(L"Close")) {
            addLine(c, points.back(), points.front());
            return;
        } else if (lines.empty()) {
            c.print(L"All segments already undone.");
        } else {
            c.erase({lines.back()});
            lines.pop_back();
            points.pop_back();
            c.setLastPoint(points.back());
        }
    }
}

void point(Command& c) {
    auto made = std::make_unique<AcDbPoint>(c.world(c.needPoint({L"Specify a point: "})));
    made->setNormal(drawingNormal(c));
    c.add(std::move(made));
}

// ---- PLINE --------------------------------------------------------------------------------------

namespace {

// A polyline while it is drawn, in user coordinates.
class PolylineDrawing {
  public:
    explicit PolylineDrawing(Command& c) : c_(c), startWidth_(c.number(L"PLINEWID")) {
        endWidth_ = startWidth_;
    }

    void run();
    void finish();

  private:
    enum class Step { next, end };

    Step drawLine();
    Step drawArc();
    Step takeArcOption();
    void askWidths(double factor, const wchar_t* what);
    void askLength();
    void undo();
    void close(double bulge);

    AcGePoint3d at(const AcGePoint2d& point) const { return {point.x, point.y, elevation_}; }
    AcGePoint3d last() const { return at(vertices_.back().point); }
    // Where the last segment ends up going, as an angle.
    double direction() const;
    void add(const AcGePoint3d& point, double bulge);
    // The bulge of an arc from the last vertex that begins in a direction.
    double bulgeTo(const AcGePoint3d& end, double direction) const;

    Command& c_;
    std::vector<BulgeVertex> vertices_;
    double elevation_ = 0;
    double startWidth_ = 0, endWidth_ = 0;
    bool arcs_ = false;
    bool closed_ = false;
};

double angleBetween(const AcGePoint3d& from, const AcGePoint3d& to) {
    return std::atan2(to.y - from.y, to.x - from.x);
}

double PolylineDrawing::direction() const {
    if (vertices_.size() < 2) return 0;
    const BulgeVertex& from = vertices_[vertices_.size() - 2];
    const double chord = angleBetween(at(from.point), last());
    return chord + 2 * std::atan(from.bulge);
}

double PolylineDrawing::bulgeTo(const AcGePoint3d& end, double direction) const {
    const double half = std::remainder(angleBetween(last(), end) - direction, 2 * M_PI);
    return std::tan(half / 2);
}

void PolylineDrawing::add(const AcGePoint3d& point, double bulge) {
    BulgeVertex& from = vertices_.back();
    from.bulge = bulge;
    from.startWidth = startWidth_;
    from.endWidth = endWidth_;
    vertices_.push_back({{point.x, point.y}, 0, endWidth_, endWidth_});
    startWidth_ = endWidth_;
}

void PolylineDrawing::undo() {
    if (vertices_.size() < 2) {
        c_.print(L"All segments already undone.");
        return;
    }
    vertices_.pop_back();
    vertices_.back().bulge = 0;
    c_.setLastPoint(last());
}

void PolylineDrawing::close(double bulge) {
    BulgeVertex& from = vertices_.back();
    from.bulge = bulge;
    from.startWidth = startWidth_;
    from.endWidth = endWidth_;
    closed_ = true;
}

void PolylineDrawing::askWidths(double factor, const wchar_t* what) {
    const auto ask = [&](const wchar_t* which, double before) {
        double width = before;
        c_.distance({L"Specify " + std::wstring(which) + L" " + what + L" <" +
                         c_.lengthText(before / factor) + L">: ",
                     last(), Prompter::Allowed::noNegative},
                    width);
        return width == before ? before : width * factor;
    };
    startWidth_ = ask(L"starting", startWidth_);
    endWidth_ = ask(L"ending", startWidth_);
    c_.variables().set(L"PLINEWID", endWidth_);
}

void PolylineDrawing::askLength() {
    double length = 0;
    if (c_.distance({L"Specify length of line: ", last()}, length) != Reply::value) return;
    const double angle = direction();
    add(last() + AcGeVector3d(std::cos(angle), std::sin(angle), 0) * length, 0);
}

PolylineDrawing::Step PolylineDrawing::drawLine() {
    const bool canClose = vertices_.size() > 1;
    AcGePoint3d next;
    const wchar_t* const prompt =
        canClose ? L"Specify next point or [Arc/Close/Halfwidth/Length/Undo/Width]: "
                 : L"Specify next point or [Arc/Halfwidth/Length/Undo/Width]: ";
    const Reply reply = c_.point({prompt, last()}, next);
    if (reply == Reply::enter) return Step::end;
    if (reply == Reply::value) {
        add(next, 0);
    } else if (c_.is(L"Arc")) {
        arcs_ = true;
    } else if (c_.is(L"Close")) {
        close(0);
        return Step::end;
    } else if (c_.is(L"Halfwidth")) {
        askWidths(2, L"half-width");
    } else if (c_.is(L"Width")) {
        askWidths(1, L"width");
    } else if (c_.is(L"Length")) {
        askLength();
    } else {
        undo();
    }
    return Step::next;
}

PolylineDrawing::Step PolylineDrawing::drawArc() {
    AcGePoint3d end;
    const Reply reply =
        c_.point({L"Specify endpoint of arc or "
                  L"[Angle/CEnter/CLose/Direction/Halfwidth/Line/Radius/Second pt/Undo/Width]: ",
                  last()},
                 end);
    if (reply == Reply::enter) return Step::end;
    if (reply == Reply::value) {
        add(end, bulgeTo(end, direction()));
        return Step::next;
    }
    return takeArcOption();
}

PolylineDrawing::Step PolylineDrawing::takeArcOption() {
    const auto endPoint = [&](const wchar_t* prompt) { return c_.needPoint({prompt, last()}); };
    if (c_.is(L"Line")) {
        arcs_ = false;
    } else if (c_.is(L"CLose")) {
        close(bulgeTo(at(vertices_.front().point), direction()));
        return Step::end;
    } else if (c_.is(L"Angle")) {
        double angle = 0;
        if (c_.angle({L"Specify included angle: ", last()}, angle) != Reply::value) {
            return Step::next;
        }
        const AcGePoint3d end = endPoint(L"Specify endpoint of arc: ");
        add(end, std::tan(angle / 4));
    } else if (c_.is(L"CEnter")) {
        const AcGePoint3d center = endPoint(L"Specify center point of arc: ");
        const AcGePoint3d toward = c_.needPoint({L"Specify endpoint of arc: ", center});
        const double radius = last().distanceTo(center);
        const double from = angleBetween(center, last());
        double turn = std::fmod(angleBetween(center, toward) - from, 2 * M_PI);
        if (turn <= 0) turn += 2 * M_PI;
        const double to = from + turn;
        add(center + AcGeVector3d(std::cos(to), std::sin(to), 0) * radius, std::tan(turn / 4));
    } else if (c_.is(L"Direction")) {
        double tangent = 0;
        if (c_.direction({L"Specify the tangent direction for the start point of arc: ", last()},
                         tangent) != Reply::value) {
            return Step::next;
        }
        const AcGePoint3d end = endPoint(L"Specify endpoint of the arc: ");
        add(end, bulgeTo(end, tangent));
    } else if (c_.is(L"Radius")) {
        double radius = 0;
        constexpr int kPositive = Prompter::Allowed::noZero | Prompter::Allowed::noNegative;
        c_.distance({L"Specify radius of arc: ", last(), kPositive | Prompter::Allowed::noNull},
                    radius);
        const AcGePoint3d end = endPoint(L"Specify endpoint of arc: ");
        const double chord = last().distanceTo(end);
        if (chord > 2 * radius) {
            c_.print(L"*Invalid*");
            return Step::next;
        }
        add(end, std::tan(std::asin(chord / 2 / radius) / 2));
    } else if (c_.is(L"Second")) {
        const AcGePoint3d middle = endPoint(L"Specify second point on arc: ");
        const AcGePoint3d end = endPoint(L"Specify end point of arc: ");
        // The angle over the chord at the second point is half of the arc on the other side.
        const double over =
            std::remainder(angleBetween(middle, end) - angleBetween(last(), middle), 2 * M_PI);
        add(end, std::tan(over / 2));
    } else if (c_.is(L"Halfwidth")) {
        askWidths(2, L"half-width");
    } else if (c_.is(L"Width")) {
        askWidths(1, L"width");
    } else {
        undo();
    }
    return Step::next;
}

void PolylineDrawing::run() {
    const AcGePoint3d first = c_.needPoint({L"Specify start point: "});
    elevation_ = first.z;
    vertices_.push_back({{first.x, first.y}, 0, startWidth_, endWidth_});
    c_.print(L"Current line-width is " + c_.lengthText(startWidth_));
    while ((arcs_ ? drawArc() : drawLine()) == Step::next) {
    }
}

void PolylineDrawing::finish() {
    if (vertices_.size() < 2) return;
    const AcGeVector3d normal = drawingNormal(c_);
    const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(normal);
    auto made = std::make_unique<AcDbPolyline>();
    made->setNormal(normal);
    for (const BulgeVertex& vertex : vertices_) {
        const AcGePoint3d on = toPlane * c_.world(at(vertex.point));
        made->setElevation(on.z);
        made->addVertexAt(made->numVerts(), {on.x, on.y}, vertex.bulge, vertex.startWidth,
                          vertex.endWidth);
    }
    made->setClosed(closed_);
    c_.add(std::move(made));
}

}  // namespace

void polyline(Command& c) {
    PolylineDrawing drawing(c);
    bool cancelled = false;
    try {
        drawing.run();
    } catch (const Command::Cancelled&) {
        cancelled = true;  // what has been drawn stays
    }
    drawing.finish();
    if (cancelled) throw Command::Cancelled();
}

}  // namespace sg::commands
