#pragma once

#include <cstdint>
#include <set>
#include <string>

// What the module and the library of its dialogs have in common. The library is opened when a
// dialog is first asked for, since what it links would cost time at every start.
namespace sg {

class CDBConnection;

// What the dialogs need of the module they belong to.
struct DialogServices {
    // reportDialogDatabaseError of the module, which keeps the last error's text.
    bool (*reportError)(const CDBConnection* connection);
    // The connection is still there as the current document's: LISP may have replaced it.
    bool (*isDocuments)(const CDBConnection* connection);
};

enum class Discipline { electrical, plumbing, hvac };

struct LabelGroupRequest {
    std::wstring group;
    std::wstring title;   // the word ahead of " Label Display and Order"
    std::wstring option;  // empty: no widths; "SAME": one width for all
    std::set<std::wstring> hiddenKeys;
};

// Each runs a dialog until it is closed and answers how, as CDialog::DoModal does. Connections are
// open; they are not closed here.
class StandardsDialogs {
  public:
    virtual intptr_t customizeLayers(CDBConnection& connection, bool openedByPath) = 0;
    // Without `showSolid` the electrical one hides its check box.
    virtual intptr_t layerSystemOptions(Discipline discipline, CDBConnection& connection,
                                        int32_t system, bool showSolid) = 0;
    // A key that is not empty is where the focus goes. The connection is the current document's,
    // where `isDocuments` says so.
    virtual intptr_t customizeTextStyles(CDBConnection& connection, bool isDocuments,
                                         const std::wstring& key) = 0;
    virtual intptr_t customizeLabelGroup(CDBConnection& connection,
                                         const LabelGroupRequest& request) = 0;

  protected:
    ~StandardsDialogs() = default;
};

}  // namespace sg
