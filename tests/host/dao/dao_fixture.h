#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/system/temporary_folder.h"
#include "platform/dao/database.h"
#include "platform/dao/exception.h"
#include "platform/dao/recordset.h"
#include "platform/dao/table_def.h"

namespace sg {

inline const std::wstring englishLocale = L";LANGID=0x0409;CP=1252;COUNTRY=0";

// What the engine says of an error; nothing when there was none.
struct Thrown {
    int32_t code = 0;
    std::wstring text;
};

template <class F>
Thrown thrownBy(F&& f) {
    try {
        f();
    } catch (CDaoException* error) {
        const Thrown thrown{error->m_pErrorInfo->m_lErrorCode,
                            error->m_pErrorInfo->m_strDescription};
        wchar_t text[1000];
        EXPECT_TRUE(error->GetErrorMessage(text, 1000));
        EXPECT_EQ(text, thrown.text);
        EXPECT_NE(thrown.text, L"");
        EXPECT_EQ(thrown.text.find(L"Reserved error"), std::wstring::npos) << thrown.code;
        error->Delete();
        return thrown;
    }
    return {};
}

template <class F>
int32_t codeOf(F&& f) {
    return thrownBy(std::forward<F>(f)).code;
}

// --- values ---

inline COleVariant text(const wchar_t* value) {
    return COleVariant::fromString(value);
}
inline COleVariant number(int32_t value) {
    return COleVariant::fromInt32(value);
}
inline COleVariant real(double value) {
    return COleVariant::fromDouble(value);
}

// Any value with its type, to be compared and printed.
inline std::wstring shown(const COleVariant& value) {
    switch (value.vt) {
        case VT_NULL:
            return L"Null";
        case VT_UI1:
            return L"UI1 " + std::to_wstring(value.bVal);
        case VT_I2:
            return L"I2 " + std::to_wstring(value.iVal);
        case VT_I4:
            return L"I4 " + std::to_wstring(value.lVal);
        case VT_R4:
            return L"R4 " + std::to_wstring(value.fltVal);
        case VT_R8:
            return L"R8 " + std::to_wstring(value.dblVal);
        case VT_CY:
            return L"CY " + std::to_wstring(value.cyVal.int64);
        case VT_DATE:
            return L"DATE " + std::to_wstring(value.date);
        case VT_BSTR:
            return std::wstring(variantText(value));
        case VT_BOOL:
            return value.boolVal == VARIANT_FALSE ? L"false" : L"true";
        default:
            return L"VT " + std::to_wstring(value.vt);
    }
}

// --- designs ---

inline CDaoFieldInfo field(const wchar_t* name, int16_t type, int32_t size = 0,
                           int32_t attributes = 0) {
    CDaoFieldInfo info;
    info.m_strName = name;
    info.m_nType = type;
    info.m_lSize = size;
    info.m_lAttributes = attributes;
    info.m_bAllowZeroLength = type == dbText || type == dbMemo;
    info.m_lCollatingOrder = 0x409;
    return info;
}
inline CDaoFieldInfo requiredField(const wchar_t* name, int16_t type, int32_t size,
                                   const wchar_t* defaultValue) {
    CDaoFieldInfo info = field(name, type, size);
    info.m_bRequired = true;
    info.m_strDefaultValue = defaultValue;
    return info;
}
inline CDaoIndexInfo indexOver(const wchar_t* name, std::vector<CDaoIndexFieldInfo> fields,
                               bool unique = false, bool primary = false) {
    CDaoIndexInfo info;
    info.m_strName = name;
    info.m_nFields = static_cast<int16_t>(fields.size());
    info.m_pFieldInfos = std::move(fields);
    info.m_bUnique = unique;
    info.m_bPrimary = primary;
    return info;
}

inline void makeTable(CDaoDatabase& db, const wchar_t* name, std::vector<CDaoFieldInfo> fields,
                      std::vector<CDaoIndexInfo> indexes = {}) {
    CDaoTableDef table(&db);
    table.Create(name);
    for (CDaoFieldInfo& each : fields)
        table.CreateField(each);
    for (CDaoIndexInfo& each : indexes)
        table.CreateIndex(each);
    table.Append();
}

// Sets fields by name, and answers the recordset.
using Pairs = std::vector<std::pair<const wchar_t*, COleVariant>>;

inline void set(CDaoRecordset& rows, const Pairs& values) {
    for (const auto& [name, value] : values)
        rows.SetFieldValue(name, value);
}
// Adds a record and stands on it.
inline void append(CDaoRecordset& rows, const Pairs& values) {
    rows.AddNew();
    set(rows, values);
    rows.Update();
    rows.SetBookmark(rows.GetLastModifiedBookmark());
}

// Tests on a new database "plan.mdb" that is open.
class DaoTest : public FolderTest {
  protected:
    DaoTest() {
        db_.Create(path("plan.mdb"), englishLocale);
        // Others can open it too.
        db_.Close();
        db_.Open(path("plan.mdb"));
    }

    // A table "Rooms" with a counter as its key and indexes over its other fields.
    void makeRooms() {
        makeTable(db_, L"Rooms",
                  {field(L"Id", dbLong, 4, dbAutoIncrField), field(L"Name", dbText, 20),
                   field(L"Level", dbInteger), field(L"Area", dbDouble), field(L"Built", dbDate),
                   field(L"Open", dbBoolean), field(L"Notes", dbMemo)},
                  {indexOver(L"PrimaryKey", {{L"Id", false}}, true, true),
                   indexOver(L"Name", {{L"Name", false}}),
                   indexOver(L"Place", {{L"Level", false}, {L"Name", false}}),
                   indexOver(L"Area", {{L"Area", true}}), indexOver(L"Built", {{L"Built", false}}),
                   indexOver(L"Open", {{L"Open", false}})});
    }
    void addRooms(std::initializer_list<const wchar_t*> names) {
        CDaoRecordset rows(&db_);
        rows.Open(dbOpenTable, L"Rooms");
        for (const wchar_t* name : names)
            append(rows, {{L"Name", text(name)}});
    }

    // The current record's name, or where the cursor is instead.
    static std::wstring at(CDaoRecordset& rows) {
        if (rows.IsBOF()) return rows.IsEOF() ? L"empty" : L"BOF";
        if (rows.IsEOF()) return L"EOF";
        std::wstring name;
        const int32_t code = codeOf([&] { name = shown(rows.GetFieldValue(L"Name")); });
        return code == 0 ? name : std::to_wstring(code);
    }

    CDaoDatabase db_;
};

}  // namespace sg
