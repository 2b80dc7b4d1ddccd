#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "host/model/curves/ellipse.h"
#include "host/model/curves/polyline_3d.h"
#include "host/model/curves/ray.h"
#include "host/model/curves/spline.h"
#include "host/model/curves/xline.h"
#include "host/seam/host_fixture.h"
#include "platform/db/arc.h"
#include "platform/db/circle.h"
#include "platform/db/line.h"
#include "platform/db/polyline.h"
#include "platform/db/polyline_2d.h"

namespace sg::test {

using CurvePtr = std::unique_ptr<AcDbCurve>;
constexpr double kPi = std::numbers::pi;

// A test on curves outside any database.
class CurveTest : public HostTest {
  protected:
    CurveTest() { make(); }
};

// Curves of every class, the same ones in every run.
class RandomCurves {
  public:
    explicit RandomCurves(unsigned int seed) : engine_(seed) {}

    double real(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(engine_);
    }
    int whole(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine_); }
    AcGePoint3d point(double size = 10) {
        return {real(-size, size), real(-size, size), real(-size, size)};
    }
    AcGePoint2d point2d(double size = 10) { return {real(-size, size), real(-size, size)}; }
    // Along the world's Z axis for every other curve.
    AcGeVector3d normal() {
        if (whole(0, 1) == 0) return AcGeVector3d::kZAxis;
        return direction();
    }
    AcGeVector3d direction() {
        for (;;) {
            const AcGeVector3d vector = point(1).asVector();
            if (vector.length() > 0.1 && vector.length() < 1) return vector / vector.length();
        }
    }

    static constexpr int kBoundedKinds = 8;
    static const char* name(int kind) {
        static const char* const kNames[] = {"line",   "arc",        "circle",      "ellipse",
                                             "spline", "lwpolyline", "2d polyline", "3d polyline",
                                             "ray",    "xline"};
        return kNames[kind];
    }

    CurvePtr make(int kind) {
        switch (kind) {
            case 0:
                return std::make_unique<AcDbLine>(point(), point());
            case 1:
                return std::make_unique<AcDbArc>(point(), normal(), real(0.1, 8), real(-7, 7),
                                                 real(-7, 7));
            case 2:
                return std::make_unique<AcDbCircle>(point(), normal(), real(0.1, 8));
            case 3:
                return ellipse();
            case 4:
                return spline();
            case 5:
                return polyline();
            case 6:
                return polyline2d();
            case 7:
                return polyline3d();
            case 8:
                return std::make_unique<AcDbRay>(point(), direction());
            default:
                return std::make_unique<AcDbXline>(point(), direction());
        }
    }
    // In the XY plane, so that many of them meet.
    CurvePtr makeFlat(int kind) {
        const AcGePoint3d center(real(-5, 5), real(-5, 5), 0);
        const AcGeVector3d up = AcGeVector3d::kZAxis;
        switch (kind) {
            case 0:
                return std::make_unique<AcDbLine>(AcGePoint3d(real(-9, 9), real(-9, 9), 0),
                                                  AcGePoint3d(real(-9, 9), real(-9, 9), 0));
            case 1:
                return std::make_unique<AcDbArc>(center, real(1, 8), real(0, 7), real(0, 7));
            case 2:
                return std::make_unique<AcDbCircle>(center, up, real(1, 8));
            case 3: {
                const double angle = real(0, 7);
                const AcGeVector3d major =
                    AcGeVector3d(std::cos(angle), std::sin(angle), 0) * real(2, 8);
                return std::make_unique<AcDbEllipse>(center, up, major, real(0.2, 1), real(0, 6),
                                                     real(0, 6));
            }
            case 4:
                return spline(0);
            case 5:
                return polyline(true);
            case 6:
                return polyline2d(true);
            default: {
                AcGePoint3dArray points;
                for (int i = whole(2, 6); i > 0; --i) {
                    points.append({real(-9, 9), real(-9, 9), 0});
                }
                return std::make_unique<AcDb3dPolyline>(AcDb::k3dSimplePoly, points);
            }
        }
    }

