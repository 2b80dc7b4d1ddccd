#include "host/model/tables/dim_variables.h"

#include <numbers>

#include "base/text.h"

namespace sg::model {
namespace {

constexpr int16_t k2000 = 23;
constexpr int16_t k2007 = 27;
constexpr int16_t k2010 = 29;

DimVariableRow integer(const wchar_t* name, int code, int initial, int header = 70,
                       int16_t since = k2000) {
    return {{name, static_cast<int16_t>(code), int32_t(initial), NamedIn::nothing, false, since},
            static_cast<int16_t>(header)};
}
DimVariableRow real(const wchar_t* name, int code, double initial, int16_t since = k2000) {
    return {{name, static_cast<int16_t>(code), initial, NamedIn::nothing, false, since}, 40};
}
DimVariableRow text(const wchar_t* name, int code) {
    return {{name, static_cast<int16_t>(code), std::wstring()}, 1};
}
DimVariableRow color(const wchar_t* name, int code, int16_t since = k2000) {
    AcCmColor byBlock;
    byBlock.setColorIndex(0);
    return {{name, static_cast<int16_t>(code), byBlock, NamedIn::nothing, false, since}, 70};
}
DimVariableRow object(const wchar_t* name, int code, NamedIn table, int header,
                      int16_t since = k2000) {
    return {{name, static_cast<int16_t>(code), AcDbObjectId(), table, false, since},
            static_cast<int16_t>(header)};
}

const std::vector<DimVariableRow>& rows() {
    static const std::vector<DimVariableRow> kRows = {
        text(L"DIMPOST", 3),
        text(L"DIMAPOST", 4),
        real(L"DIMSCALE", 40, 1),
        real(L"DIMASZ", 41, 0.18),
        real(L"DIMEXO", 42, 0.0625),
        real(L"DIMDLI", 43, 0.38),
        real(L"DIMEXE", 44, 0.18),
        real(L"DIMRND", 45, 0),
        real(L"DIMDLE", 46, 0),
        real(L"DIMTP", 47, 0),
        real(L"DIMTM", 48, 0),
        real(L"DIMFXL", 49, 1, k2007),
        real(L"DIMJOGANG", 50, std::numbers::pi / 4, k2007),
        integer(L"DIMTFILL", 69, 0, 70, k2007),
        color(L"DIMTFILLCLR", 70, k2007),
        integer(L"DIMTOL", 71, 0),
        integer(L"DIMLIM", 72, 0),
        integer(L"DIMTIH", 73, 1),
        integer(L"DIMTOH", 74, 1),
        integer(L"DIMSE1", 75, 0),
        integer(L"DIMSE2", 76, 0),
        integer(L"DIMTAD", 77, 0),
        integer(L"DIMZIN", 78, 0),
        integer(L"DIMAZIN", 79, 0),
        integer(L"DIMARCSYM", 90, 0, 70, k2007),
        real(L"DIMTXT", 140, 0.18),
        real(L"DIMCEN", 141, 0.09),
        real(L"DIMTSZ", 142, 0),
        real(L"DIMALTF", 143, 25.4),
        real(L"DIMLFAC", 144, 1),
        real(L"DIMTVP", 145, 0),
        real(L"DIMTFAC", 146, 1),
        real(L"DIMGAP", 147, 0.09),
        real(L"DIMALTRND", 148, 0),
        integer(L"DIMALT", 170, 0),
        integer(L"DIMALTD", 171, 2),
        integer(L"DIMTOFL", 172, 0),
        integer(L"DIMSAH", 173, 0),
        integer(L"DIMTIX", 174, 0),
        integer(L"DIMSOXD", 175, 0),
        color(L"DIMCLRD", 176),
        color(L"DIMCLRE", 177),
        color(L"DIMCLRT", 178),
        integer(L"DIMADEC", 179, 0),
        integer(L"DIMDEC", 271, 4),
        integer(L"DIMTDEC", 272, 4),
        integer(L"DIMALTU", 273, 2),
        integer(L"DIMALTTD", 274, 2),
        integer(L"DIMAUNIT", 275, 0),
        integer(L"DIMFRAC", 276, 0),
        integer(L"DIMLUNIT", 277, 2),
        integer(L"DIMDSEP", 278, '.'),
        integer(L"DIMTMOVE", 279, 0),
        integer(L"DIMJUST", 280, 0),
        integer(L"DIMSD1", 281, 0),
        integer(L"DIMSD2", 282, 0),
        integer(L"DIMTOLJ", 283, 1),
        integer(L"DIMTZIN", 284, 0),
        integer(L"DIMALTZ", 285, 0),
        integer(L"DIMALTTZ", 286, 0),
        integer(L"DIMUPT", 288, 0),
        integer(L"DIMATFIT", 289, 3),
        integer(L"DIMFXLON", 290, 0, 70, k2007),
        integer(L"DIMTXTDIRECTION", 294, 0, 70, k2010),
        object(L"DIMTXSTY", 340, NamedIn::textStyles, 7),
        object(L"DIMLDRBLK", 341, NamedIn::blocks, 1),
        object(L"DIMBLK", 342, NamedIn::blocks, 1),
        object(L"DIMBLK1", 343, NamedIn::blocks, 1),
        object(L"DIMBLK2", 344, NamedIn::blocks, 1),
        object(L"DIMLTYPE", 345, NamedIn::linetypes, 6, k2007),
        object(L"DIMLTEX1", 346, NamedIn::linetypes, 6, k2007),
        object(L"DIMLTEX2", 347, NamedIn::linetypes, 6, k2007),
        integer(L"DIMLWD", 371, -2),
        integer(L"DIMLWE", 372, -2),
    };
    return kRows;
}

template <class Matches>
std::optional<size_t> findWhere(const Matches& matches) {
    for (size_t i = 0; i < rows().size(); ++i) {
        if (matches(rows()[i].variable)) return i;
    }
    return std::nullopt;
}

}  // namespace

std::span<const DimVariableRow> dimVariableRows() {
    return rows();
}

std::optional<size_t> findDimVariable(std::wstring_view name) {
    return findWhere([&](const VariableRow& row) { return equalIgnoringCase(row.name, name); });
}

std::optional<size_t> findDimVariable(int code) {
    return findWhere([&](const VariableRow& row) { return row.code == code; });
}

}  // namespace sg::model
