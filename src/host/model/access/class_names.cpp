#include "host/model/access/class_names.h"

#include <algorithm>
#include <array>
#include <cwchar>

#include "base/text.h"
#include "host/model/access/entity_maker.h"
#include "host/model/curves/polyline_3d.h"
#include "host/model/entities/dimension/kinds.h"
#include "host/model/entities/mesh/mesh.h"
#include "host/model/tables/dim_style_table.h"
#include "host/model/tables/reg_app_table.h"
#include "host/model/tables/view_tables.h"
#include "host/rx/class_registry.h"
#include "host/seam/host.h"
#include "platform/db/block_reference.h"
#include "platform/db/polyline_2d.h"

namespace sg::model {
namespace {

enum : int { kType = 0, kFlags = 70, kColumns = 70, kRows = 71, kMarker = 100 };
constexpr int k3dPolyline = 8;
constexpr int kMesh = 16;
constexpr int k3dVertex = 32;
constexpr int kPolyface = 64;
constexpr int kMeshVertex = 64;
constexpr int kPolyfaceVertex = 128;

int flagAt(const resbuf* groups, int code) {
    const resbuf* const group = findGroup(groups, code);
    return group == nullptr ? 0 : group->resval.rint;
}

bool hasMarker(const resbuf* groups, const wchar_t* name) {
    for (const resbuf* group = groups; group != nullptr; group = group->rbnext) {
        if (group->restype == kMarker && group->resval.rstring != nullptr &&
            std::wcscmp(group->resval.rstring, name) == 0) {
            return true;
        }
    }
    return false;
}

// By a marker, or where a list has none, by the flags.
const AcRxClass* polylineClass(const resbuf* groups, int flags) {
    for (AcRxClass* const each :
         {AcDb3dPolyline::desc(), AcDbPolyFaceMesh::desc(), AcDbPolygonMesh::desc()}) {
        if (hasMarker(groups, each->name())) return each;
    }
    if ((flags & kPolyface) != 0) return AcDbPolyFaceMesh::desc();
    if ((flags & kMesh) != 0) return AcDbPolygonMesh::desc();
    return (flags & k3dPolyline) != 0 ? AcDb3dPolyline::desc() : AcDb2dPolyline::desc();
}

const AcRxClass* vertexClass(const resbuf* groups, int flags) {
    for (AcRxClass* const each : {AcDb3dPolylineVertex::desc(), AcDbPolyFaceMeshVertex::desc(),
                                  AcDbPolygonMeshVertex::desc(), AcDbFaceRecord::desc()}) {
        if (hasMarker(groups, each->name())) return each;
    }
    const bool isMesh = (flags & kMeshVertex) != 0;
    if ((flags & kPolyfaceVertex) != 0) {
        return isMesh ? AcDbPolyFaceMeshVertex::desc() : AcDbFaceRecord::desc();
    }
    if (isMesh) return AcDbPolygonMeshVertex::desc();
    return (flags & k3dVertex) != 0 ? AcDb3dPolylineVertex::desc() : AcDb2dVertex::desc();
}

// By the markers, or where a list has none, by the kind in the flags.
const AcRxClass* dimensionClass(const resbuf* groups, int flags) {
    // A class before the one that it stands on.
    for (AcRxClass* const each : {AcDbRotatedDimension::desc(), AcDbAlignedDimension::desc(),
                                  AcDb2LineAngularDimension::desc(),
                                  AcDb3PointAngularDimension::desc(), AcDbRadialDimension::desc(),
                                  AcDbDiametricDimension::desc(), AcDbOrdinateDimension::desc()}) {
        if (hasMarker(groups, each->name())) return each;
    }
    using Kind = AcDbDimension::Kind;
    switch (static_cast<Kind>(flags & 7)) {
        case Kind::Aligned:
            return AcDbAlignedDimension::desc();
        case Kind::Angular2Line:
            return AcDb2LineAngularDimension::desc();
        case Kind::Angular3Point:
            return AcDb3PointAngularDimension::desc();
        case Kind::Diametric:
            return AcDbDiametricDimension::desc();
        case Kind::Radial:
            return AcDbRadialDimension::desc();
        case Kind::Ordinate:
            return AcDbOrdinateDimension::desc();
        default:
            return AcDbRotatedDimension::desc();
    }
}

const AcRxClass* insertClass(const resbuf* groups) {
    const bool isArray = hasMarker(groups, L"AcDbMInsertBlock") || flagAt(groups, kColumns) > 1 ||
                         flagAt(groups, kRows) > 1;
    return isArray ? AcDbMInsertBlock::desc() : AcDbBlockReference::desc();
}

struct Table {
    const wchar_t* name;
    AcDbObjectId (AcDbDatabase::*id)() const;
};
constexpr std::array kTables = {
    Table{L"BLOCK", &AcDbDatabase::blockTableId},
    Table{L"LAYER", &AcDbDatabase::layerTableId},
    Table{L"LTYPE", &AcDbDatabase::linetypeTableId},
    Table{L"STYLE", &AcDbDatabase::textStyleTableId},
    Table{L"DIMSTYLE", &AcDbDatabase::dimStyleTableId},
    Table{L"VIEW", &AcDbDatabase::viewTableId},
    Table{L"VPORT", &AcDbDatabase::viewportTableId},
    Table{L"UCS", &AcDbDatabase::UCSTableId},
    Table{L"APPID", &AcDbDatabase::regAppTableId},
};

}  // namespace

const AcRxClass* classOfGroups(const resbuf* groups) {
    const resbuf* const type = findGroup(groups, kType);
    if (type == nullptr || type->resval.rstring == nullptr) return nullptr;
    const std::wstring name = upperCased(type->resval.rstring);
    const int bits = flagAt(groups, kFlags);
    if (name == L"POLYLINE") return polylineClass(groups, bits);
    if (name == L"VERTEX") return vertexClass(groups, bits);
    if (name == L"DIMENSION") return dimensionClass(groups, bits);
    if (name == L"INSERT") return insertClass(groups);
    return Host::the().classes().findByDxfName(name);
}

AcDbObjectId tableOfRecords(const AcDbDatabase& database, const AcRxClass* type) {
    for (const Table& table : kTables) {
        const AcDbObjectId id = (database.*table.id)();
        AcDbSymbolTable* opened = nullptr;
        if (acdbOpenObject(opened, id) != Acad::eOk) continue;
        const bool found = type->isDerivedFrom(opened->recordClass());
        opened->close();
        if (found) return id;
    }
    return {};
}

AcDbObjectId tableNamed(const AcDbDatabase& database, std::wstring_view name) {
    for (const Table& table : kTables) {
        if (equalIgnoringCase(table.name, name)) return (database.*table.id)();
    }
    return {};
}

}  // namespace sg::model
