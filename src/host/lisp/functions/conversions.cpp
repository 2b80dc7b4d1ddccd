#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

#include "host/lisp/functions/list_builder.h"
#include "host/lisp/functions/tables.h"
#include "host/lisp/text/units.h"
#include "platform/ge/point3d.h"
#include "platform/ge/vector3d.h"

// Distances, angles and units as text and back, and the geometry of points.
namespace sg::lisp {
namespace {

// ---- Numbers as text ----------------------------------------------------------------------------

Value systemVariable(Interpreter& in, const wchar_t* name) {
    const auto& variable = in.hooks().systemVariable;
    return variable ? variable(name).value_or(Value::nil()) : Value::nil();
}

int systemInteger(Interpreter& in, const wchar_t* name, int otherwise) {
    const Value value = systemVariable(in, name);
    return value.isInt() ? value.asInt() : otherwise;
}

double systemReal(Interpreter& in, const wchar_t* name, double otherwise) {
    const Value value = systemVariable(in, name);
    return value.isNumber() ? value.asNumber() : otherwise;
}

// A mode or precision; a missing, nil or negative one is the system variable's.
int setting(Interpreter& in, Value given, const wchar_t* name, int otherwise) {
    if (given) {
        const int32_t value = in.integer(given);
        if (value >= 0) return value;
    }
    return systemInteger(in, name, otherwise);
}

UnitSettings distanceSettings(Interpreter& in) {
    UnitSettings settings;
    settings.dimzin = systemInteger(in, L"DIMZIN", 0);
    settings.unitmode = systemInteger(in, L"UNITMODE", 0);
    return settings;
}

UnitSettings angleSettings(Interpreter& in) {
    UnitSettings settings = distanceSettings(in);
    settings.angbase = systemReal(in, L"ANGBASE", 0);
    settings.angdir = systemInteger(in, L"ANGDIR", 0);
    return settings;
}

Value realOrNil(std::optional<double> value) {
    return value ? Value::real(*value) : Value::nil();
}

Value fnRtos(Interpreter& in, Args a) {
    const double value = in.number(a[0]);
    const int mode = setting(in, a.get(1), L"LUNITS", 2);
    const int precision = setting(in, a.get(2), L"LUPREC", 4);
    return in.string(formatDistance(value, mode, precision, distanceSettings(in)));
}

Value fnAngtos(Interpreter& in, Args a) {
    const double angle = in.number(a[0]);
    const int mode = setting(in, a.get(1), L"AUNITS", 0);
    const int precision = setting(in, a.get(2), L"AUPREC", 0);
    return in.string(formatAngle(angle, mode, precision, angleSettings(in)));
}

Value fnDistof(Interpreter& in, Args a) {
    const std::wstring_view text = in.text(a[0]);
    return realOrNil(parseDistance(text, setting(in, a.get(1), L"LUNITS", 2)));
}

Value fnAngtof(Interpreter& in, Args a) {
    const std::wstring_view text = in.text(a[0]);
    return realOrNil(parseAngle(text, setting(in, a.get(1), L"AUNITS", 0), angleSettings(in)));
}

Value fnCvunit(Interpreter& in, Args a) {
    const std::wstring_view from = in.text(a[1]);
    const std::wstring_view to = in.text(a[2]);
    if (!a[0].isCons()) return realOrNil(convertUnit(in.number(a[0]), from, to));
    ListBuilder converted(in);
    bool convertible = true;
    Value rest = a[0];
    for (; rest.isCons(); rest = rest.asCons()->cdr) {
        const double value = in.number(rest.asCons()->car);
        if (!convertible) continue;  // what follows must be numbers all the same
        const auto result = convertUnit(value, from, to);
        convertible = result.has_value();
        if (convertible) converted.add(Value::real(*result));
    }
    if (rest) in.badArgument(L"listp", a[0]);
    return convertible ? converted.list() : Value::nil();
}

// ---- Geometry -----------------------------------------------------------------------------------

Value pointValue(Interpreter& in, double x, double y, double z, bool is3d) {
    if (!is3d) return in.list({Value::real(x), Value::real(y)});
    return in.list({Value::real(x), Value::real(y), Value::real(z)});
}

Value fnPolar(Interpreter& in, Args a) {
    const auto from = in.point(a[0]);
    const double angle = in.number(a[1]);
    const double distance = in.number(a[2]);
    return pointValue(in, from.x + distance * std::cos(angle), from.y + distance * std::sin(angle),
                      from.z, from.is3d);
}

Value fnAngle(Interpreter& in, Args a) {
    const auto from = in.point(a[0]);
    const auto to = in.point(a[1]);
    // Adding zero turns a negative zero into a positive one, which atan2 tells apart.
    double angle = std::atan2(to.y - from.y + 0.0, to.x - from.x + 0.0);
    constexpr double kTurn = 2 * std::numbers::pi;
    if (angle < 0) angle += kTurn;
    // An angle barely below zero rounds to the full turn.
    return Value::real(angle < kTurn ? angle : 0);
}

double lengthOf(double x, double y, double z) {
    // Exact for whole numbers, which hypot need not be; hypot is for squares that would overflow or
    // vanish.
    const double square = x * x + y * y + z * z;
    return square > 1e-280 && square < 1e300 ? std::sqrt(square) : std::hypot(x, y, z);
}

Value fnDistance(Interpreter& in, Args a) {
    const auto from = in.point(a[0]);
    const auto to = in.point(a[1]);
    const double z = from.is3d && to.is3d ? to.z - from.z : 0;
    return Value::real(lengthOf(to.x - from.x, to.y - from.y, z));
}

// ---- Intersection -------------------------------------------------------------------------------

struct Line {
    AcGePoint3d start;
    AcGePoint3d end;
    AcGeVector3d direction() const { return end - start; }
};

double largestCoordinate(const Line& line) {
    double largest = 0;
    for (const AcGePoint3d& p : {line.start, line.end}) {
        largest = std::max({largest, std::abs(p.x), std::abs(p.y), std::abs(p.z)});
    }
    return largest;
}

unsigned largestComponent(const AcGeVector3d& v) {
    const double x = std::abs(v.x), y = std::abs(v.y), z = std::abs(v.z);
    if (z >= x && z >= y) return 2;
    return y >= x ? 1 : 0;
}

// Where the two lines meet, with `onSegments` only between their ends. What is near enough to
// count as meeting, or as parallel, follows from the lengths, and from the rounding of coordinates
// far from the origin. The comparisons are such that what is not a number meets nothing.
std::optional<AcGePoint3d> intersection(const Line& a, const Line& b, bool onSegments) {
    const AcGeVector3d u = a.direction(), v = b.direction(), between = b.start - a.start;
    const AcGeVector3d normal = u.crossProduct(v);
    const double coordinate = std::max(largestCoordinate(a), largestCoordinate(b));
    const double longer = std::max(u.length(), v.length());

    // The shorter segment must leave the direction of the longer one by more than rounding does.
    const double parallel = 1e-12 * u.length() * v.length() + 4e-16 * coordinate * longer;
    if (!(normal.length() > parallel)) return std::nullopt;

    const double tolerance = 1e-10 * std::max(longer, between.length()) + 1e-14 * coordinate;
    if (!(std::abs(between.dotProduct(normal)) <= tolerance * normal.length())) return std::nullopt;

    // The parameters of the meeting point along both lines, seen along the axis from which the
    // lines' plane shows the most of itself.
    const unsigned axis = largestComponent(normal);
    double s = between.crossProduct(v)[axis] / normal[axis];
    const double t = between.crossProduct(u)[axis] / normal[axis];
    if (onSegments) {
        const auto within = [&](double parameter, const AcGeVector3d& direction) {
            const double slack = tolerance / direction.length();
            return parameter >= -slack && parameter <= 1 + slack;
        };
        if (!within(s, u) || !within(t, v)) return std::nullopt;
        s = std::clamp(s, 0.0, 1.0);
    }
    const AcGePoint3d meeting = a.start + u * s;
    const bool isFinite =
        std::isfinite(meeting.x) && std::isfinite(meeting.y) && std::isfinite(meeting.z);
    return isFinite ? std::optional(meeting) : std::nullopt;
}

Value fnInters(Interpreter& in, Args a) {
    const Interpreter::Point points[] = {in.point(a[0]), in.point(a[1]), in.point(a[2]),
                                         in.point(a[3])};
    const bool is3d =
        std::all_of(std::begin(points), std::end(points), [](const auto& p) { return p.is3d; });
    const auto at = [&](size_t i) {
        return AcGePoint3d(points[i].x, points[i].y, is3d ? points[i].z : 0);
    };
    const bool onSegments = !a.has(4) || bool(a[4]);
    const auto meeting = intersection({at(0), at(1)}, {at(2), at(3)}, onSegments);
    return meeting ? pointValue(in, meeting->x, meeting->y, meeting->z, is3d) : Value::nil();
}

constexpr FunctionRow kRows[] = {
    {L"rtos", fnRtos, 1, 3},     {L"angtos", fnAngtos, 1, 3},     {L"distof", fnDistof, 1, 2},
    {L"angtof", fnAngtof, 1, 2}, {L"cvunit", fnCvunit, 3, 3},     {L"polar", fnPolar, 3, 3},
    {L"angle", fnAngle, 2, 2},   {L"distance", fnDistance, 2, 2}, {L"inters", fnInters, 4, 5},
};

}  // namespace

std::span<const FunctionRow> conversionFunctions() {
    return kRows;
}

}  // namespace sg::lisp
