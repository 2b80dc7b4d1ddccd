#pragma once

#include <optional>
#include <string>

#include "base/export.h"
#include "host/editor/input_source.h"

namespace sg {

// A file chooser, and what it does about an answer before it closes.
struct FileDialog {
    FileRequest request;
    std::wstring defaultExtension;   // without its dot, for names that have none
    bool mustExist = false;          // a file that is not there is refused with a message
    bool confirmsReplacing = false;  // a file that is there is taken only after a question
};

// Asks until a file is chosen that the dialog takes; an answer that names a folder makes the dialog
// go on in that one. The absolute path of the file, which need not exist unless the dialog says so;
// nullopt when the dialog is cancelled. A folder to begin in that does not exist gives way to the
// current one.
SG_API std::optional<std::wstring> askForFile(InputChain& input, FileDialog dialog);

}  // namespace sg
