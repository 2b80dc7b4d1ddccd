#include "host/editor/jig/jig_drag.h"

#include <cmath>
#include <numbers>

#include "base/text.h"
#include "host/model/tables/coordinate_systems.h"

namespace sg {
namespace {

using DragStatus = AcEdJig::DragStatus;

const wchar_t* complaintOf(DragRequest::Kind kind) {
    switch (kind) {
        case DragRequest::Kind::angle:
            return L"Requires valid numeric angle or second point.";
        case DragRequest::Kind::distance:
            return L"Requires numeric distance or two points.";
        default:
            return L"Invalid point.";
    }
}

double directionOf(const AcGeVector3d& way) {
    const double angle = std::atan2(way.y, way.x);
    return angle < 0 ? angle + 2 * std::numbers::pi : angle;
}

PromptResult resultOf(DragStatus status) {
    switch (status) {
        case AcEdJig::kNormal:
            return PromptResult::value;
        case AcEdJig::kNull:
            return PromptResult::null;
        case AcEdJig::kCancel:
            return PromptResult::cancelled;
        default:
            return PromptResult::keyword;
    }
}

// Takes what is dragged off the screen however the drag ends.
class Shown {
  public:
    explicit Shown(DragDisplay& display) : display_(display) {}
    ~Shown() { display_.clear(); }
    Shown(const Shown&) = delete;
    Shown& operator=(const Shown&) = delete;

