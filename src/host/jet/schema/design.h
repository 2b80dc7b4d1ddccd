#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/jet/format/format.h"
#include "host/jet/values/table_definition.h"

// What a program says of a table, column or index that it wants made.
namespace sg::jet {

struct ColumnDesign {
    std::wstring name{};
    ColumnType type = ColumnType::Text;
    uint16_t size = 0;         // Text: characters (0: 255); Binary: bytes (0: 255)
    bool autoNumber = false;   // Long: a counter; Guid: made at random
    int32_t firstNumber = 1;   // a counter's
    int32_t numberStep = 1;    // a counter's, from one number to the next; not 0
    bool fixedLength = false;  // Text and Binary
    bool hyperlink = false;    // Memo
    bool compressed = true;    // Text and Memo: Unicode compression where it saves room
    uint8_t precision = 18;    // Numeric: digits, 1 to 28
    uint8_t scale = 0;         // Numeric: of them behind the point
    bool required = false;
    bool allowZeroLength = true;  // Text and Memo
    std::wstring defaultValue{};  // an expression, as the other texts empty for none
    std::wstring validationRule{};
    std::wstring validationText{};
    std::wstring description{};
    std::wstring caption{};
};

struct IndexColumnDesign {
    std::wstring column{};
    bool ascending = true;
};

struct IndexDesign {
    std::wstring name{};
    std::vector<IndexColumnDesign> columns{};  // one to ten
    bool primary = false;                      // then unique and required too
    bool unique = false;
    bool ignoreNulls = false;
    bool required = false;
};

struct TableDesign {
    std::wstring name{};
    std::vector<ColumnDesign> columns{};
    std::vector<IndexDesign> indexes{};
    std::wstring validationRule{};
    std::wstring validationText{};
    std::wstring description{};
};

}  // namespace sg::jet
