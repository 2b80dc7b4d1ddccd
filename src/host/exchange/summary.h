#pragma once

#include <map>
#include <string>
#include <vector>

#include "base/export.h"
#include "platform/db/database.h"
#include "platform/db/extents.h"

namespace sg::exchange {

// What a drawing holds, for a person who looks at it from outside.
struct Summary {
    std::string version, release;  // of its file, such as AC1015 and 2000
    std::string codePage;
    bool isBinary = false;
    bool isDwg = false;

    AcDbExtents extents;  // of model space; empty where nothing has any

    struct Layer {
        std::wstring name;
        size_t entities = 0;
        bool isOff = false, isFrozen = false, isLocked = false;
    };
    std::vector<Layer> layers;
    struct Space {
        std::wstring name;  // of the layout; of other blocks the block's
        size_t entities = 0;
    };
    std::vector<Space> layouts, blocks;
    std::map<std::wstring, size_t> entities;  // by their names in files, in every block

    // What is kept without being understood, by names in files.
    std::map<std::wstring, size_t> unreadEntities, unreadObjects;
    // Of these, what has nothing by which it could be drawn.
    std::map<std::wstring, size_t> invisibleEntities;
    std::vector<std::string> unreadTables, unreadSections;
};

SG_API Summary summaryOf(const AcDbDatabase& database);

}  // namespace sg::exchange