  private:
    DragDisplay& display_;
};

}  // namespace

JigDrag::JigDrag(AcEdJig& jig, const Prompter::Place& place, DragDisplay& display,
                 DragCounts& counts)
    : jig_(jig),
      place_(place),
      display_(display),
      counts_(counts),
      prompter_(place_, allowed_),
      toWorld_(model::userToWorld(place.database)),
      toUser_(toWorld_.inverse()),
      start_(prompter_.lastPoint()),
      isOrtho_(prompter_.number(L"ORTHOMODE") != 0) {}

// ---- The order of a drag ------------------------------------------------------------------------

DragStatus JigDrag::run() {
    const Shown shown(display_);
    ++counts_.drags;
    for (;;) {
        sample_.reset();
        const DragStatus status = step();
        if (!sample_->isConfirmed && status == AcEdJig::kNormal) continue;
        prompter_.finish(resultOf(status));
        return status;
    }
}

// A sample; kNormal when it is not confirmed and the drag goes on.
DragStatus JigDrag::step() {
    ++counts_.samplers;
    const DragStatus status = jig_.sampler();
    // A jig that has asked for nothing waits for the user all the same: else nothing could end it.
    const Sample& sample = acquire(Kind::point, std::nullopt);
    const bool isNormal = status == AcEdJig::kNormal || status == AcEdJig::kNoChange;
    if (isNormal && sample.status != AcEdJig::kNormal) return sample.status;
    if (!isNormal) return status;
    if (status == AcEdJig::kNormal || sample.isConfirmed) show();
    return AcEdJig::kNormal;
}

void JigDrag::show() {
    ++counts_.updates;
    if (!jig_.update()) return;
    AcDbEntity* const entity = jig_.entity();
    if (entity == nullptr) return;
    ++counts_.redraws;
    display_.show(place_.database, *entity);
}

// ---- What the sampler asks for ------------------------------------------------------------------

DragStatus JigDrag::point(AcGePoint3d& value, const AcGePoint3d* base) {
    const Sample& sample = acquire(Kind::point, inUserCoordinates(base));
    if (sample.status != AcEdJig::kNormal) return sample.status;
    if (!sample.place) return AcEdJig::kNoChange;
    value = toWorld_ * *sample.place;
    return AcEdJig::kNormal;
}

DragStatus JigDrag::angle(double& value, const AcGePoint3d* base) {
    const AcGePoint3d from = inUserCoordinates(base).value_or(start_);
    const Sample& sample = acquire(Kind::angle, from);
    if (sample.status != AcEdJig::kNormal) return sample.status;
    if (!sample.number && !sample.place) return AcEdJig::kNoChange;
    value = sample.number ? *sample.number : directionOf(*sample.place - from);
    return AcEdJig::kNormal;
}

DragStatus JigDrag::distance(double& value, const AcGePoint3d* base) {
    const AcGePoint3d from = inUserCoordinates(base).value_or(start_);
    const Sample& sample = acquire(Kind::distance, from);
    if (sample.status != AcEdJig::kNormal) return sample.status;
    if (!sample.number && !sample.place) return AcEdJig::kNoChange;
    value = sample.number ? *sample.number : from.distanceTo(*sample.place);
    return AcEdJig::kNormal;
}

DragStatus JigDrag::text(std::wstring& value) {
    const Sample& sample = acquire(Kind::text, std::nullopt);
    if (sample.status != AcEdJig::kNormal) return sample.status;
    if (!sample.isConfirmed) return AcEdJig::kNoChange;
    value = sample.text;
    return AcEdJig::kNormal;
}

std::optional<AcGePoint3d> JigDrag::inUserCoordinates(const AcGePoint3d* base) const {
    return base == nullptr ? std::nullopt : std::optional(toUser_ * *base);
}

bool JigDrag::isAccepted(AcEdJig::UserInputControls control) const {
    return (jig_.userInputControls() & control) != 0;
}

const Keywords& JigDrag::keywords() {
    if (keywordText_ != jig_.keywordList()) {
        keywordText_ = jig_.keywordList();
        keywords_ = Keywords(keywordText_);
    }
    return keywords_;
}

// ---- Answers ------------------------------------------------------------------------------------

// Asks until something fits; a second time in one sample it is the same.
const JigDrag::Sample& JigDrag::acquire(Kind kind, const std::optional<AcGePoint3d>& base) {
    if (sample_) return *sample_;
    const DragRequest request{kind, jig_.dispPrompt(),        jig_.keywordList(),
                              base, jig_.specialCursorType(), jig_.userInputControls()};
    sample_ = Sample();
    for (;;) {
        std::optional<DragAnswer> answer = place_.input.drag(request);
        if (!answer) {
            sample_->status = AcEdJig::kCancel;
            sample_->isConfirmed = true;
            break;
        }
        if (take(*answer, request)) break;
    }
    return *sample_;
}

// False, and the user is told, for what does not fit.
bool JigDrag::take(DragAnswer& answer, const DragRequest& request) {
    sample_->isConfirmed = answer.isConfirmed;
    if (answer.answer.kind == PromptAnswer::Kind::text) {
        const Taken taken = takeText(answer.answer, request);
        if (taken != Taken::notMine) return taken == Taken::done;
    }
    AcGePoint3d at;
    if (!prompter_.pointOf(answer.answer, at)) {
        prompter_.tell(complaintOf(request.kind));
        return false;
    }
    return takePlace(at, answer, request);
}

bool JigDrag::takePlace(AcGePoint3d at, const DragAnswer& answer, const DragRequest& request) {
    const bool isPointedAt = !answer.isConfirmed || answer.answer.kind != PromptAnswer::Kind::text;
    if (isPointedAt && isOrtho_ && request.basePoint && isAccepted(AcEdJig::kGovernedByOrthoMode)) {
        at = alongAxes(at, *request.basePoint);
    }
    const bool isDistance = request.kind == Kind::distance && request.basePoint.has_value();
    if (isDistance && !fits(request.basePoint->distanceTo(at), Kind::distance)) return false;
    sample_->place = at;
    if (answer.isConfirmed && !isAccepted(AcEdJig::kDontUpdateLastPoint)) {
        prompter_.setLastPoint(at);
    }
    return true;
}

// Enter, a keyword, a number or a text; not a point.
JigDrag::Taken JigDrag::takeText(const PromptAnswer& answer, const DragRequest& request) {
    const bool isText = request.kind == Kind::text;
    if (!sample_->isConfirmed) return isText ? Taken::done : Taken::notMine;
    const std::wstring typed(trimmed(answer.text));
    if (typed.empty()) {
        if (isAccepted(AcEdJig::kNullResponseAccepted)) {
            sample_->status = AcEdJig::kNull;
            return Taken::done;
        }
        prompter_.tell(complaintOf(request.kind));
        return Taken::refused;
    }
    if (takeWord(typed)) return Taken::done;
    if (isText) {
        sample_->text = answer.text;
        return Taken::done;
    }
    const std::optional<double> number = numberOf(answer, request.kind);
    if (number && !fits(*number, request.kind)) return Taken::refused;
    sample_->number = number;
    if (number) return Taken::done;
    const bool isPoint = parseTypedPoint(answer.text, prompter_.context()).has_value();
    if (isPoint || !isAccepted(AcEdJig::kAcceptOtherInputString)) return Taken::notMine;
    word_ = typed;
    sample_->status = AcEdJig::kOther;
    return Taken::done;
}

bool JigDrag::takeWord(const std::wstring& typed) {
    constexpr size_t kMostKeywords = 9;
    const std::optional<size_t> place = keywords().findPlace(typed);
    if (!place || *place >= kMostKeywords) return false;
    word_ = *keywords().find(typed);
    sample_->status = static_cast<DragStatus>(AcEdJig::kKW1 + *place);
    return true;
}

std::optional<double> JigDrag::numberOf(const PromptAnswer& answer, Kind kind) const {
    switch (kind) {
        case Kind::angle:
            return parseTypedAngle(answer.text, prompter_.context());
        case Kind::distance:
            return parseTypedDistance(answer.text, prompter_.context());
        default:
            return std::nullopt;
    }
}

bool JigDrag::fits(double value, Kind kind) {
    const bool isZero = isAccepted(AcEdJig::kNoZeroResponseAccepted) && value == 0;
    const bool isNegative =
        kind == Kind::distance && value < 0 && isAccepted(AcEdJig::kNoNegativeResponseAccepted);
    if (isZero) prompter_.tell(L"Value must be nonzero.");
    if (isNegative) prompter_.tell(L"Value must be positive.");
    return !isZero && !isNegative;
}

// The place's nearest on the lines from `base` along the axes.
AcGePoint3d JigDrag::alongAxes(const AcGePoint3d& place, const AcGePoint3d& base) const {
    const AcGeVector3d way = place - base;
    return std::abs(way.x) >= std::abs(way.y) ? AcGePoint3d(place.x, base.y, place.z)
                                              : AcGePoint3d(base.x, place.y, place.z);
}

}  // namespace sg
