#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/dao/constants.h"
#include "platform/variant/ole_variant.h"

// What the engine tells of the parts of a database, and is told to make them. An information call
// fills the members of its level and of those before it, and sets the others as a new object has
// them. Dates are days since 1899-12-30.

struct CDaoFieldInfo {
    // primary
    std::wstring m_strName;
    int16_t m_nType = 0;        // dbBoolean ... dbDecimal
    int32_t m_lSize = 0;        // bytes, of text characters; 0 for memo and long binary
    int32_t m_lAttributes = 0;  // db...Field
    // secondary
    int16_t m_nOrdinalPosition = 0;
    bool m_bRequired = false;
    bool m_bAllowZeroLength = false;
    int32_t m_lCollatingOrder = 0;  // of text: 0x409 is General
    std::wstring m_strForeignName;  // of a relation's field only
    std::wstring m_strSourceField;
    std::wstring m_strSourceTable;
    // all
    std::wstring m_strValidationRule;
    std::wstring m_strValidationText;
    std::wstring m_strDefaultValue;
};

struct CDaoIndexFieldInfo {
    std::wstring m_strName;
    bool m_bDescending = false;
};

struct CDaoIndexInfo {
    // primary
    std::wstring m_strName;
    std::vector<CDaoIndexFieldInfo> m_pFieldInfos;
    int16_t m_nFields = 0;  // as many; only told
    // secondary
    bool m_bPrimary = false;
    bool m_bUnique = false;
    bool m_bClustered = false;  // always false: the engine has no such index
    bool m_bIgnoreNulls = false;
    bool m_bRequired = false;
    bool m_bForeign = false;
    // all
    int32_t m_lDistinctCount = 0;
};

struct CDaoTableDefInfo {
    // primary
    std::wstring m_strName;
    bool m_bUpdatable = false;
    int32_t m_lAttributes = 0;
    // secondary
    double m_dateCreated = 0;
    double m_dateLastUpdated = 0;
    std::wstring m_strSrcTableName;  // of a linked table
    std::wstring m_strConnect;       // of a linked table: ";DATABASE=path"
    // all
    std::wstring m_strValidationRule;
    std::wstring m_strValidationText;
    int32_t m_lRecordCount = 0;  // -1 for a linked table
};

struct CDaoRelationFieldInfo {
    std::wstring m_strName;         // in the table
    std::wstring m_strForeignName;  // in the foreign table
};

struct CDaoRelationInfo {
    // primary
    std::wstring m_strName;
    std::wstring m_strTable;
    std::wstring m_strForeignTable;
    // secondary
    int32_t m_lAttributes = 0;  // dbRelation...
    // all
    std::vector<CDaoRelationFieldInfo> m_pFieldInfos;
    int16_t m_nFields = 0;  // as many; only told
};

struct CDaoParameterInfo {
    // primary
    std::wstring m_strName;  // without brackets
    int16_t m_nType = 0;     // dbBoolean ... dbDecimal; dbText where it takes any value
    // secondary
    COleVariant m_varValue;  // VT_EMPTY where none was set
};

struct CDaoQueryDefInfo {
    // primary
    std::wstring m_strName;
    int16_t m_nType = 0;  // dbQ...
    // secondary
    double m_dateCreated = 0;
    double m_dateLastUpdated = 0;
    bool m_bUpdatable = false;
    bool m_bReturnsRecords = false;
    // all
    std::wstring m_strSQL;
    std::wstring m_strConnect;
};
