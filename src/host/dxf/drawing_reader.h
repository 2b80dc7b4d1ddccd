#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/dxf/entity_reader.h"

namespace sg::dxf {

// Reads a whole file into an empty database.
class DrawingReader {
  public:
    DrawingReader(AcDbDatabase& database, std::string_view content, std::wstring file);

    // Answers the warnings. Throws Error for what is no drawing.
    std::vector<std::wstring> read();

  private:
    struct Section {
        std::string name;
        size_t position;  // behind its name
    };

    void findSections();
    void findSectionsInText(std::string_view content);
    void findSectionsInBinary();
    const Section* section(std::string_view name) const;
    void readClasses();
    void leaveNames();
    void prepareBlocks();
    void readBlocks();
    void beginBlock(ScannedObject& scanned);
    void endBlock(ScannedObject& scanned);
    AcDbObjectId blockOf(const ScannedObject& scanned);
    AcDbObjectId addBlock(const std::wstring& name);
    void completeBlocks();
    void readEntities();
    void readObjects();
    void findDictionaries();
    void keepSections();
    void reportDangling();

    std::string_view content_;
    Reading reading_;
    ObjectLoader loader_;
    EntityReader entities_;
    std::vector<Section> sections_;
    AcDbObjectId block_;  // the one that is being read
};

}  // namespace sg::dxf
