#pragma once

#include <map>
#include <string>
#include <unordered_set>
#include <vector>

#include "host/dwg/file_content.h"
#include "host/model/core/file_origin.h"

namespace sg::model {

// What a drawing brought along from its DWG file besides.
struct DwgOrigin {
    uint8_t maintenance = 0;
    // Sections that drawings do not know, and those that describe the file.
    struct Section {
        std::string name;
        std::vector<uint8_t> data;
    };
    std::vector<Section> sections;
    // Fields of the header that drawings do not know, by their names; those without one by their
    // place in the header, such as "#3".
    std::map<std::wstring, VariableValue> header;
    // Handles of the objects that have data in the section of stored data.
    std::unordered_set<uint64_t> withStoredData;
};

}  // namespace sg::model
