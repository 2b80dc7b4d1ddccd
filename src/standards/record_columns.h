#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "platform/variant/ole_variant.h"

// The columns of a record of the standards tables: each has its value, and whether it was changed.
namespace sg {

class StandardsRecord;

class RecordColumn {
  public:
    RecordColumn(const RecordColumn&) = delete;
    RecordColumn& operator=(const RecordColumn&) = delete;

    const wchar_t* name() const { return name_; }
    // A value was set since the flag was last cleared.
    bool isChanged() const { return changed_; }

  protected:
    // Columns enter their record in the order in which they are declared, which is that of the
    // table.
    RecordColumn(StandardsRecord& record, const wchar_t* name);
    ~RecordColumn() = default;

    bool changed_ = false;
    bool null_ = false;  // of nullable columns only

  private:
    friend class StandardsRecord;

    // Takes what a row has: VT_EMPTY, VT_NULL and what is no value of the column's type read as 0
    // or empty.
    virtual void read(const VARIANT& value) = 0;
    // What a row gets.
    virtual COleVariant toVariant() const = 0;

    const wchar_t* const name_;
};

// Values as rows have them: VT_I4, VT_I2, VT_BOOL (only -1 reads as true), VT_R8, VT_BSTR.
int32_t columnValue(const VARIANT& value, int32_t);
int16_t columnValue(const VARIANT& value, int16_t);
bool columnValue(const VARIANT& value, bool);
double columnValue(const VARIANT& value, double);
std::wstring columnValue(const VARIANT& value, const std::wstring&);
COleVariant columnVariant(int32_t value);
COleVariant columnVariant(int16_t value);
COleVariant columnVariant(bool value);
COleVariant columnVariant(double value);
COleVariant columnVariant(const std::wstring& value);

// 0, false or empty at first.
template <class Type>
class Column : public RecordColumn {
  public:
    Column(StandardsRecord& record, const wchar_t* name) : RecordColumn(record, name) {}

    const Type& get() const { return value_; }
    void set(Type value) {
        value_ = std::move(value);
        changed_ = true;
    }

  private:
    void read(const VARIANT& value) override { value_ = columnValue(value, Type()); }
    COleVariant toVariant() const override { return columnVariant(value_); }

    Type value_ = Type();
};

// One that may be Null, as it is at first.
template <class Type>
class NullableColumn : public RecordColumn {
  public:
    NullableColumn(StandardsRecord& record, const wchar_t* name) : RecordColumn(record, name) {
        null_ = true;
    }

    bool isNull() const { return null_; }
    // False, with 0 or an empty text, when it is Null.
    bool get(Type& value) const {
        value = value_;
        return !null_;
    }
    void set(Type value) {
        value_ = std::move(value);
        null_ = false;
        changed_ = true;
    }
    void setNull() {
        value_ = Type();
        null_ = true;
        changed_ = true;
    }

  private:
    void read(const VARIANT& value) override {
        null_ = value.vt == VT_EMPTY || value.vt == VT_NULL;
        value_ = columnValue(value, Type());
    }
    COleVariant toVariant() const override {
        return null_ ? COleVariant::null() : columnVariant(value_);
    }

    Type value_ = Type();
};

}  // namespace sg
