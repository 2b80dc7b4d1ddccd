#include "host/model/tables/record_fields.h"

#include <algorithm>
#include <stdexcept>

#include "host/model/tables/field_steps.h"

namespace sg::model {
namespace {

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

void writeValue(AcDbDxfFiler* filer, const FieldRow& row, const VariableValue& value) {
    const int code = row.code;
    std::visit(Overloaded{[&](int32_t whole) {
                              const int16_t kind = acdbGroupCodeToType(code);
                              if (kind == RTLONG) {
                                  filer->writeInt32(code, whole);
                              } else {
                                  filer->writeInt16(code, static_cast<int16_t>(whole));
                              }
                          },
                          [&](double real) { filer->writeDouble(code, real); },
                          [&](const AcGePoint3d& point) {
                              if (row.flat) {
                                  filer->writePoint2d(code, {point.x, point.y});
                              } else {
                                  filer->writePoint3d(code, point);
                              }
                          },
                          [&](const std::wstring& text) { filer->writeString(code, text); },
                          [&](AcDbObjectId id) { filer->writeObjectId(code, id); },
                          [&](const AcCmColor& color) {
                              filer->writeInt16(code, static_cast<int16_t>(color.colorIndex()));
                          }},
               value);
}

VariableValue readValue(const FieldReader& group, const VariableValue& like) {
    return std::visit(Overloaded{[&](int32_t) -> VariableValue { return group.integer(); },
                                 [&](double) -> VariableValue { return group.real(); },
                                 [&](const AcGePoint3d&) -> VariableValue { return group.point(); },
                                 [&](const std::wstring&) -> VariableValue { return group.text(); },
                                 [&](AcDbObjectId) -> VariableValue { return group.objectId(); },
                                 [&](const AcCmColor&) -> VariableValue {
                                     AcCmColor color;
                                     color.setColorIndex(static_cast<uint16_t>(group.integer()));
                                     return color;
                                 }},
                      like);
}

}  // namespace

RecordFields::RecordFields(std::span<const FieldRow> rows) : rows_(rows) {
    values_.reserve(rows.size());
    for (const FieldRow& row : rows)
        values_.push_back(row.initial);
}

std::optional<size_t> RecordFields::find(int code) const {
    const auto row =
        std::find_if(rows_.begin(), rows_.end(), [&](const FieldRow& r) { return r.code == code; });
    if (row == rows_.end()) return std::nullopt;
    return static_cast<size_t>(row - rows_.begin());
}

size_t RecordFields::require(int code) const {
    const std::optional<size_t> place = find(code);
    if (!place) throw std::logic_error("no such field: " + std::to_string(code));
    return *place;
}

void RecordFields::set(int code, VariableValue value) {
    VariableValue& held = values_[require(code)];
    if (held.index() != value.index()) {
        throw std::logic_error("not this type: field " + std::to_string(code));
    }
    held = std::move(value);
}

void RecordFields::writeDxf(AcDbDxfFiler* filer) const {
    const bool all = filer->filerType() == AcDb::kBagFiler || filer->includesDefaultValues();
    for (size_t i = 0; i < rows_.size(); ++i) {
        const auto* id = std::get_if<AcDbObjectId>(&values_[i]);
        if (id != nullptr && id->isNull() && rows_[i].optional) continue;
        if (!all && rows_[i].optional && values_[i] == rows_[i].initial) continue;
        writeValue(filer, rows_[i], values_[i]);
    }
}

bool RecordFields::takeDxf(const FieldReader& group) {
    for (size_t i = 0; i < rows_.size(); ++i) {
        if (rows_[i].code != group.code()) continue;
        values_[i] = readValue(group, rows_[i].initial);
        return true;
    }
    return false;
}

Acad::ErrorStatus RecordFields::writeDwg(AcDbDwgFiler* filer,
                                         std::span<const DwgStep> steps) const {
    if (filer->dwgForm() != nullptr) return writeSteps(*filer, *this, steps);
    for (size_t i = 0; i < rows_.size(); ++i) {
        std::visit(
            Overloaded{[&](int32_t whole) { filer->writeInt32(whole); },
                       [&](double real) { filer->writeDouble(real); },
                       [&](const AcGePoint3d& point) { filer->writePoint3d(point); },
                       [&](const std::wstring& text) { filer->writeString(text); },
                       [&](AcDbObjectId id) { writeReference(*filer, rows_[i].pointer, id); },
                       [&](const AcCmColor& color) { writeColor(filer, color); }},
            values_[i]);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus RecordFields::readDwg(AcDbDwgFiler* filer, std::span<const DwgStep> steps) {
    if (filer->dwgForm() != nullptr) return readSteps(*filer, *this, steps);
    for (size_t i = 0; i < rows_.size(); ++i) {
        std::visit(
            Overloaded{[&](int32_t& whole) { filer->readInt32(&whole); },
                       [&](double& real) { filer->readDouble(&real); },
                       [&](AcGePoint3d& point) { filer->readPoint3d(&point); },
                       [&](std::wstring& text) { filer->readString(text); },
                       [&](AcDbObjectId& id) { id = readReference(*filer, rows_[i].pointer); },
                       [&](AcCmColor& color) { readColor(filer, color); }},
            values_[i]);
    }
    return filer->filerStatus();
}

}  // namespace sg::model
