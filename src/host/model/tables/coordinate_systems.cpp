#include "host/model/tables/coordinate_systems.h"

#include <utility>

#include "host/model/core/database_state.h"
#include "host/model/tables/view_tables.h"
#include "platform/db/database.h"

namespace sg::model {
namespace {

AcGeMatrix3d axes(const AcGePoint3d& origin, const AcGeVector3d& x, const AcGeVector3d& y,
                  const AcGeVector3d& z) {
    AcGeMatrix3d matrix;
    matrix.setCoordSystem(origin, x, y, z);
    return matrix;
}

// The view of the current viewport.
struct View {
    AcGeVector3d direction = AcGeVector3d::kZAxis;
    AcGePoint3d target;
    double twist = 0;
};

View currentView(const AcDbDatabase& database) {
    View view;
    AcDbViewportTable* table = nullptr;
    if (acdbOpenObject(table, database.viewportTableId()) != Acad::eOk) return view;
    AcDbViewportTableRecord* active = nullptr;
    if (table->getAt(L"*Active", active) == Acad::eOk) {
        const RecordFields& fields = std::as_const(*active).fields();
        view.direction = fields.get<AcGePoint3d>(16).asVector();
        view.target = fields.get<AcGePoint3d>(17);
        view.twist = fields.get<double>(51);
        active->close();
    }
    table->close();
    return view;
}

}  // namespace

AcGeMatrix3d userToWorld(const AcDbDatabase& database) {
    const HeaderVariables& header = DatabaseState::of(database).header();
    const bool paper = header.get<int32_t>(L"TILEMODE") == 0 &&
                       database.currentSpaceId() == database.paperSpaceId();
    const auto& origin = header.get<AcGePoint3d>(paper ? L"PUCSORG" : L"UCSORG");
    const AcGeVector3d x = header.get<AcGePoint3d>(paper ? L"PUCSXDIR" : L"UCSXDIR").asVector();
    const AcGeVector3d y = header.get<AcGePoint3d>(paper ? L"PUCSYDIR" : L"UCSYDIR").asVector();
    return axes(origin, x, y, x.crossProduct(y));
}

AcGeMatrix3d displayToWorld(const AcDbDatabase& database) {
    const View view = currentView(database);
    const AcGeVector3d z =
        view.direction.isZeroLength() ? AcGeVector3d::kZAxis : view.direction.normal();
    // Looking straight down or up, the screen's x is the world's.
    AcGeVector3d x = AcGeVector3d::kZAxis.crossProduct(z);
    x = x.isZeroLength() ? AcGeVector3d::kXAxis : x.normal();
    x.rotateBy(-view.twist, z);
    return axes(view.target, x, z.crossProduct(x), z);
}

}  // namespace sg::model
