#include "host/editor/view/current_view.h"

#include <utility>

#include "host/model/core/object_access.h"
#include "host/model/tables/coordinate_systems.h"
#include "host/model/tables/view_tables.h"

namespace sg {
namespace {

using Point3 = std::array<double, 3>;

// The codes of a viewport's record.
enum Field { kCenter = 12, kDirection = 16, kTarget = 17, kHeight = 40, kAspect = 41, kTwist = 51 };

AcDbObjectId activeViewport(const AcDbDatabase& database) {
    AcDbObjectId id;
    const auto* const table = model::peek<AcDbViewportTable>(database.viewportTableId());
    if (table == nullptr) return id;
    const model::Unguarded guard(*table);
    table->getAt(L"*Active", id);
    return id;
}

// What a record without fields would have.
const model::RecordFields& fieldsOf(const AcDbDatabase& database) {
    static const AcDbViewportTableRecord kNone;
    const auto* const record = model::peek<AcDbViewportTableRecord>(activeViewport(database));
    return std::as_const(record == nullptr ? kNone : *record).fields();
}

Point3 numbers(const AcGePoint3d& point) {
    return {point.x, point.y, point.z};
}

}  // namespace

CurrentView currentView(const AcDbDatabase& database) {
    const model::RecordFields& fields = fieldsOf(database);
    const auto& center = fields.get<AcGePoint3d>(kCenter);
    return {{center.x, center.y}, fields.get<double>(kHeight), fields.get<double>(kAspect)};
}

void setCurrentView(AcDbDatabase& database, const CurrentView& view) {
    AcDbViewportTableRecord* record = nullptr;
    if (acdbOpenObject(record, activeViewport(database), AcDb::kForWrite) != Acad::eOk) return;
    record->fields().set(kCenter, AcGePoint3d(view.center.x, view.center.y, 0));
    record->fields().set(kHeight, view.height);
    record->close();
}

void joinView(SystemVariables& variables, AcDbDatabase& database) {
    const auto provide = [&](const wchar_t* name, auto value) {
        variables.setProvider(name, [&database, value] {
            return SystemVariableValue(value(database, fieldsOf(database)));
        });
    };
    provide(L"VIEWCTR", [](const AcDbDatabase& of, const model::RecordFields&) {
        const AcGePoint2d center = currentView(of).center;
        return numbers(model::userToWorld(of).inverse() *
                       (model::displayToWorld(of) * AcGePoint3d(center.x, center.y, 0)));
    });
    provide(L"VIEWSIZE", [](const AcDbDatabase&, const model::RecordFields& fields) {
        return fields.get<double>(kHeight);
    });
    provide(L"VIEWTWIST", [](const AcDbDatabase&, const model::RecordFields& fields) {
        return fields.get<double>(kTwist);
    });
    provide(L"VIEWDIR", [](const AcDbDatabase& of, const model::RecordFields& fields) {
        const AcGeVector3d direction = fields.get<AcGePoint3d>(kDirection).asVector();
        const AcGeVector3d user = model::userToWorld(of).inverse() * direction;
        return Point3{user.x, user.y, user.z};
    });
    provide(L"TARGET", [](const AcDbDatabase& of, const model::RecordFields& fields) {
        return numbers(model::userToWorld(of).inverse() * fields.get<AcGePoint3d>(kTarget));
    });
}

}  // namespace sg
