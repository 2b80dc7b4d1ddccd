#pragma once

#include "host/dwg/object_reader.h"

namespace sg::dwg {

// Fills an empty database with what a file's container holds.
class DrawingReader {
  public:
    DrawingReader(AcDbDatabase& database, FileContent& content, const std::wstring& file);

    // Answers the warnings. Throws Error for what it cannot go on from.
    std::vector<std::wstring> read();

  private:
    void readOrigin();
    void readTemplate();
    void readObjects(const std::vector<ObjectPlace>& places);
    void loadAll(ObjectReader& reader, const std::vector<ObjectPlace>& places);
    void orderEntities(const Links& links);
    void checkParts();
    void checkBlocks();
    void checkTables();
    void numberBlocks();
    void enterBlocks();
    void findFixedRecords();
    void findDictionaries();
    void keepClasses();
    void keepSections();
    void reportDangling();
    std::vector<std::wstring> takeWarnings();

    Reading reading_;
};

}  // namespace sg::dwg
