#pragma once

#include "platform/db/database.h"
#include "platform/db/object.h"

namespace sg::model {

// Where copies from another database go, and under what names.

// The tables, dictionaries and fixed records of one database stand for those of the other.
void pairRoots(AcDbIdMapping& mapping);

// The object of the destination that stands for the owner of `original`: a dictionary that is not
// there is made. Null when nothing does.
AcDbObject* targetOwner(const AcDbObject& original, AcDbIdMapping& mapping);

// The record or entry that has the original's name in `owner` already, where such a copy is not
// made; null otherwise.
AcDbObject* sameNamed(const AcDbObject& original, const AcDbObject& owner,
                      const AcDbIdMapping& mapping);

// Gives a record's copy the name that it has in its new table: an anonymous block a number of its
// own, a mangled one its prefix.
void nameForTarget(AcDbObject& copy, const AcDbObject& original, const AcDbObject& owner,
                   const AcDbIdMapping& mapping);

// Give a copy to the list of its owner, which need not be open.
Acad::ErrorStatus joinTable(AcDbSymbolTableRecord& copy, AcDbSymbolTable& table);
// Under the name that the original has where it stands.
Acad::ErrorStatus joinDictionary(AcDbObject& copy, AcDbDictionary& dictionary,
                                 const AcDbObject& original);

}  // namespace sg::model
