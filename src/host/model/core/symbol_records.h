#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/db/symbol_table.h"

// What a symbol table holds.
struct AcDbSymbolTable::Records {
    std::vector<AcDbObjectId> ids;  // in the order in which they were added

    // The record of this name that is not erased; with `getErased` the last erased one where there
    // is none. Null when there is neither.
    AcDbObjectId find(std::wstring_view name, bool getErased) const;

    void append(AcDbObjectId id) { insert(ids.size(), id); }
    void insert(size_t index, AcDbObjectId id);
    void remove(AcDbObjectId id);
    void assign(std::vector<AcDbObjectId> records);
    void namesChanged() { isIndexed_ = false; }

  private:
    void buildIndex() const;

    mutable std::unordered_multimap<std::wstring, AcDbObjectId> byName_;  // names in upper case
    mutable bool isIndexed_ = true;
};

namespace sg::model {

// The record of this name in a table, which need not be open; null when there is none.
AcDbObjectId findRecord(AcDbObjectId table, std::wstring_view name);

// The application registered under this name in a database; null when there is none.
AcDbObjectId findRegisteredApplication(const AcDbDatabase* database, const wchar_t* name);

// True for a name that symbol tables take: see AcDbSymbolTableRecord::setName.
bool isSymbolName(std::wstring_view name);

}  // namespace sg::model