  private:
    CurvePtr ellipse() {
        const AcGeVector3d up = normal();
        const AcGeVector3d major =
            up.perpVector().rotateBy(real(0, 7), up) * std::exp(real(-1.5, 2));
        const double ratio = std::exp(real(-3, 0));
        if (whole(0, 2) == 0) return std::make_unique<AcDbEllipse>(point(), up, major, ratio);
        return std::make_unique<AcDbEllipse>(point(), up, major, ratio, real(-7, 7), real(-7, 7));
    }
    CurvePtr spline(double height = 10) {
        const int count = whole(2, 9);
        AcGePoint3dArray points;
        for (int i = 0; i < count; ++i) {
            points.append({real(-9, 9), real(-9, 9), real(-height, height)});
        }
        if (whole(0, 1) == 0) return std::make_unique<AcDbSpline>(points);
        const int degree = std::min(whole(1, 5), count - 1);
        AcGeDoubleArray knots;
        AcGeDoubleArray weights;
        double at = 0;
        for (int i = 0; i < count + degree + 1; ++i) {
            if (i > degree && i <= count) at += real(0.2, 2);
            knots.append(at);
        }
        const bool rational = whole(0, 1) == 1;
        for (int i = 0; i < count && rational; ++i)
            weights.append(real(0.3, 3));
        return std::make_unique<AcDbSpline>(degree, rational, false, false, points, knots, weights);
    }
    double bulge() { return whole(0, 1) == 0 ? 0 : real(-2, 2); }
    CurvePtr polyline(bool flat = false) {
        auto result = std::make_unique<AcDbPolyline>();
        const int count = whole(2, 8);
        for (int i = 0; i < count; ++i) {
            result->addVertexAt(static_cast<unsigned int>(i), point2d(), bulge());
        }
        result->setClosed(whole(0, 1) == 0);
        if (flat) return result;
        result->setElevation(real(-5, 5));
        result->setNormal(normal());
        return result;
    }
    CurvePtr polyline2d(bool flat = false) {
        auto result = std::make_unique<AcDb2dPolyline>();
        const int count = whole(3, 7);
        for (int i = 0; i < count; ++i) {
            const AcGePoint2d at = point2d();
            result->appendVertex(new AcDb2dVertex({at.x, at.y, 0}, bulge()));
        }
        result->setClosed(whole(0, 1) == 0);
        const int fit = whole(0, 3);
        if (fit == 1) result->curveFit();
        if (fit > 1) result->convertToPolyType(static_cast<AcDb::Poly2dType>(fit));
        if (flat) return result;
        result->setElevation(real(-5, 5));
        result->setNormal(normal());
        return result;
    }
    CurvePtr polyline3d() {
        AcGePoint3dArray points;
        for (int i = whole(2, 7); i > 0; --i)
            points.append(point());
        const auto type = static_cast<AcDb::Poly3dType>(whole(0, 2));
        return std::make_unique<AcDb3dPolyline>(type, points, whole(0, 1) == 0);
    }

    std::mt19937 engine_;
};

// What the operations answer, or a failure of the test.
inline AcGePoint3d pointAt(const AcDbCurve& curve, double parameter) {
    AcGePoint3d point;
    EXPECT_EQ(curve.getPointAtParam(parameter, point), Acad::eOk) << "parameter " << parameter;
    return point;
}
inline double startParam(const AcDbCurve& curve) {
    double parameter = 0;
    EXPECT_EQ(curve.getStartParam(parameter), Acad::eOk);
    return parameter;
}
inline double endParam(const AcDbCurve& curve) {
    double parameter = 0;
    EXPECT_EQ(curve.getEndParam(parameter), Acad::eOk);
    return parameter;
}
inline double lengthOf(const AcDbCurve& curve) {
    double length = 0;
    EXPECT_EQ(curve.getDistAtParam(endParam(curve), length), Acad::eOk);
    return length;
}
inline AcGePoint3dArray meet(const AcDbEntity& a, const AcDbEntity& b,
                             AcDb::Intersect mode = AcDb::kOnBothOperands) {
    AcGePoint3dArray points;
    EXPECT_EQ(a.intersectWith(&b, mode, points), Acad::eOk);
    return points;
}
// Whole numbers as they are, others with four digits, such as "1,2,0 3.5,0,0".
inline std::string text(const AcGePoint3dArray& points) {
    std::string result;
    for (const AcGePoint3d& point : points) {
        if (!result.empty()) result += ' ';
        for (unsigned int i = 0; i < 3; ++i) {
            char digits[40];
            const double value = std::round(point[i] * 1e4) / 1e4;
            std::snprintf(digits, sizeof digits, "%g", value == 0 ? 0 : value);
            result += (i > 0 ? "," : "") + std::string(digits);
        }
    }
    return result;
}

}  // namespace sg::test
