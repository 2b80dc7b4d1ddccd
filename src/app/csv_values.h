#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "app/csv_writer.h"
#include "host/jet/values/value.h"

namespace sg::app {

// Writes a database's value as the next field of a row, for std::visit. The forms are those that
// field_values.h reads.
struct CsvValueWriter {
    CsvWriter& csv;

    void operator()(std::monostate) const { csv.null(); }
    void operator()(bool value) const { csv.number(int64_t(value)); }
    void operator()(uint8_t value) const { csv.number(int64_t(value)); }
    void operator()(int16_t value) const { csv.number(int64_t(value)); }
    void operator()(int32_t value) const { csv.number(int64_t(value)); }
    void operator()(int64_t value) const { csv.number(value); }
    void operator()(float value) const { csv.number(value); }
    void operator()(double value) const { csv.number(value); }
    void operator()(jet::Currency value) const { csv.scaled(value.scaled, 4); }
    void operator()(jet::Date value) const {
        const jet::DateParts p = jet::partsOf(value);
        csv.date(p.year, p.month, p.day, p.hour, p.minute, p.second);
    }
    void operator()(const std::wstring& value) const { csv.text(value); }
    void operator()(const jet::Bytes& value) const { csv.hexadecimal(value); }
    void operator()(const jet::Guid& value) const { csv.text(jet::toText(value)); }
    void operator()(const jet::Decimal& value) const { csv.text(jet::toText(value)); }
};

}  // namespace sg::app
