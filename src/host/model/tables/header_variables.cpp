#include "host/model/tables/header_variables.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <unordered_map>

#include "base/encoding.h"
#include "base/text.h"
#include "host/model/tables/dim_variables.h"

namespace sg::model {
namespace {

constexpr int16_t k2000 = 23;
constexpr int16_t k2004 = 25;
constexpr int16_t k2007 = 27;

VariableRow row(const wchar_t* name, int code, VariableValue initial, int16_t since = k2000) {
    return {name, static_cast<int16_t>(code), std::move(initial), NamedIn::nothing, false, since};
}
VariableRow integer(const wchar_t* name, int code, int initial, int16_t since = k2000) {
    return row(name, code, int32_t(initial), since);
}
VariableRow real(const wchar_t* name, int code, double initial, int16_t since = k2000) {
    return row(name, code, initial, since);
}
VariableRow point(const wchar_t* name, double x, double y, double z) {
    return row(name, 10, AcGePoint3d(x, y, z));
}
VariableRow flat(const wchar_t* name, double x, double y) {
    VariableRow made = point(name, x, y, 0);
    made.flat = true;
    return made;
}
VariableRow text(const wchar_t* name, int code, const wchar_t* initial) {
    return row(name, code, std::wstring(initial));
}
VariableRow color(const wchar_t* name, int code, int index, int16_t since = k2000) {
    AcCmColor initial;
    initial.setColorIndex(static_cast<uint16_t>(index));
    return row(name, code, initial, since);
}
VariableRow object(const wchar_t* name, int code, NamedIn table, int16_t since = k2000) {
    VariableRow made = row(name, code, AcDbObjectId(), since);
    made.table = table;
    return made;
}

// Before the dimension variables, and after them.
const std::vector<VariableRow>& rowsBefore() {
    static const std::vector<VariableRow> kRows = {
        point(L"INSBASE", 0, 0, 0),
        point(L"EXTMIN", 1e20, 1e20, 1e20),
        point(L"EXTMAX", -1e20, -1e20, -1e20),
        flat(L"LIMMIN", 0, 0),
        flat(L"LIMMAX", 12, 9),
        integer(L"ORTHOMODE", 70, 0),
        integer(L"REGENMODE", 70, 1),
        integer(L"FILLMODE", 70, 1),
        integer(L"QTEXTMODE", 70, 0),
        integer(L"MIRRTEXT", 70, 0),
        real(L"LTSCALE", 40, 1),
        integer(L"ATTMODE", 70, 1),
        real(L"TEXTSIZE", 40, 0.2),
        real(L"TRACEWID", 40, 0.05),
        object(L"TEXTSTYLE", 7, NamedIn::textStyles),
        object(L"CLAYER", 8, NamedIn::layers),
        object(L"CELTYPE", 6, NamedIn::linetypes),
        color(L"CECOLOR", 62, 256),
        real(L"CELTSCALE", 40, 1),
        integer(L"DISPSILH", 70, 0),
    };
    return kRows;
}

const std::vector<VariableRow>& rowsAfter() {
    static const std::vector<VariableRow> kRows = {
        object(L"DIMSTYLE", 2, NamedIn::dimStyles),
        integer(L"DIMASO", 70, 1),
        integer(L"DIMSHO", 70, 1),
        integer(L"LUNITS", 70, 2),
        integer(L"LUPREC", 70, 4),
        real(L"SKETCHINC", 40, 0.1),
        real(L"FILLETRAD", 40, 0),
        integer(L"AUNITS", 70, 0),
        integer(L"AUPREC", 70, 0),
        text(L"MENU", 1, L"."),
        real(L"ELEVATION", 40, 0),
        real(L"PELEVATION", 40, 0),
        real(L"THICKNESS", 40, 0),
        integer(L"LIMCHECK", 70, 0),
        real(L"CHAMFERA", 40, 0),
        real(L"CHAMFERB", 40, 0),
        real(L"CHAMFERC", 40, 0),
        real(L"CHAMFERD", 40, 0),
        integer(L"SKPOLY", 70, 0),
        real(L"TDCREATE", 40, 0),
        real(L"TDUCREATE", 40, 0),
        real(L"TDUPDATE", 40, 0),
        real(L"TDUUPDATE", 40, 0),
        real(L"TDINDWG", 40, 0),
        real(L"TDUSRTIMER", 40, 0),
        integer(L"USRTIMER", 70, 1),
        real(L"ANGBASE", 50, 0),
        integer(L"ANGDIR", 70, 0),
        integer(L"PDMODE", 70, 0),
        real(L"PDSIZE", 40, 0),
        real(L"PLINEWID", 40, 0),
        integer(L"SPLFRAME", 70, 0),
        integer(L"SPLINETYPE", 70, 6),
        integer(L"SPLINESEGS", 70, 8),
        integer(L"SURFTAB1", 70, 6),
        integer(L"SURFTAB2", 70, 6),
        integer(L"SURFTYPE", 70, 6),
        integer(L"SURFU", 70, 6),
        integer(L"SURFV", 70, 6),
        object(L"UCSBASE", 2, NamedIn::ucs),
        object(L"UCSNAME", 2, NamedIn::ucs),
        point(L"UCSORG", 0, 0, 0),
        point(L"UCSXDIR", 1, 0, 0),
        point(L"UCSYDIR", 0, 1, 0),
        object(L"UCSORTHOREF", 2, NamedIn::ucs),
        integer(L"UCSORTHOVIEW", 70, 0),
        point(L"UCSORGTOP", 0, 0, 0),
        point(L"UCSORGBOTTOM", 0, 0, 0),
        point(L"UCSORGLEFT", 0, 0, 0),
        point(L"UCSORGRIGHT", 0, 0, 0),
        point(L"UCSORGFRONT", 0, 0, 0),
        point(L"UCSORGBACK", 0, 0, 0),
        object(L"PUCSBASE", 2, NamedIn::ucs),
        object(L"PUCSNAME", 2, NamedIn::ucs),
        point(L"PUCSORG", 0, 0, 0),
        point(L"PUCSXDIR", 1, 0, 0),
        point(L"PUCSYDIR", 0, 1, 0),
        object(L"PUCSORTHOREF", 2, NamedIn::ucs),
        integer(L"PUCSORTHOVIEW", 70, 0),
        point(L"PUCSORGTOP", 0, 0, 0),
        point(L"PUCSORGBOTTOM", 0, 0, 0),
        point(L"PUCSORGLEFT", 0, 0, 0),
        point(L"PUCSORGRIGHT", 0, 0, 0),
        point(L"PUCSORGFRONT", 0, 0, 0),
        point(L"PUCSORGBACK", 0, 0, 0),
        integer(L"USERI1", 70, 0),
        integer(L"USERI2", 70, 0),
        integer(L"USERI3", 70, 0),
        integer(L"USERI4", 70, 0),
        integer(L"USERI5", 70, 0),
        real(L"USERR1", 40, 0),
        real(L"USERR2", 40, 0),
        real(L"USERR3", 40, 0),
        real(L"USERR4", 40, 0),
        real(L"USERR5", 40, 0),
        integer(L"WORLDVIEW", 70, 1),
        integer(L"SHADEDGE", 70, 3),
        integer(L"SHADEDIF", 70, 70),
        integer(L"TILEMODE", 70, 1),
        integer(L"MAXACTVP", 70, 64),
        point(L"PINSBASE", 0, 0, 0),
        integer(L"PLIMCHECK", 70, 0),
        point(L"PEXTMIN", 1e20, 1e20, 1e20),
        point(L"PEXTMAX", -1e20, -1e20, -1e20),
        flat(L"PLIMMIN", 0, 0),
        flat(L"PLIMMAX", 12, 9),
        integer(L"UNITMODE", 70, 0),
        integer(L"VISRETAIN", 70, 1),
        integer(L"PLINEGEN", 70, 0),
        integer(L"PSLTSCALE", 70, 1),
        integer(L"TREEDEPTH", 70, 3020),
        text(L"CMLSTYLE", 2, L"Standard"),
        integer(L"CMLJUST", 70, 0),
        real(L"CMLSCALE", 40, 1),
        integer(L"PROXYGRAPHICS", 70, 1),
        integer(L"MEASUREMENT", 70, 0),
        integer(L"CELWEIGHT", 370, -1),
        integer(L"ENDCAPS", 280, 0),
        integer(L"JOINSTYLE", 280, 0),
        integer(L"LWDISPLAY", 290, 0),
        integer(L"INSUNITS", 70, 1),
        text(L"HYPERLINKBASE", 1, L""),
        text(L"STYLESHEET", 1, L""),
        integer(L"XEDIT", 290, 1),
        integer(L"CEPSNTYPE", 380, 0),
        integer(L"PSTYLEMODE", 290, 1),
        text(L"FINGERPRINTGUID", 2, L""),
        text(L"VERSIONGUID", 2, L""),
        integer(L"EXTNAMES", 290, 1),
        real(L"PSVPSCALE", 40, 0),
        integer(L"OLESTARTUP", 290, 0),
        integer(L"SORTENTS", 280, 127, k2004),
        integer(L"INDEXCTL", 280, 0, k2004),
        integer(L"HIDETEXT", 280, 1, k2004),
        integer(L"XCLIPFRAME", 280, 2, k2004),
        integer(L"HALOGAP", 280, 0, k2004),
        integer(L"OBSCOLOR", 70, 257, k2004),
        integer(L"OBSLTYPE", 280, 0, k2004),
        integer(L"INTERSECTIONDISPLAY", 280, 0, k2004),
        integer(L"INTERSECTIONCOLOR", 70, 257, k2004),
        integer(L"DIMASSOC", 280, 2, k2004),
        text(L"PROJECTNAME", 1, L""),
        integer(L"CAMERADISPLAY", 290, 0, k2007),
        real(L"LENSLENGTH", 40, 50, k2007),
        real(L"CAMERAHEIGHT", 40, 0, k2007),
        real(L"STEPSPERSEC", 40, 2, k2007),
        real(L"STEPSIZE", 40, 6, k2007),
        real(L"3DDWFPREC", 40, 2, k2007),
        real(L"PSOLWIDTH", 40, 0.25, k2007),
        real(L"PSOLHEIGHT", 40, 4, k2007),
        real(L"LOFTANG1", 40, 1.5707963267948966, k2007),
        real(L"LOFTANG2", 40, 1.5707963267948966, k2007),
        real(L"LOFTMAG1", 40, 0, k2007),
        real(L"LOFTMAG2", 40, 0, k2007),
        integer(L"LOFTPARAM", 70, 7, k2007),
        integer(L"LOFTNORMALS", 280, 1, k2007),
        real(L"LATITUDE", 40, 37.795, k2007),
        real(L"LONGITUDE", 40, -122.394, k2007),
        real(L"NORTHDIRECTION", 40, 0, k2007),
        integer(L"TIMEZONE", 70, -8000, k2007),
        integer(L"LIGHTGLYPHDISPLAY", 280, 1, k2007),
        integer(L"TILEMODELIGHTSYNCH", 280, 1, k2007),
        object(L"CMATERIAL", 347, NamedIn::nothing, k2007),
        integer(L"SOLIDHIST", 280, 0, k2007),
        integer(L"SHOWHIST", 280, 1, k2007),
        integer(L"DWFFRAME", 280, 2, k2007),
        integer(L"DGNFRAME", 280, 2, k2007),
        integer(L"REALWORLDSCALE", 290, 1, k2007),
        color(L"INTERFERECOLOR", 62, 1, k2007),
        object(L"INTERFEREOBJVS", 345, NamedIn::nothing, k2007),
        object(L"INTERFEREVPVS", 346, NamedIn::nothing, k2007),
        integer(L"CSHADOW", 280, 0, k2007),
        real(L"SHADOWPLANELOCATION", 40, 0, k2007),
    };
    return kRows;
}

const std::vector<VariableRow>& rows() {
    static const std::vector<VariableRow> kRows = [] {
        std::vector<VariableRow> all = rowsBefore();
        for (const DimVariableRow& dim : dimVariableRows()) {
            all.push_back(dim.variable);
            all.back().code = dim.headerCode;
        }
        all.insert(all.end(), rowsAfter().begin(), rowsAfter().end());
        return all;
    }();
    return kRows;
}

const std::unordered_map<std::wstring, size_t>& places() {
    static const std::unordered_map<std::wstring, size_t> kPlaces = [] {
        std::unordered_map<std::wstring, size_t> found;
        for (size_t i = 0; i < rows().size(); ++i)
            found.emplace(rows()[i].name, i);
        return found;
    }();
    return kPlaces;
}

}  // namespace

std::span<const VariableRow> headerRows() {
    return rows();
}

HeaderVariables::HeaderVariables() {
    values_.reserve(rows().size());
    for (const VariableRow& row : rows())
        values_.push_back(row.initial);
}

std::optional<size_t> HeaderVariables::find(std::wstring_view name) {
    std::wstring upper(name);
    std::transform(upper.begin(), upper.end(), upper.begin(), toUpper);
    const auto found = places().find(upper);
    if (found == places().end()) return std::nullopt;
    return found->second;
}

size_t HeaderVariables::require(std::wstring_view name) {
    if (const auto place = find(name)) return *place;
    throw std::logic_error("no such header variable: " + toUtf8(name));
}

void HeaderVariables::set(size_t place, VariableValue value) {
    if (values_.at(place).index() != value.index()) {
        throw std::logic_error("not this type: header variable " + toUtf8(rows()[place].name));
    }
    values_[place] = std::move(value);
}

}  // namespace sg::model
