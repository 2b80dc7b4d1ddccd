#pragma once

#include <map>
#include <string>
#include <string_view>

#include "host/dxf/group_output.h"
#include "host/dxf/releases.h"
#include "host/model/core/database_state.h"
#include "host/model/core/file_origin.h"

namespace sg::dxf {

// A class of the product itself that drawing files have to name.
struct ProductClass {
    const wchar_t* dxfName;
    const wchar_t* className;
    const wchar_t* applicationName;
    int32_t flags;
    bool isFixed = false;  // from release 2004 on files do without a record of it
};
// Null for a name of none.
const ProductClass* productClass(std::wstring_view dxfName);

// The section of classes: those of the drawing's file, and those that its objects need besides,
// which are the classes of applications and some of the product's own.
class ClassRecords {
  public:
    ClassRecords(model::DatabaseState& state, const model::FileOrigin& origin,
                 const Release& release)
        : state_(state), origin_(origin), release_(release) {}

    void write(GroupOutput& output);

  private:
    struct Use {
        std::wstring className, applicationName;
        int32_t flags = 0;
        bool isEntity = false;
        int32_t count = 0;
    };
    std::map<std::wstring, Use> usedClasses() const;
    void writeKept(GroupOutput& output, const model::FileOrigin::ClassRecord& record,
                   int32_t count);
    void writeNew(GroupOutput& output, const std::wstring& dxfName, const Use& use);

    model::DatabaseState& state_;
    const model::FileOrigin& origin_;
    const Release& release_;
};

}  // namespace sg::dxf
