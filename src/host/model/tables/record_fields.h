#pragma once

#include <optional>
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

// How a DWG object has a field.
enum class DwgCoding : uint8_t {
    bit,        // B
    byte,       // RC
    int16,      // BS
    int32,      // BL
    real,       // BD
    flatPoint,  // 2RD
    point,      // 3BD
    text,       // T
    color,      // CMC, of a colour or of a whole number's index
    id,         // H, of its row's kind
    softId,
    hardId,
    ownedId,  // H of a field that the record does not keep
    // Parts of what a view has in one number: see the record.
    timesHeight,
    viewMode,
    follow,
    icon,
};

// One step of a DWG object: the field and its coding, in files of the releases from `since` to
// before `until`. A field that the record does not keep is written as `otherwise`.
struct DwgStep {
    static constexpr int16_t kOpen = 0x7FFF;

    int16_t code;
    DwgCoding coding;
    int16_t since = 0;
    int16_t until = kOpen;
    double otherwise = 0;
    int16_t onlyWith = 0;  // a field without which, being 0, the step is left out
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
    // In files in the order of the steps, in memory in that of the rows.
    Acad::ErrorStatus writeDwg(AcDbDwgFiler* filer, std::span<const DwgStep> steps) const;
    Acad::ErrorStatus readDwg(AcDbDwgFiler* filer, std::span<const DwgStep> steps);

  private:
    friend class FieldSteps;

    size_t require(int code) const;
    std::optional<size_t> find(int code) const;

    std::span<const FieldRow> rows_;
    std::vector<VariableValue> values_;
};

}  // namespace sg::model
