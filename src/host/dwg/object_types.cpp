#include "host/dwg/object_types.h"

#include <algorithm>
#include <iterator>

namespace sg::dwg {
namespace {

constexpr int16_t k2000 = AcDb::kDHL_1015;
constexpr int16_t k2004 = AcDb::kDHL_1018;

// Ascending.
constexpr ObjectType kTypes[] = {
    {1, L"TEXT", L"AcDbText", true},
    {2, L"ATTRIB", L"AcDbAttribute", true},
    {3, L"ATTDEF", L"AcDbAttributeDefinition", true},
    {kBlockBegin, L"BLOCK", L"AcDbBlockBegin", true},
    {kBlockEnd, L"ENDBLK", L"AcDbBlockEnd", true},
    {kSequenceEnd, L"SEQEND", L"AcDbSequenceEnd", true},
    {7, L"INSERT", L"AcDbBlockReference", true},
    {8, L"INSERT", L"AcDbMInsertBlock", true},
    {10, L"VERTEX", L"AcDb2dVertex", true},
    {11, L"VERTEX", L"AcDb3dPolylineVertex", true},
    {12, L"VERTEX", L"AcDbPolygonMeshVertex", true},
    {13, L"VERTEX", L"AcDbPolyFaceMeshVertex", true},
    {14, L"VERTEX", L"AcDbFaceRecord", true},
    {15, L"POLYLINE", L"AcDb2dPolyline", true},
    {16, L"POLYLINE", L"AcDb3dPolyline", true},
    {17, L"ARC", L"AcDbArc", true},
    {18, L"CIRCLE", L"AcDbCircle", true},
    {19, L"LINE", L"AcDbLine", true},
    {20, L"DIMENSION", L"AcDbOrdinateDimension", true},
    {21, L"DIMENSION", L"AcDbRotatedDimension", true},
    {22, L"DIMENSION", L"AcDbAlignedDimension", true},
    {23, L"DIMENSION", L"AcDb3PointAngularDimension", true},
    {24, L"DIMENSION", L"AcDb2LineAngularDimension", true},
    {25, L"DIMENSION", L"AcDbRadialDimension", true},
    {26, L"DIMENSION", L"AcDbDiametricDimension", true},
    {27, L"POINT", L"AcDbPoint", true},
    {28, L"3DFACE", L"AcDbFace", true},
    {29, L"POLYLINE", L"AcDbPolyFaceMesh", true},
    {30, L"POLYLINE", L"AcDbPolygonMesh", true},
    {31, L"SOLID", L"AcDbSolid", true},
    {32, L"TRACE", L"AcDbTrace", true},
    {33, L"SHAPE", L"AcDbShape", true},
    {34, L"VIEWPORT", L"AcDbViewport", true},
    {35, L"ELLIPSE", L"AcDbEllipse", true},
    {36, L"SPLINE", L"AcDbSpline", true},
    {37, L"REGION", L"AcDbRegion", true},
    {38, L"3DSOLID", L"AcDb3dSolid", true},
    {39, L"BODY", L"AcDbBody", true},
    {40, L"RAY", L"AcDbRay", true},
    {41, L"XLINE", L"AcDbXline", true},
    {42, L"DICTIONARY", L"AcDbDictionary", false},
    {43, L"OLEFRAME", L"AcDbOleFrame", true},
    {44, L"MTEXT", L"AcDbMText", true},
    {45, L"LEADER", L"AcDbLeader", true},
    {46, L"TOLERANCE", L"AcDbFcf", true},
    {47, L"MLINE", L"AcDbMline", true},
    {kFirstTable, L"TABLE", L"AcDbBlockTable", false},
    {49, L"BLOCK_RECORD", L"AcDbBlockTableRecord", false},
    {50, L"TABLE", L"AcDbLayerTable", false},
    {51, L"LAYER", L"AcDbLayerTableRecord", false},
    {52, L"TABLE", L"AcDbTextStyleTable", false},
    {53, L"STYLE", L"AcDbTextStyleTableRecord", false},
    {56, L"TABLE", L"AcDbLinetypeTable", false},
    {57, L"LTYPE", L"AcDbLinetypeTableRecord", false},
    {60, L"TABLE", L"AcDbViewTable", false},
    {61, L"VIEW", L"AcDbViewTableRecord", false},
    {62, L"TABLE", L"AcDbUCSTable", false},
    {63, L"UCS", L"AcDbUCSTableRecord", false},
    {64, L"TABLE", L"AcDbViewportTable", false},
    {65, L"VPORT", L"AcDbViewportTableRecord", false},
    {66, L"TABLE", L"AcDbRegAppTable", false},
    {67, L"APPID", L"AcDbRegAppTableRecord", false},
    {68, L"TABLE", L"AcDbDimStyleTable", false},
    {69, L"DIMSTYLE", L"AcDbDimStyleTableRecord", false},
    {kViewportHeaders, L"VX_CONTROL", L"AcDbVXTable", false},
    {kLastTable, L"VX", L"AcDbVXTableRecord", false},
    {72, L"GROUP", L"AcDbGroup", false},
    {73, L"MLINESTYLE", L"AcDbMlineStyle", false},
    {74, L"OLE2FRAME", L"AcDbOle2Frame", true},
    {75, L"DUMMY", L"AcDbDummy", false},
    {76, L"LONG_TRANSACTION", L"AcDbLongTransaction", false},
    {77, L"LWPOLYLINE", L"AcDbPolyline", true, k2000},
    {78, L"HATCH", L"AcDbHatch", true, k2000},
    {79, L"XRECORD", L"AcDbXrecord", false, k2000},
    {80, L"ACDBPLACEHOLDER", L"AcDbPlaceHolder", false, k2004},
    {81, L"VBA_PROJECT", L"AcDbVbaProject", false, k2004},
    {82, L"LAYOUT", L"AcDbLayout", false, k2004},
    {kProxyEntity, L"ACAD_PROXY_ENTITY", L"AcDbProxyEntity", true},
    {kProxyObject, L"ACAD_PROXY_OBJECT", L"AcDbProxyObject", false},
};

}  // namespace

std::span<const ObjectType> objectTypes() {
    return kTypes;
}

const ObjectType* objectType(uint16_t number) {
    const auto* const found = std::lower_bound(
        std::begin(kTypes), std::end(kTypes), number,
        [](const ObjectType& type, uint16_t sought) { return type.number < sought; });
    return found == std::end(kTypes) || found->number != number ? nullptr : found;
}

}  // namespace sg::dwg
