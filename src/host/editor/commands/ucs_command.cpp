#include <cmath>

#include "base/text.h"
#include "host/editor/commands/named_records.h"
#include "host/editor/commands/planes.h"
#include "host/editor/commands/programs.h"
#include "host/editor/documents.h"
#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/coordinate_systems.h"
#include "host/model/tables/header_variables.h"
#include "host/model/tables/references.h"
#include "host/model/tables/view_tables.h"
#include "platform/db/curve.h"

namespace sg::commands {
namespace {

using Reply = Command::Reply;
constexpr size_t kMostRemembered = 10;

AcGePoint3d originOf(const AcGeMatrix3d& system) {
    return system * AcGePoint3d();
}
AcGeVector3d axisOf(const AcGeMatrix3d& system, const AcGeVector3d& axis) {
    return system * axis;
}

void store(Command& c, const AcGeMatrix3d& system, AcDbObjectId name) {
    model::HeaderVariables& header = model::DatabaseState::of(c.database()).changeHeader();
    const bool isPaper = header.get<int32_t>(L"TILEMODE") == 0 &&
                         c.database().currentSpaceId() == c.database().paperSpaceId();
    const std::wstring prefix = isPaper ? L"P" : L"";
    const AcGeVector3d x = axisOf(system, AcGeVector3d::kXAxis);
    const AcGeVector3d y = axisOf(system, AcGeVector3d::kYAxis);
    header.set(prefix + L"UCSORG", originOf(system));
    header.set(prefix + L"UCSXDIR", AcGePoint3d(x.x, x.y, x.z));
    header.set(prefix + L"UCSYDIR", AcGePoint3d(y.x, y.y, y.z));
    header.set(prefix + L"UCSNAME", name);
}

void change(Command& c, const AcGeMatrix3d& system, AcDbObjectId name = {}) {
    auto& before = c.document().memory.systems;
    before.push_back(c.userToWorld());
    if (before.size() > kMostRemembered) before.erase(before.begin());
    store(c, system, name);
}

AcGeMatrix3d systemOf(const AcGePoint3d& origin, const AcGeVector3d& x, const AcGeVector3d& z) {
    AcGeMatrix3d system;
    system.setCoordSystem(origin, x.normal(), z.crossProduct(x).normal(), z.normal());
    return system;
}

// The axes that a plane has when only its normal is known.
AcGeMatrix3d systemAlong(const AcGePoint3d& origin, const AcGeVector3d& z) {
    const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(z);
    return systemOf(origin, plane * AcGeVector3d::kXAxis, z);
}

// From an origin, and where wanted a point on the x axis and one on the plane.
void fromPoints(Command& c, const AcGePoint3d& origin, bool mayEnd) {
    const AcGeMatrix3d before = c.userToWorld();
    const AcGeMatrix3d moved = before * AcGeMatrix3d::translation(origin.asVector());
    AcGePoint3d onX = origin + AcGeVector3d::kXAxis, onPlane = origin + AcGeVector3d::kYAxis;
    const Reply reply = c.point({mayEnd ? L"Specify point on X-axis or <accept>: "
                                        : L"Specify point on positive portion of X-axis: ",
                                 origin},
                                onX);
    if (reply == Reply::enter && mayEnd) return change(c, moved);
    c.point({mayEnd ? L"Specify point on the XY plane or <accept>: "
                    : L"Specify point on positive-Y portion of the UCS XY plane: ",
             origin},
            onPlane);
    AcGeVector3d z = (onX - origin).crossProduct(onPlane - origin);
    if (z.isZeroLength()) z = (onX - origin).crossProduct(AcGeVector3d::kYAxis);
    if (z.isZeroLength()) {
        c.print(L"The points lie on a line.");
        return;
    }
    change(c, systemOf(before * origin, before * (onX - origin), before * z));
}

void rotateAbout(Command& c, wchar_t axis) {
    double angle = c.number(L"UCSAXISANG") * M_PI / 180;
    c.angle({L"Specify rotation angle about " + std::wstring(1, axis) + L" axis <" +
             c.angleText(angle) + L">: "},
            angle);
    const AcGeVector3d& vector = axis == L'X'   ? AcGeVector3d::kXAxis
                                 : axis == L'Y' ? AcGeVector3d::kYAxis
                                                : AcGeVector3d::kZAxis;
    change(c, c.userToWorld() * AcGeMatrix3d::rotation(angle, vector));
}

void alongZ(Command& c) {
    AcGePoint3d origin;
    c.point({L"Specify new origin point <0,0,0>: "}, origin);
    AcGePoint3d onZ = origin + AcGeVector3d::kZAxis;
    c.point({L"Specify point on positive portion of Z-axis: ", origin}, onZ);
    const AcGeVector3d z = c.world(onZ - origin);
    if (!z.isZeroLength()) change(c, systemAlong(c.world(origin), z.normal()));
}

void onObject(Command& c) {
    const AcDbObjectId id = c.pick(L"Select object to align UCS: ");
    const auto* const entity = model::peek<AcDbEntity>(id);
    if (entity == nullptr) return;
    const model::Unguarded guard(*entity);
    AcGeMatrix3d plane;
    entity->getEcs(plane);
    const AcGeVector3d z = plane * AcGeVector3d::kZAxis;
    const auto* const curve = AcDbCurve::cast(entity);
    AcGePoint3d start;
    AcGeVector3d x;
    double parameter = 0;
    const bool isCurve = curve != nullptr && curve->getStartPoint(start) == Acad::eOk &&
                         curve->getStartParam(parameter) == Acad::eOk &&
                         curve->getFirstDeriv(parameter, x) == Acad::eOk && !x.isZeroLength() &&
                         std::abs(x.normal().dotProduct(z)) < 1e-9;
    change(c, isCurve ? systemOf(start, x, z) : systemAlong(originOf(plane), z));
}

// ---- Named systems ------------------------------------------------------------------------------

void saveAs(Command& c, const std::wstring& name) {
    AcDbUCSTable* table = nullptr;
    AcDbUCSTableRecord* record = nullptr;
    if (acdbOpenObject(table, c.database().UCSTableId(), AcDb::kForWrite) != Acad::eOk) return;
    if (table->getAt(name.c_str(), record, AcDb::kForWrite) != Acad::eOk) {
        auto made = std::make_unique<AcDbUCSTableRecord>();
        if (made->setName(name.c_str()) == Acad::eOk && table->add(made.get()) == Acad::eOk) {
            record = made.release();
        }
    }
    table->close();
    if (record == nullptr) {
        c.print(L"Invalid UCS name.");
        return;
    }
    const AcGeMatrix3d system = c.userToWorld();
    const AcGeVector3d x = axisOf(system, AcGeVector3d::kXAxis);
    const AcGeVector3d y = axisOf(system, AcGeVector3d::kYAxis);
    record->fields().set(10, originOf(system));
    record->fields().set(11, AcGePoint3d(x.x, x.y, x.z));
    record->fields().set(12, AcGePoint3d(y.x, y.y, y.z));
    const AcDbObjectId id = record->objectId();
    record->close();
    store(c, system, id);
}

void restore(Command& c, const std::wstring& name) {
    const AcDbObjectId id = model::recordNamed(&c.database(), model::NamedIn::ucs, name);
    const auto* const record = model::peek<AcDbUCSTableRecord>(id);
    if (record == nullptr) {
        c.print(L"Cannot find UCS \"" + name + L"\".");
        return;
    }
    const model::RecordFields& fields = record->fields();
    const AcGeVector3d x = fields.get<AcGePoint3d>(11).asVector();
    const AcGeVector3d y = fields.get<AcGePoint3d>(12).asVector();
    change(c, systemOf(fields.get<AcGePoint3d>(10), x, x.crossProduct(y)), id);
}

void eraseNamed(Command& c, const std::wstring& list) {
    for (const NamedRecord& found : recordsMatching(c.database().UCSTableId(), list)) {
        AcDbObject* record = nullptr;
        if (acdbOpenAcDbObject(record, found.id, AcDb::kForWrite) != Acad::eOk) continue;
        record->erase();
        record->close();
    }
}

void namedOption(Command& c, const std::wstring& option) {
    if (option == L"Restore") {
        restore(c, std::wstring(trimmed(c.text(L"Enter name of UCS to restore or [?]: "))));
    } else if (option == L"Save") {
        saveAs(c, std::wstring(trimmed(c.text(L"Enter name to save current UCS or [?]: "))));
    } else if (option == L"Delete") {
        eraseNamed(c, c.text(L"Enter UCS name(s) to delete <none>: "));
    } else if (option == L"?") {
        listRecords(c, c.database().UCSTableId(), L"Saved coordinate systems:");
    }
}

void previous(Command& c) {
    auto& systems = c.document().memory.systems;
    if (systems.empty()) {
        c.print(L"No previous coordinate system saved.");
        return;
    }
    store(c, systems.back(), {});
    systems.pop_back();
}

void takeOption(Command& c) {
    const std::wstring option = c.keyword();
    if (option == L"World") {
        change(c, AcGeMatrix3d());
    } else if (option == L"Previous") {
        previous(c);
    } else if (option == L"View") {
        AcGeMatrix3d view = model::displayToWorld(c.database());
        view.setTranslation(originOf(c.userToWorld()).asVector());
        change(c, view);
    } else if (option == L"OBject") {
        onObject(c);
    } else if (option == L"ZAxis") {
        alongZ(c);
    } else if (option == L"X" || option == L"Y" || option == L"Z") {
        rotateAbout(c, option[0]);
    } else if (option == L"3point") {
        fromPoints(c, c.needPoint({L"Specify new origin point: "}), false);
    } else if (option == L"Origin") {
        const AcGePoint3d origin = c.needPoint({L"Specify new origin point <0,0,0>: "});
        change(c, c.userToWorld() * AcGeMatrix3d::translation(origin.asVector()));
    } else if (option == L"NAmed") {
        namedOption(c, c.option(L"Enter an option [Restore/Save/Delete/?]: "));
    } else {
        namedOption(c, option);
    }
}

}  // namespace

void userCoordinates(Command& c) {
    const std::wstring name = c.textOf(L"UCSNAME");
    const bool isWorld = c.userToWorld() == AcGeMatrix3d();
    c.print(L"Current ucs name:  " + (name.empty() ? (isWorld ? L"*WORLD*" : L"*NO NAME*") : name));
    AcGePoint3d origin;
    // "New" is what an older form of the command asked for before the rest.
    for (;;) {
        const Reply reply = c.point(
            {L"Specify origin of UCS or [NAmed/OBject/Previous/View/World/X/Y/Z/ZAxis] <World>: ",
             std::nullopt, 0, L"New Origin 3point Restore Save Delete ?"},
            origin);
        if (reply == Reply::enter) return change(c, AcGeMatrix3d());
        if (reply == Reply::value) return fromPoints(c, origin, true);
        if (!c.is(L"New")) return takeOption(c);
    }
}

}  // namespace sg::commands
