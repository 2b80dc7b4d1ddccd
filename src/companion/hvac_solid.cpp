#include "companion/hvac_solid.h"

#include "companion/exact_shapes.h"
#include "companion/facets.h"
#include "companion/shape_memory.h"
#include "platform/rx/rxclass.h"

namespace sg::companion {
namespace {

constexpr const wchar_t* kDxfName = L"QN_HVACSOLID";
constexpr const wchar_t* kApplication =
    L"\"Duct Solids|Quillon Software, Inc|www.quillonsoftware.com\"";

AcRxClass* descriptor = nullptr;

AcRxObject* makeSolid() {
    return new HvacSolid;
}

}  // namespace

HvacSolid::HvacSolid() = default;
HvacSolid::~HvacSolid() = default;

void HvacSolid::rxInit() {
    descriptor =
        newAcRxClass(kClassName, L"AcDbEntity", 0, 0, 0, makeSolid, kDxfName, kApplication);
    descriptor->addX(sgExactShapePE::desc(), exactShapes());
}

void HvacSolid::rxTerm() {
    descriptor->delX(sgExactShapePE::desc());
    deleteAcRxClass(descriptor);
    descriptor = nullptr;
    forgetShapes();
}

AcRxClass* HvacSolid::isA() const {
    return descriptor;
}

// ---- Bodies -------------------------------------------------------------------------------------

ShapePtr HvacSolid::shape() const {
    assertReadEnabled();
    const SolidKernel* const kernel = solidKernel();
    if (steps_.empty() || kernel == nullptr) return nullptr;
    ShapePtr shape = shape_.lock();
    if (shape == nullptr) {
        for (const Step& step : steps_) {
            shape = kernel->apply(shape, step, true);
            if (shape == nullptr) return nullptr;
        }
        shape_ = shape;
    }
    keepShape(shape);
    return shape;
}

// Does a step, and keeps it when it succeeds.
bool HvacSolid::apply(Step step) {
    assertWriteEnabled();
    const SolidKernel* const kernel = solidKernel();
    if (kernel == nullptr) return false;
    const ShapePtr before = shape();
    if (before == nullptr && !steps_.empty()) return false;
    const ShapePtr after = kernel->apply(before, step, false);
    if (after == nullptr) return false;
    steps_.push_back(std::move(step));
    forgetShape();
    shape_ = after;
    keepShape(after);
    return true;
}

bool HvacSolid::add(std::optional<Body> body, int bodyOption) {
    if (!body || !apply({AddBody{std::move(*body)}})) return false;
    bodyOption_ = bodyOption;
    return true;
}

void HvacSolid::forgetShape() {
    shape_.reset();
    facets_.reset();
}

void HvacSolid::clearBodies() {
    assertWriteEnabled();
    steps_.clear();
    forgetShape();
}

bool HvacSolid::doUnion(qn_hvacSolid* other) {
    const HvacSolid* const solid = cast(other);
    if (solid == nullptr || solid == this || solid->steps_.empty()) return false;
    if (steps_.empty()) bodyOption_ = solid->bodyOption_;
    return apply({Unite{solid->steps_}});
}

void HvacSolid::sliceLast(AcGePoint3d p1, AcGePoint3d p2, AcGePoint3d p3, AcGePoint3d keep) {
    assertWriteEnabled();
    const AcGeVector3d square = (p2 - p1).crossProduct(p3 - p1);
    const double side = square.dotProduct(keep - p1);
    if (steps_.empty() || !isFinite(square) || square.isZeroLength() || side == 0) return;
    const AcGeVector3d normal = square.normal();
    apply({SliceLast{p1, side > 0 ? normal : -normal}});
}

Acad::ErrorStatus HvacSolid::subTransformBy(const AcGeMatrix3d& matrix) {
    assertWriteEnabled();
    if (matrix.isSingular() || !matrix.isUniScaledOrtho()) return Acad::eCannotScaleNonUniformly;
    std::unique_ptr<const Facets> facets = transformed(facets_.get(), matrix);
    transform(steps_, matrix);
    forgetShape();
    facets_ = std::move(facets);
    return Acad::eOk;
}

}  // namespace sg::companion
