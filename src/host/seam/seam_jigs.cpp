#include "host/editor/jig/drags.h"
#include "host/editor/jig/jig_drag.h"
#include "host/seam/prompting.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "platform/ed/display.h"
#include "platform/ed/jig.h"

// platform/ed/jig.h and platform/ed/display.h on the Host.

ACRX_NO_CONS_DEFINE_MEMBERS(AcEdJig, AcRxObject)

using sg::Host;

namespace {

// Asks the drag of a jig, which is on its way in the jig's sampler.
template <class Ask>
AcEdJig::DragStatus askDrag(const AcEdJig& jig, const Ask& ask) {
    sg::JigDrag* const drag = Host::the().drags().of(jig);
    return drag == nullptr ? AcEdJig::kCancel : ask(*drag);
}

std::wstring textOf(const wchar_t* text) {
    return text == nullptr ? std::wstring() : std::wstring(text);
}

}  // namespace

AcEdJig::AcEdJig() = default;
AcEdJig::~AcEdJig() = default;

AcEdJig::DragStatus AcEdJig::sampler() {
    return kCancel;
}
bool AcEdJig::update() {
    return false;
}
AcDbEntity* AcEdJig::entity() const {
    return nullptr;
}

AcEdJig::DragStatus AcEdJig::drag() {
    Host& host = Host::the();
    sg::Document* const document = host.documents().current();
    if (document == nullptr) return kCancel;
    std::wstring word;
    const DragStatus status = host.drags().run(*this, sg::promptPlace(host, *document), word);
    if (status == kOther || status >= kKW1) host.prompts().keyword = word;
    return status;
}

AcDbObjectId AcEdJig::append() {
    AcDbEntity* const given = entity();
    sg::Document* const document = Host::the().documents().current();
    if (given == nullptr || document == nullptr) return {};
    AcDbBlockTableRecord* space = nullptr;
    if (acdbOpenObject(space, document->database()->currentSpaceId(), AcDb::kForWrite) !=
        Acad::eOk) {
        return {};
    }
    AcDbObjectId id;
    const Acad::ErrorStatus status = space->appendAcDbEntity(id, given);
    space->close();
    if (status != Acad::eOk) return {};
    given->close();
    return id;
}

void AcEdJig::setDispPrompt(const wchar_t* prompt) {
    prompt_ = textOf(prompt);
}

// Samplers set the same list again and again.
void AcEdJig::setKeywordList(const wchar_t* keywords) {
    if (keywords == nullptr || keywords_ != keywords) keywords_ = textOf(keywords);
}

AcEdJig::DragStatus AcEdJig::acquirePoint(AcGePoint3d& value) {
    return askDrag(*this, [&](sg::JigDrag& drag) { return drag.point(value, nullptr); });
}
AcEdJig::DragStatus AcEdJig::acquirePoint(AcGePoint3d& value, const AcGePoint3d& base) {
    return askDrag(*this, [&](sg::JigDrag& drag) { return drag.point(value, &base); });
}
AcEdJig::DragStatus AcEdJig::acquireAngle(double& value) {
    return askDrag(*this, [&](sg::JigDrag& drag) { return drag.angle(value, nullptr); });
}
AcEdJig::DragStatus AcEdJig::acquireAngle(double& value, const AcGePoint3d& base) {
    return askDrag(*this, [&](sg::JigDrag& drag) { return drag.angle(value, &base); });
}
AcEdJig::DragStatus AcEdJig::acquireDist(double& value) {
    return askDrag(*this, [&](sg::JigDrag& drag) { return drag.distance(value, nullptr); });
}
AcEdJig::DragStatus AcEdJig::acquireDist(double& value, const AcGePoint3d& base) {
    return askDrag(*this, [&](sg::JigDrag& drag) { return drag.distance(value, &base); });
}
AcEdJig::DragStatus AcEdJig::acquireString(std::wstring& value) {
    return askDrag(*this, [&](sg::JigDrag& drag) { return drag.text(value); });
}

int acedRedraw(const ads_name entity, int) {
    if (entity == nullptr) Host::the().drags().clear();
    return RTNORM;
}
