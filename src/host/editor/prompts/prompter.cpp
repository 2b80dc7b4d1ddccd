#include "host/editor/prompts/prompter.h"

#include <cmath>
#include <numbers>
#include <utility>

#include "base/text.h"
#include "host/editor/command_line_output.h"
#include "host/editor/prompts/object_snap.h"
#include "host/editor/selection/drawing_selection.h"
#include "host/editor/system_variables.h"
#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/coordinate_systems.h"
#include "platform/db/curve.h"

namespace sg {
namespace {

using Kind = PromptRequest::Kind;

constexpr int kPickFailed = 7;
constexpr int kNullResponse = 52;

constexpr double kTurn = 2 * std::numbers::pi;

double normalized(double angle) {
    angle = std::fmod(angle, kTurn);
    return angle < 0 ? angle + kTurn : angle;
}

double directionOf(const AcGePoint3d& from, const AcGePoint3d& to) {
    return normalized(std::atan2(to.y - from.y, to.x - from.x));
}

double realOf(const SystemVariables& variables, const wchar_t* name) {
    const auto value = variables.get(name);
    const auto* const real = value ? std::get_if<double>(&*value) : nullptr;
    return real == nullptr ? 0 : *real;
}

// Where an entity that is named stands: a point of it that shows.
AcGePoint3d placeOf(const AcDbEntity& entity) {
    const model::Unguarded guard(entity);
    AcGePoint3d point;
    const auto* const curve = AcDbCurve::cast(&entity);
    if (curve != nullptr && curve->getStartPoint(point) == Acad::eOk) return point;
    AcDbExtents reach;
    if (entity.getGeomExtents(reach) != Acad::eOk || reach.isEmpty()) return point;
    return reach.minPoint() + (reach.maxPoint() - reach.minPoint()) / 2;
}

}  // namespace

// ---- The drawing around it ----------------------------------------------------------------------

int Prompter::number(const wchar_t* variable) const {
    const auto value = place_.variables.get(variable);
    if (!value) return 0;
    if (const auto* const small = std::get_if<int16_t>(&*value)) return *small;
    const auto* const large = std::get_if<int32_t>(&*value);
    return large == nullptr ? 0 : *large;
}

AcGePoint3d Prompter::lastPoint() const {
    const auto value = place_.variables.get(L"LASTPOINT");
    const auto* const point = value ? std::get_if<std::array<double, 3>>(&*value) : nullptr;
    return point == nullptr ? AcGePoint3d() : AcGePoint3d((*point)[0], (*point)[1], (*point)[2]);
}

void Prompter::setLastPoint(const AcGePoint3d& point) {
    place_.variables.assign(L"LASTPOINT", std::array<double, 3>{point.x, point.y, point.z});
}

TypedContext Prompter::context() const {
    TypedContext context;
    context.lunits = number(L"LUNITS");
    context.aunits = number(L"AUNITS");
    context.units.angbase = realOf(place_.variables, L"ANGBASE");
    context.units.angdir = number(L"ANGDIR");
    context.last = lastPoint();
    context.elevation = realOf(place_.variables, L"ELEVATION");
    context.toUser = model::userToWorld(place_.database).inverse();
    return context;
}

double Prompter::pickReach() const {
    const auto screen = place_.variables.get(L"SCREENSIZE");
    const auto* const size = screen ? std::get_if<std::array<double, 2>>(&*screen) : nullptr;
    const double pixels = size == nullptr || (*size)[1] <= 0 ? 768 : (*size)[1];
    return number(L"PICKBOX") * realOf(place_.variables, L"VIEWSIZE") / pixels;
}

PromptResult Prompter::finish(PromptResult result) {
    const bool missed = result == PromptResult::missed;
    const int number = missed ? kPickFailed : result == PromptResult::null ? kNullResponse : 0;
    place_.variables.assign(L"ERRNO", int32_t{number});
    return result;
}

void Prompter::tell(const std::wstring& message) {
    if (!place_.output.atLineStart()) place_.output.print(L"\n");
    place_.output.print(message + L"\n");
}

Prompter::Allowed Prompter::takeAllowed() {
    keyword_.clear();
    return std::exchange(allowed_, {});
}

// Points outside the limits are taken unless "LIMCHECK" is on.
bool Prompter::isWithinLimits(const AcGePoint3d& point) const {
    using Point2 = std::array<double, 2>;
    if (number(L"LIMCHECK") == 0) return true;
    const auto low = place_.variables.get(L"LIMMIN"), high = place_.variables.get(L"LIMMAX");
    const auto* const least = low ? std::get_if<Point2>(&*low) : nullptr;
    const auto* const most = high ? std::get_if<Point2>(&*high) : nullptr;
    if (least == nullptr || most == nullptr) return true;
    const AcGePoint3d at = model::userToWorld(place_.database) * point;
    return at.x >= (*least)[0] && at.y >= (*least)[1] && at.x <= (*most)[0] && at.y <= (*most)[1];
}

// ---- Asking -------------------------------------------------------------------------------------

// Asks until the answer is Enter where that is allowed, a keyword, or what `take` takes.
template <class Take>
PromptResult Prompter::ask(PromptRequest request, const Allowed& allowed, const wchar_t* complaint,
                           const Take& take) {
    for (;;) {
        const std::optional<PromptAnswer> answer = place_.input.prompt(request);
        if (!answer) return PromptResult::cancelled;
        const bool isText = answer->kind == PromptAnswer::Kind::text;
        const std::wstring typed(trimmed(answer->text));
        if (isText && typed.empty()) {
            if ((allowed.bits & Allowed::noNull) == 0) return PromptResult::null;
            tell(complaint);
            continue;
        }
        if (isText) {
            if (auto keyword = allowed.keywords.find(typed)) {
                keyword_ = std::move(*keyword);
                return PromptResult::keyword;
            }
        }
        const std::optional<Parsed> taken = take(*answer);
        if (taken == Parsed::done) return PromptResult::value;
        if (taken == Parsed::cancelled) return PromptResult::cancelled;
        if (!taken && isText && (allowed.bits & Allowed::anyText) != 0) {
            keyword_ = typed;
            return PromptResult::keyword;
        }
        if (!taken) tell(complaint);
    }
}

// Asks for the place of an object snap. `isSnap` is false when the text names none.
std::optional<AcGePoint3d> Prompter::snapped(const std::wstring& text, bool& isSnap) {
    const NamedSnaps snaps = namedSnaps(text);
    isSnap = !snaps.empty();
    if (!isSnap) return std::nullopt;
    const auto answer = place_.input.prompt({Kind::point, L"of ", std::nullopt, false});
    if (!answer) return std::nullopt;
    AcGePoint3d at;
    if (answer->kind == PromptAnswer::Kind::point) {
        at = answer->point;
    } else if (const auto typed = parseTypedPoint(answer->text, context())) {
        at = *typed;
    } else {
        return std::nullopt;
    }
    return snapPoint(place_.database, place_.selection, snaps, at, lastPoint(), pickReach());
}

bool Prompter::pointOf(const PromptAnswer& answer, AcGePoint3d& point) {
    switch (answer.kind) {
        case PromptAnswer::Kind::point:
            point = answer.point;
            return true;
        case PromptAnswer::Kind::entity:
            return false;
        default:
            break;
    }
    if (const auto typed = parseTypedPoint(answer.text, context())) {
        point = *typed;
        return true;
    }
    bool isSnap = false;
    const auto found = snapped(std::wstring(trimmed(answer.text)), isSnap);
    if (found) point = *found;
    if (isSnap && !found) tell(L"No object snap point there.");
    return found.has_value();
}

bool Prompter::fits(double value, const Allowed& allowed) {
    const bool positive = (allowed.bits & Allowed::noNegative) != 0;
    const bool nonzero = (allowed.bits & Allowed::noZero) != 0;
    if (!(positive && value < 0) && !(nonzero && value == 0)) return true;
    if (positive && nonzero) {
        tell(L"Value must be positive and nonzero.");
    } else {
        tell(positive ? L"Value must be positive." : L"Value must be nonzero.");
    }
    return false;
}

PromptResult Prompter::askPoint(const std::wstring& prompt, const Point& base, bool isCorner,
                                const Allowed& allowed, AcGePoint3d& result) {
    return ask({Kind::point, prompt, base, isCorner}, allowed, L"Invalid point.",
               [&](const PromptAnswer& answer) -> std::optional<Parsed> {
                   if (!pointOf(answer, result)) return std::nullopt;
                   if ((allowed.bits & Allowed::noLimits) == 0 && !isWithinLimits(result)) {
                       tell(L"**Outside limits");
                       return Parsed::wrong;
                   }
                   setLastPoint(result);
                   return Parsed::done;
               });
}

PromptResult Prompter::point(const std::wstring& prompt, const Point& base, AcGePoint3d& result) {
    return finish(askPoint(prompt, base, false, takeAllowed(), result));
}

PromptResult Prompter::corner(const std::wstring& prompt, const AcGePoint3d& base,
                              AcGePoint3d& result) {
    return finish(askPoint(prompt, base, true, takeAllowed(), result));
}

PromptResult Prompter::distance(const std::wstring& prompt, const Point& base, double& result) {
    const Allowed allowed = takeAllowed();
    const auto between = [&](AcGePoint3d from, AcGePoint3d to) {
        if ((allowed.bits & Allowed::flatDistance) != 0) from.z = to.z = 0;
        return from.distanceTo(to);
    };
    return finish(ask(
        {Kind::point, prompt, base, false}, allowed, L"Requires numeric distance or two points.",
        [&](const PromptAnswer& answer) -> std::optional<Parsed> {
            const bool isText = answer.kind == PromptAnswer::Kind::text;
            const auto typed = isText ? parseTypedDistance(answer.text, context()) : std::nullopt;
            AcGePoint3d first, second;
            if (typed) {
                result = *typed;
            } else if (!pointOf(answer, first)) {
                return std::nullopt;
            } else if (base) {
                result = between(*base, first);
                setLastPoint(first);
            } else {
                setLastPoint(first);
                if (askPoint(L"Specify second point: ", first, false, {Allowed::noNull, {}},
                             second) != PromptResult::value) {
                    return Parsed::cancelled;
                }
                result = between(first, second);
            }
            return fits(result, allowed) ? Parsed::done : Parsed::wrong;
        }));
}

PromptResult Prompter::angle(const std::wstring& prompt, const Point& base, bool fromXAxis,
                             double& result) {
    const Allowed allowed = takeAllowed();
    return finish(
        ask({Kind::point, prompt, base, false}, allowed,
            L"Requires valid numeric angle or second point.",
            [&](const PromptAnswer& answer) -> std::optional<Parsed> {
                const bool isText = answer.kind == PromptAnswer::Kind::text;
                const auto typed = isText ? parseTypedAngle(answer.text, context()) : std::nullopt;
                AcGePoint3d first, second;
                double direction = 0;
                if (typed) {
                    direction = *typed;
                } else if (!pointOf(answer, first)) {
                    return std::nullopt;
                } else {
                    setLastPoint(first);
                    if (!base && askPoint(L"Specify second point: ", first, false,
                                          {Allowed::noNull, {}}, second) != PromptResult::value) {
                        return Parsed::cancelled;
                    }
                    direction = base ? directionOf(*base, first) : directionOf(first, second);
                }
                if (!fromXAxis) direction -= realOf(place_.variables, L"ANGBASE");
                result = normalized(direction);
                const bool isZero = (allowed.bits & Allowed::noZero) != 0 && result == 0;
                if (isZero) tell(L"Value must be nonzero.");
                return isZero ? Parsed::wrong : Parsed::done;
            }));
}

PromptResult Prompter::integer(const std::wstring& prompt, int32_t& result) {
    const Allowed allowed = takeAllowed();
    return finish(ask({Kind::value, prompt, {}, false}, allowed, L"Requires an integer value.",
                      [&](const PromptAnswer& answer) -> std::optional<Parsed> {
                          const auto typed = parseTypedInteger(answer.text);
                          if (!typed) return std::nullopt;
                          if (*typed < INT16_MIN || *typed > INT16_MAX) {
                              tell(L"Requires an integer between -32768 and 32767.");
                              return Parsed::wrong;
                          }
                          result = *typed;
                          return fits(result, allowed) ? Parsed::done : Parsed::wrong;
                      }));
}

PromptResult Prompter::real(const std::wstring& prompt, double& result) {
    const Allowed allowed = takeAllowed();
    return finish(ask({Kind::value, prompt, {}, false}, allowed, L"Requires numeric value.",
                      [&](const PromptAnswer& answer) -> std::optional<Parsed> {
                          const auto typed = parseTypedDistance(answer.text, context());
                          if (!typed) return std::nullopt;
                          result = *typed;
                          return fits(result, allowed) ? Parsed::done : Parsed::wrong;
                      }));
}

PromptResult Prompter::string(const std::wstring& prompt, bool wholeLine, std::wstring& result) {
    takeAllowed();
    const auto answer = place_.input.text({prompt, wholeLine});
    if (!answer) return finish(PromptResult::cancelled);
    result = *answer;
    return finish(PromptResult::value);
}

PromptResult Prompter::choice(const std::wstring& prompt) {
    const Allowed allowed = takeAllowed();
    if (allowed.keywords.empty()) return finish(PromptResult::refused);
    const PromptResult result =
        ask({Kind::value, prompt, {}, false}, allowed, L"Invalid option keyword.",
            [](const PromptAnswer&) -> std::optional<Parsed> { return std::nullopt; });
    return finish(result == PromptResult::keyword ? PromptResult::value : result);
}

// ---- Picking ------------------------------------------------------------------------------------

// The entity of an answer that names one or a place with one; null when there is none.
AcDbObjectId Prompter::entityOf(const PromptAnswer& answer, AcGePoint3d& at) {
    if (answer.kind == PromptAnswer::Kind::entity) {
        const AcDbObjectId id = model::DatabaseState::of(place_.database).findHandle(answer.handle);
        const auto* const entity = model::peek<AcDbEntity>(id);
        if (entity == nullptr || entity->isErased()) return {};
        at = answer.hasPoint ? answer.point
                             : model::userToWorld(place_.database).inverse() * placeOf(*entity);
        return id;
    }
    const DrawingSelection::Ids found = place_.selection.atPoint(at, pickReach());
    return found.empty() ? AcDbObjectId() : found.front();
}

PromptResult Prompter::entity(const std::wstring& prompt, AcDbObjectId& id, AcGePoint3d& at) {
    const Allowed allowed = takeAllowed();
    id.setNull();
    const PromptResult result =
        ask({Kind::entity, prompt, {}, false}, allowed, L"Invalid point.",
            [&](const PromptAnswer& answer) -> std::optional<Parsed> {
                const bool isEntity = answer.kind == PromptAnswer::Kind::entity;
                const std::wstring_view typed = trimmed(answer.text);
                if (!isEntity &&
                    (equalIgnoringCase(typed, L"L") || equalIgnoringCase(typed, L"LAST"))) {
                    id = place_.selection.last();
                    const auto* const entity = model::peek<AcDbEntity>(id);
                    if (entity == nullptr) return Parsed::done;
                    at = model::userToWorld(place_.database).inverse() * placeOf(*entity);
                    return Parsed::done;
                }
                if (!isEntity && !pointOf(answer, at)) return std::nullopt;
                id = entityOf(answer, at);
                if (!id.isNull()) setLastPoint(at);
                return Parsed::done;
            });
    return finish(result == PromptResult::value && id.isNull() ? PromptResult::missed : result);
}

PromptResult Prompter::pick(const std::wstring& prompt, const Keywords& keywords, Pick& pick) {
    pick = {};
    keyword_.clear();
    const auto answer = place_.input.prompt({Kind::selection, prompt, {}, false});
    if (!answer) return finish(PromptResult::cancelled);
    const bool isText = answer->kind == PromptAnswer::Kind::text;
    const std::wstring typed(trimmed(answer->text));
    if (isText && typed.empty()) return finish(PromptResult::null);
    if (answer->kind == PromptAnswer::Kind::set) {
        pick.set = answer->set;
        return finish(PromptResult::value);
    }
    if (answer->kind == PromptAnswer::Kind::entity) {
        pick.id = entityOf(*answer, pick.at);
        pick.isNamed = true;
        return finish(pick.id.isNull() ? PromptResult::missed : PromptResult::value);
    }
    if (const auto keyword = isText ? keywords.find(typed) : std::nullopt) {
        keyword_ = *keyword;
        return finish(PromptResult::keyword);
    }
    if (answer->kind == PromptAnswer::Kind::point) {
        pick.at = answer->point;
    } else if (const auto point = parseTypedPoint(typed, context())) {
        pick.at = *point;
    } else {
        pick.word = typed;
        return finish(PromptResult::keyword);
    }
    setLastPoint(pick.at);
    pick.id = entityOf(*answer, pick.at);
    pick.isPoint = pick.id.isNull();
    finish(pick.isPoint ? PromptResult::missed : PromptResult::value);
    return PromptResult::value;
}

}  // namespace sg
