#include "leader/qn_leader.h"

#include <new>

#include "drawing/current_drawing.h"
#include "leader/plain_form.h"
#include "platform/rx/modules.h"
#include "platform/rx/rxdictionary.h"

namespace {

constexpr const wchar_t* kClassName = L"QNLeader";
constexpr const wchar_t* kApplication = L"\"Leader|Quillon Software, Inc|www.quillonsoftware.com\"";

AcRxClass* descriptor = nullptr;

AcRxClass* registeredClass() {
    auto* const classes = static_cast<AcRxDictionary*>(acrxSysRegistry()->at(L"ClassDictionary"));
    return static_cast<AcRxClass*>(classes->at(kClassName));
}

// Null when memory is exhausted.
AcRxObject* makeLeader() {
    try {
        return new QNLeader;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace

AcRxClass* QNLeader::desc() {
    if (descriptor == nullptr) descriptor = registeredClass();
    return descriptor;
}

QNLeader* QNLeader::cast(const AcRxObject* object) {
    if (object == nullptr || !object->isKindOf(desc())) return nullptr;
    return const_cast<QNLeader*>(static_cast<const QNLeader*>(object));
}

void QNLeader::rxInit() {
    rxInit(nullptr);
}

void QNLeader::rxInit(AppNameChangeFuncPtr changeAppName) {
    if (AcRxClass* const registered = registeredClass()) {
        if (registered != desc()) acrx_abort(L"Class mismatch");
        return;
    }
    constexpr int kDwgVersion = 1;
    constexpr int kMaintenanceVersion = 1;
    constexpr int kEraseAllowed = 1;
    descriptor = newAcRxClass(kClassName, L"AcDbCurve", kDwgVersion, kMaintenanceVersion,
                              kEraseAllowed, makeLeader, L"QNLEADER", kApplication, changeAppName);
    descriptor->addX(sgPlainFormPE::desc(), sg::leaderPlainForm());
}

QNLeader::QNLeader() = default;

QNLeader::QNLeader(const AcGePoint3d& start, const AcGePoint3d& middle, const AcGePoint3d& end,
                   double offset, AcDbObjectId block, AcDbObjectId layer)
    : startPoint_(start), middlePoint_(middle), endPoint_(end) {
    QNLeader::setLayer(layer, true, false);
    blockId_ = block;
    blockReference_.setBlockTableRecord(block);
    blockReference_.setLayer(layer, true, false);
    updateBlockPosition();
    setOffset(offset);
}

QNLeader::~QNLeader() = default;

Acad::ErrorStatus QNLeader::updateBlockPosition() {
    blockReference_.setPosition(endPoint_);
    return blockReference_.setRotation(sg::xyAngle(middlePoint_, endPoint_));
}

Acad::ErrorStatus QNLeader::setPoints(const AcGePoint3d& start, const AcGePoint3d& middle,
                                      const AcGePoint3d& end) {
    assertWriteEnabled(true, true);
    startPoint_ = start;
    middlePoint_ = middle;
    endPoint_ = end;
    return updateBlockPosition();
}

Acad::ErrorStatus QNLeader::setStartPoint(const AcGePoint3d& point) {
    assertWriteEnabled(true, true);
    startPoint_ = point;
    return updateBlockPosition();
}

Acad::ErrorStatus QNLeader::setMiddlePoint(const AcGePoint3d& point) {
    assertWriteEnabled(true, true);
    middlePoint_ = point;
    return updateBlockPosition();
}

Acad::ErrorStatus QNLeader::setEndPoint(const AcGePoint3d& point) {
    assertWriteEnabled(true, true);
    endPoint_ = point;
    return updateBlockPosition();
}

void QNLeader::getPoints(AcGePoint3d& start, AcGePoint3d& middle, AcGePoint3d& end) const {
    assertReadEnabled();
    start = startPoint_;
    middle = middlePoint_;
    end = endPoint_;
}

AcGePoint3d QNLeader::shortenedEndPoint() const {
    assertReadEnabled();
    return sg::polar(endPoint_, sg::xyAngle(endPoint_, middlePoint_), offset_);
}

double QNLeader::offset() const {
    assertReadEnabled();
    return offset_;
}

void QNLeader::setOffset(double offset) {
    assertWriteEnabled(true, true);
    offset_ = offset;
    blockReference_.setScaleFactors(AcGeScale3d(offset, offset, offset));
}

bool QNLeader::setBlock(const std::wstring& name) {
    assertWriteEnabled(true, true);
    AcDbObjectId block;
    if (!sg::findOrLoadBlock(name, block)) return false;
    blockId_ = block;
    blockReference_.setBlockTableRecord(block);
    return true;
}

const AcDbBlockReference& QNLeader::symbol() const {
    assertReadEnabled();
    return blockReference_;
}

Acad::ErrorStatus QNLeader::setLayer(AcDbObjectId layer, bool doSubents, bool allowHiddenLayer) {
    const Acad::ErrorStatus status = AcDbEntity::setLayer(layer, doSubents, allowHiddenLayer);
    if (status != Acad::eOk || !doSubents) return status;
    return blockReference_.setLayer(layer, doSubents, allowHiddenLayer);
}

// A leader has nothing of its own that could be wrong.
Acad::ErrorStatus QNLeader::audit(AcDbAuditInfo*) {
    return Acad::eOk;
}

// --- The chord

AcGeVector3d QNLeader::chordDirection() const {
    return (endPoint_ - startPoint_).normal(AcGeContext::gTol);
}

Acad::ErrorStatus QNLeader::getStartParam(double& parameter) const {
    assertReadEnabled();
    parameter = 0;
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getEndParam(double& parameter) const {
    assertReadEnabled();
    parameter = (endPoint_ - startPoint_).length();
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getStartPoint(AcGePoint3d& point) const {
    assertReadEnabled();
    point = startPoint_;
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getEndPoint(AcGePoint3d& point) const {
    assertReadEnabled();
    point = endPoint_;
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getPointAtParam(double parameter, AcGePoint3d& point) const {
    assertReadEnabled();
    point = startPoint_ + chordDirection() * parameter;
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getParamAtPoint(const AcGePoint3d& point, double& parameter) const {
    assertReadEnabled();
    parameter = (point - startPoint_).dotProduct(chordDirection());
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getDistAtParam(double parameter, double& distance) const {
    assertReadEnabled();
    distance = parameter;
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getParamAtDist(double distance, double& parameter) const {
    assertReadEnabled();
    parameter = distance;
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getDistAtPoint(const AcGePoint3d& point, double& distance) const {
    assertReadEnabled();
    distance = (point - startPoint_).length();
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getPointAtDist(double distance, AcGePoint3d& point) const {
    return getPointAtParam(distance, point);
}

bool QNLeader::isPlanar() const {
    assertReadEnabled();
    return false;
}

Acad::ErrorStatus QNLeader::getPlane(AcGePlane&, AcDb::Planarity&) const {
    assertReadEnabled();
    return Acad::eNotApplicable;
}
