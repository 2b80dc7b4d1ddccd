#include <string_view>

#include "host/model/kept/kept_form.h"

// For which releases the bits of a kept object will do.

namespace sg::model {
namespace {

// From release 2007 on texts stand apart and nothing else changed for all classes.
constexpr AcDb::AcDbDwgVersion kFirstAlike = AcDb::kDHL_1021;

// Classes, by their names or how these begin, with a release in which they changed.
struct Change {
    std::wstring_view name;
    AcDb::AcDbDwgVersion release;
};

constexpr Change kChanges[] = {
    {L"ACAD_TABLE", AcDb::kDHL_1024},
    {L"MLEADERSTYLE", AcDb::kDHL_1024},
    {L"MLEADERSTYLE", AcDb::kDHL_1027},
    {L"MULTILEADER", AcDb::kDHL_1024},
    {L"MULTILEADER", AcDb::kDHL_1027},
    {L"TABLESTYLE", AcDb::kDHL_1024},
    {L"VISUALSTYLE", AcDb::kDHL_1024},
    {L"VISUALSTYLE", AcDb::kDHL_1027},
    {L"3DSOLID", AcDb::kDHL_1027},
    {L"ACDBASSOC", AcDb::kDHL_1027},
    {L"BODY", AcDb::kDHL_1027},
    {L"EXTRUDEDSURFACE", AcDb::kDHL_1027},
    {L"HELIX", AcDb::kDHL_1027},
    {L"LOFTEDSURFACE", AcDb::kDHL_1027},
    {L"MPOLYGON", AcDb::kDHL_1027},
    {L"NURBSURFACE", AcDb::kDHL_1027},
    {L"PLANESURFACE", AcDb::kDHL_1027},
    {L"POINTCLOUD", AcDb::kDHL_1027},
    {L"REGION", AcDb::kDHL_1027},
    {L"REVOLVEDSURFACE", AcDb::kDHL_1027},
    {L"SWEPTSURFACE", AcDb::kDHL_1027},
    {L"ACAD_PROXY", AcDb::kDHL_1032},
    {L"ACDBDETAILVIEWSTYLE", AcDb::kDHL_1032},
    {L"ACDBSECTIONVIEWSTYLE", AcDb::kDHL_1032},
    {L"ATTDEF", AcDb::kDHL_1032},
    {L"ATTRIB", AcDb::kDHL_1032},
    {L"MTEXT", AcDb::kDHL_1032},
};

}  // namespace

bool keepsBitsFor(const ProxyData& data, AcDb::AcDbDwgVersion release) {
    if (data.bits == nullptr) return false;
    const int16_t own = data.bits->release;
    if (own == release) return true;
    if (own < kFirstAlike || release < own) return false;
    for (const Change& change : kChanges) {
        const bool isBetween = change.release > own && change.release <= release;
        if (isBetween && data.dxfName.starts_with(change.name)) return false;
    }
    return true;
}

}  // namespace sg::model
