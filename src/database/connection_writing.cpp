// Writing records through the cursor, and what happens while others lock them.

#include <algorithm>
#include <string_view>

#include "base/encoding.h"
#include "database/connection.h"
#include "platform/ed/command_line.h"
#include "platform/win/system.h"

namespace sg {
namespace {

constexpr int kAttempts = 20;

// What the engine says of records, tables and files that others hold.
constexpr int32_t kLockErrors[] = {3009, 3046, 3158, 3164, 3186, 3187, 3188, 3189, 3202,
                                   3211, 3212, 3218, 3225, 3260, 3261, 3262, 3624};

// Whether another attempt may go better. If so it rests first, for 10 to 499 milliseconds.
bool isRetryableError(const CDaoException& exception) {
    const int32_t code = exception.m_pErrorInfo->m_lErrorCode;
    if (std::find(std::begin(kLockErrors), std::end(kLockErrors), code) == std::end(kLockErrors)) {
        return false;
    }
    Sleep(static_cast<uint32_t>(sgRandom() % 490 + 10));
    return true;
}

// The text's beginning, of so many 16-bit units, as databases count text.
std::wstring_view cutToUnits(std::wstring_view text, int32_t units) {
    for (size_t length = 0; length < text.size(); ++length) {
        units -= text[length] > 0xFFFF ? 2 : 1;
        if (units < 0) return text.substr(0, length);
    }
    return text;
}

bool isTextType(int16_t type) {
    return type == dbText || type == dbMemo;
}

// What a text field that needs a value gets when nobody gives it one.
std::wstring fillingOf(const CDaoFieldInfo& field) {
    if (!field.m_strDefaultValue.empty()) return field.m_strDefaultValue;
    return field.m_bAllowZeroLength ? L"" : L" ";
}

}  // namespace

void CDBConnection::fillRequiredText() {
    CDaoRecordset& rows = table();
    const int count = rows.GetFieldCount();
    CDaoFieldInfo field;
    for (int position = 0; position < count; ++position) {
        rows.GetFieldInfo(position, field, AFX_DAO_ALL_INFO);
        if (!isTextType(field.m_nType) || !field.m_bRequired) continue;
        rows.SetFieldValue(position, COleVariant::fromString(fillingOf(field)));
    }
}

// Counters are never written. A text never becomes one of no length: it is a blank then.
void CDBConnection::setField(const std::wstring& name, const COleVariant& value) {
    CDaoFieldInfo field;
    table().GetFieldInfo(name, field, AFX_DAO_PRIMARY_INFO);
    if ((field.m_lAttributes & dbAutoIncrField) != 0) return;
    if (value.vt != VT_BSTR) {
        table().SetFieldValue(name, value);
        return;
    }
    std::wstring_view text = variantText(value);
    if (field.m_nType == dbText) text = cutToUnits(text, field.m_lSize);
    table().SetFieldValue(name, COleVariant::fromString(text.empty() ? L" " : text));
}

// An error here is told by itself and not recorded, so that no other message follows.
bool CDBConnection::setFields(const COleSafeArray& record) {
    const auto items = record.Variants();
    for (size_t i = 0; i + 1 < items.size(); i += 2) {
        if (items[i].vt != VT_BSTR) return false;
        const std::wstring name(variantText(items[i]));
        try {
            setField(name, items[i + 1]);
        } catch (CDaoException* exception) {
            exception->Delete();
            acutPrintf(L"\nAppend error: %s", name.c_str());
            return false;
        }
    }
    return true;
}

// A failed attempt leaves no edit behind, and with it no lock.
void CDBConnection::dropEdit() {
    capture([&] {
        if (table().GetEditMode() != dbEditNone) table().CancelUpdate();
        return true;
    });
}

template <class Begin, class Finish>
bool CDBConnection::write(const COleSafeArray& record, COleSafeArray& written, const Begin& begin,
                          const Finish& finish) {
    clearError();
    if (!isTableReady() || !database_.CanUpdate()) return false;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        try {
            begin(table());
            if (!setFields(record)) {
                table().CancelUpdate();
                return false;
            }
            table().Update();
            finish(table());
            return GetRecord(written);
        } catch (CDaoException* exception) {
            const std::unique_ptr<CDaoException> owned(exception);
            dropEdit();
            if (isRetryableError(*exception)) continue;
            recordError(*exception);
            return false;
        }
    }
    return false;
}

bool CDBConnection::Append(const COleSafeArray& record, int16_t fillRequired,
                           COleSafeArray& written) {
    const auto begin = [&](CDaoRecordset& rows) {
        rows.AddNew();
        if (fillRequired == -1) fillRequiredText();
    };
    const auto finish = [](CDaoRecordset& rows) {
        rows.SetBookmark(rows.GetLastModifiedBookmark());
    };
    return write(record, written, begin, finish);
}

bool CDBConnection::Replace(const COleSafeArray& record, COleSafeArray& written) {
    return write(
        record, written, [](CDaoRecordset& rows) { rows.Edit(); }, [](CDaoRecordset&) {});
}

// Unlike Append it deliberately records no error, and is true when the record stays locked.
bool CDBConnection::DeleteRecord() {
    clearError();
    if (!isTableReady() || !database_.CanUpdate()) return false;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        try {
            table().Delete();
            break;
        } catch (CDaoException* exception) {
            const std::unique_ptr<CDaoException> owned(exception);
            if (!isRetryableError(*exception)) return false;
        }
    }
    return true;
}

}  // namespace sg
