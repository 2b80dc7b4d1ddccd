#pragma once

#include <span>
#include <vector>

#include "host/model/core/memory_filers.h"
#include "host/model/tables/filing.h"
#include "host/model/tables/header_variables.h"

namespace sg::model {

// One field of a record: its group code and what it is in a new record.
struct FieldRow {
    int16_t code;
    VariableValue initial;
    // Files leave it out while it is what it is in a new record.
    bool optional = false;
    Reference pointer = Reference::hardPointer;
    bool flat = false;  // a 2D point
};

// The fields of a record that is no more than their list: each once, in the order of its rows,
// which live as long as the program.
class SG_API RecordFields {
  public:
    explicit RecordFields(std::span<const FieldRow> rows);

    // By the group code, which must be one of the rows' and hold this type: else std::logic_error.
    template <class Value>
    const Value& get(int code) const {
        return std::get<Value>(values_[require(code)]);
    }
    void set(int code, VariableValue value);

    size_t size() const { return values_.size(); }
    const VariableValue& at(size_t place) const { return values_[place]; }
    VariableValue& at(size_t place) { return values_[place]; }

    void writeDxf(AcDbDxfFiler* filer) const;
    // Takes the group that the reader stands on; false when no row has its code.
    bool takeDxf(const FieldReader& group);
    Acad::ErrorStatus writeDwg(AcDbDwgFiler* filer) const;
    Acad::ErrorStatus readDwg(AcDbDwgFiler* filer);

  private:
    size_t require(int code) const;

    std::span<const FieldRow> rows_;
    std::vector<VariableValue> values_;
};

}  // namespace sg::model
