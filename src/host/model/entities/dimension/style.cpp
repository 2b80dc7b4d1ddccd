#include <algorithm>
#include <cmath>

#include "host/lisp/text/units.h"
#include "host/model/entities/dimension/sketch.h"
#include "platform/db/database.h"

// The style that a dimension is drawn by, and its numbers as text.

namespace sg::model {

namespace {

VariableValue overridden(const resbuf& group, const VariableValue& like, AcDbDatabase* database) {
    switch (group.restype) {
        case 1000:
            if (std::holds_alternative<std::wstring>(like))
                return std::wstring(group.resval.rstring);
            break;
        case 1005: {
            AcDbObjectId id;
            if (std::holds_alternative<AcDbObjectId>(like) && database != nullptr) {
                database->getAcDbObjectId(id, false, AcDbHandle(group.resval.rstring));
                return id;
            }
            break;
        }
        case 1040:
            if (std::holds_alternative<double>(like)) return group.resval.rreal;
            break;
        case 1070:
            if (std::holds_alternative<int32_t>(like)) return int32_t{group.resval.rint};
            if (std::holds_alternative<AcCmColor>(like)) {
                AcCmColor color;
                color.setColorIndex(static_cast<uint16_t>(group.resval.rint));
                return color;
            }
            break;
        default:
            break;
    }
    return like;
}

}  // namespace

DimensionStyle::DimensionStyle(const AcDbDimension& dimension) {
    AcDbDimStyleTableRecord* record = nullptr;
    const bool found =
        acdbOpenObject(record, dimension.dimensionStyle(), AcDb::kForRead, true) == Acad::eOk;
    const auto rows = dimVariableRows();
    values_.reserve(rows.size());
    for (size_t i = 0; i < rows.size(); ++i)
        values_.push_back(found ? record->value(i) : rows[i].variable.initial);
    if (found) record->close();
    takeOverrides(dimension);
    const double scale = real(L"DIMSCALE");
    scale_ = scale > 0 ? scale : 1;
}

// Pairs of a variable's code and its value, in braces behind the word DSTYLE.
void DimensionStyle::takeOverrides(const AcDbDimension& dimension) {
    resbuf* const data = dimension.xData(L"ACAD");
    const resbuf* node = data;
    while (node != nullptr && (node->restype != 1000 || node->resval.rstring == nullptr ||
                               std::wstring_view(node->resval.rstring) != L"DSTYLE")) {
        node = node->rbnext;
    }
    if (node != nullptr) node = node->rbnext;
    if (node != nullptr) node = node->rbnext;  // past the brace
    for (; node != nullptr && node->restype == 1070 && node->rbnext != nullptr;
         node = node->rbnext->rbnext) {
        const auto place = findDimVariable(node->resval.rint);
        if (!place) continue;
        values_[*place] = overridden(*node->rbnext, values_[*place], dimension.database());
    }
    acutRelRb(data);
}

std::wstring DimensionStyle::formatted(double value, bool isAngle) const {
    UnitSettings settings;
    if (isAngle) {
        const int32_t zeros = integer(L"DIMAZIN");
        settings.dimzin = (zeros & 1 ? 4 : 0) | (zeros & 2 ? 8 : 0);
        const int32_t own = integer(L"DIMADEC");
        const int32_t unit = integer(L"DIMAUNIT");
        const int32_t places = own < 0 ? integer(L"DIMDEC") : own;
        std::wstring angle = formatAngle(value, unit, places, settings);
        if (unit == 0) return angle + L"%%d";
        const size_t degrees = angle.find(L'd');
        if (degrees != std::wstring::npos) angle.replace(degrees, 1, L"%%d");
        return angle;
    }
    settings.dimzin = integer(L"DIMZIN");
    double length = value * std::abs(real(L"DIMLFAC"));
    const double step = real(L"DIMRND");
    if (step > 0) length = std::round(length / step) * step;
    const int32_t unit = integer(L"DIMLUNIT");
    std::wstring text = formatDistance(length, unit == 6 ? 2 : unit, integer(L"DIMDEC"), settings);
    const int32_t separator = integer(L"DIMDSEP");
    if (unit == 2 && separator > 0) {
        std::replace(text.begin(), text.end(), L'.', static_cast<wchar_t>(separator));
    }
    return text;
}

}  // namespace sg::model
