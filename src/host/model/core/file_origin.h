#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/model/core/group_data.h"
#include "host/model/tables/header_variables.h"

namespace sg::model {

struct DwgOrigin;

// What a drawing brought along from its file that is no object of it, for writing it again.
struct FileOrigin {
    int16_t release = 0;  // AcDb::AcDbDwgVersion; of a release that has none of its own, the next
    std::string version;  // as the file has it, such as AC1015
    bool isBinary = false;
    std::string codePage;  // as $DWGCODEPAGE names it

    // A header variable in its place. One that drawings know has its value, as it was read; the
    // groups are the file's as long as it is unchanged.
    struct Variable {
        std::string name;  // with "$"
        GroupData groups;
        bool isKnown = false;
        size_t place = 0;  // among the header variables
        VariableValue value;
    };
    std::vector<Variable> variables;

    // A class that the file's program knew, with the groups behind the group 0.
    struct ClassRecord {
        std::wstring dxfName, className, applicationName;
        int32_t flags = 0;
        GroupData groups;
    };
    std::vector<ClassRecord> classes;

    // The tables in their order by name; one that drawings do not know has its groups.
    struct Table {
        std::string name;
        GroupData groups;
    };
    std::vector<Table> tables;

    // The sections in their order by name; one that drawings do not know has its groups, from the
    // one behind its name to the one ahead of ENDSEC.
    struct Section {
        std::string name;
        GroupData groups;
    };
    std::vector<Section> sections;

    std::vector<AcDbObjectId> objects;  // those of the objects' section, in their order

    std::shared_ptr<DwgOrigin> dwg;  // of a drawing from a DWG file
};

}  // namespace sg::model
