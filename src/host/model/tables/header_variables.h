#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/export.h"
#include "platform/db/color.h"
#include "platform/db/object_id.h"
#include "platform/ge/point3d.h"

namespace sg::model {

// What a header or dimension variable holds. A 2D point has z 0. Angles are radians, times
// Julian days; an object stands under its id, whatever a drawing file writes for it.
using VariableValue =
    std::variant<int32_t, double, AcGePoint3d, std::wstring, AcDbObjectId, AcCmColor>;

// Where a variable that holds an object finds it by name.
enum class NamedIn : uint8_t { nothing, layers, linetypes, textStyles, dimStyles, blocks, ucs };

// A variable: its name without "$", the group code that drawing files write it under, what it is
// in a new drawing (its type with it), and for an object the table of its name.
struct VariableRow {
    const wchar_t* name;
    int16_t code;
    VariableValue initial;
    NamedIn table = NamedIn::nothing;
    bool flat = false;  // a 2D point
    // The first release of drawing files that has it (AcDb::AcDbDwgVersion).
    int16_t since = 23;
};

// The variables of a drawing's header, those of dimensions included, in the order in which drawing
// files write them.
SG_API std::span<const VariableRow> headerRows();

// The values of one drawing's header variables.
class SG_API HeaderVariables {
  public:
    HeaderVariables();  // those of a new drawing in feet and inches

    // The place of a variable, ignoring case; nullopt for an unknown name.
    static std::optional<size_t> find(std::wstring_view name);

    const VariableValue& at(size_t place) const { return values_[place]; }
    // The value's type must be the variable's: else std::logic_error.
    void set(size_t place, VariableValue value);

    // By name, which must exist: else std::logic_error; and hold this type: else
    // std::bad_variant_access.
    template <class Value>
    const Value& get(std::wstring_view name) const {
        return std::get<Value>(values_[require(name)]);
    }
    void set(std::wstring_view name, VariableValue value) { set(require(name), std::move(value)); }

  private:
    static size_t require(std::wstring_view name);

    std::vector<VariableValue> values_;
};

}  // namespace sg::model
