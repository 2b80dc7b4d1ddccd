#include "host/editor/drawing_variables.h"

#include <cmath>
#include <cwchar>

#include "base/text.h"
#include "host/model/core/database_state.h"
#include "host/model/tables/header_variables.h"
#include "host/model/tables/references.h"
#include "platform/db/database.h"

namespace sg {
namespace {

using model::NamedIn;
using model::VariableRow;
using model::VariableValue;
using Point2 = std::array<double, 2>;
using Point3 = std::array<double, 3>;

std::wstring colorText(const AcCmColor& color) {
    if (color.isByLayer()) return L"BYLAYER";
    if (color.isByBlock()) return L"BYBLOCK";
    if (!color.isByColor()) return std::to_wstring(color.colorIndex());
    return L"RGB:" + std::to_wstring(color.red()) + L"," + std::to_wstring(color.green()) + L"," +
           std::to_wstring(color.blue());
}

std::optional<AcCmColor> colorFromText(const std::wstring& text) {
    AcCmColor color;
    if (equalIgnoringCase(text, L"BYLAYER")) return color;
    if (equalIgnoringCase(text, L"BYBLOCK")) {
        color.setColorIndex(0);
        return color;
    }
    unsigned red = 0, green = 0, blue = 0;
    int end = 0;
    const auto whole = static_cast<int>(text.size());
    if (std::swscanf(text.c_str(), L"%*3lc:%3u,%3u,%3u%n", &red, &green, &blue, &end) == 3 &&
        end == whole && equalIgnoringCase(std::wstring_view(text).substr(0, 4), L"RGB:")) {
        if (red > 255 || green > 255 || blue > 255) return std::nullopt;
        color.setRGB(static_cast<uint8_t>(red), static_cast<uint8_t>(green),
                     static_cast<uint8_t>(blue));
        return color;
    }
    unsigned index = 0;
    if (std::swscanf(text.c_str(), L"%4u%n", &index, &end) != 1 || end != whole) {
        return std::nullopt;
    }
    if (!color.setColorIndex(static_cast<uint16_t>(index))) return std::nullopt;
    return color;
}

// What the program sees of a value, as the variable's type.
SystemVariableValue shown(const VariableValue& value, SystemVariableType type) {
    if (const auto* whole = std::get_if<int32_t>(&value)) {
        if (type == SystemVariableType::longInteger) return *whole;
        if (type == SystemVariableType::real) return double(*whole);
        if (type == SystemVariableType::text) return std::wstring(1, static_cast<wchar_t>(*whole));
        return static_cast<int16_t>(*whole);
    }
    if (const auto* real = std::get_if<double>(&value)) return *real;
    if (const auto* text = std::get_if<std::wstring>(&value)) return *text;
    if (const auto* id = std::get_if<AcDbObjectId>(&value)) return model::nameOf(*id);
    if (const auto* point = std::get_if<AcGePoint3d>(&value)) {
        if (type == SystemVariableType::point2d) return Point2{point->x, point->y};
        return Point3{point->x, point->y, point->z};
    }
    const AcCmColor& color = std::get<AcCmColor>(value);
    if (type == SystemVariableType::text) return colorText(color);
    return static_cast<int16_t>(color.colorIndex());
}

std::optional<int32_t> wholeOf(const SystemVariableValue& value) {
    if (const auto* small = std::get_if<int16_t>(&value)) return *small;
    if (const auto* large = std::get_if<int32_t>(&value)) return *large;
    if (const auto* real = std::get_if<double>(&value)) {
        return static_cast<int32_t>(std::lround(*real));
    }
    const auto* text = std::get_if<std::wstring>(&value);
    if (text != nullptr && text->size() == 1) return text->front();
    return std::nullopt;
}

// What is kept of a value that was set; nullopt for one that names nothing.
std::optional<VariableValue> kept(const SystemVariableValue& value, const VariableRow& row,
                                  AcDbDatabase& database) {
    if (std::holds_alternative<int32_t>(row.initial)) {
        const auto whole = wholeOf(value);
        if (!whole) return std::nullopt;
        return VariableValue(*whole);
    }
    if (std::holds_alternative<AcDbObjectId>(row.initial)) {
        const std::wstring& name = std::get<std::wstring>(value);
        const AcDbObjectId id = model::recordNamed(&database, row.table, name);
        // An empty name stands for no object: an arrow that is the usual one, the world's axes.
        const bool mayBeNone = row.table == NamedIn::blocks || row.table == NamedIn::ucs;
        if (id.isNull() && !(mayBeNone && (name.empty() || name == L"."))) return std::nullopt;
        return VariableValue(id);
    }
    if (std::holds_alternative<AcCmColor>(row.initial)) {
        if (const auto* text = std::get_if<std::wstring>(&value)) {
            const auto color = colorFromText(*text);
            if (!color) return std::nullopt;
            return VariableValue(*color);
        }
        AcCmColor color;
        const auto index = wholeOf(value);
        if (!index || *index < 0 || !color.setColorIndex(static_cast<uint16_t>(*index))) {
            return std::nullopt;
        }
        return VariableValue(color);
    }
    if (const auto* point = std::get_if<Point2>(&value)) {
        return VariableValue(AcGePoint3d((*point)[0], (*point)[1], 0));
    }
    if (const auto* point = std::get_if<Point3>(&value)) {
        return VariableValue(AcGePoint3d((*point)[0], (*point)[1], (*point)[2]));
    }
    if (const auto* real = std::get_if<double>(&value)) return VariableValue(*real);
    return VariableValue(std::get<std::wstring>(value));
}

bool isOfOneKind(const VariableValue& value, SystemVariableType type) {
    switch (type) {
        case SystemVariableType::shortInteger:
        case SystemVariableType::longInteger:
            return std::holds_alternative<int32_t>(value) ||
                   std::holds_alternative<AcCmColor>(value);
        case SystemVariableType::real:
            return std::holds_alternative<double>(value);
        case SystemVariableType::text:
            return std::holds_alternative<std::wstring>(value) ||
                   std::holds_alternative<AcDbObjectId>(value) ||
                   std::holds_alternative<AcCmColor>(value) ||
                   std::holds_alternative<int32_t>(value);
        case SystemVariableType::point2d:
        case SystemVariableType::point3d:
            return std::holds_alternative<AcGePoint3d>(value);
    }
    return false;
}

}  // namespace

void joinDrawingVariables(SystemVariables& variables, AcDbDatabase& database) {
    const auto rows = model::headerRows();
    for (size_t place = 0; place < rows.size(); ++place) {
        const SystemVariableRow* const variable = findSystemVariable(rows[place].name);
        if (variable == nullptr || variable->scope != SystemVariableScope::document ||
            !isOfOneKind(rows[place].initial, variable->type)) {
            continue;
        }
        variables.setProvider(
            variable->name,
            [&database, place, type = variable->type] {
                return shown(model::DatabaseState::of(database).header().at(place), type);
            },
            [&database, place](const SystemVariableValue& value) {
                auto keeping = kept(value, model::headerRows()[place], database);
                if (!keeping) return false;
                model::DatabaseState::of(database).changeHeader().set(place, std::move(*keeping));
                return true;
            });
    }
}

}  // namespace sg
