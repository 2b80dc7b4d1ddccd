#include <string>

#include "base/text.h"
#include "bridge/argument_list.h"
#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "database/driver_offer.h"
#include "platform/lisp/external_functions.h"
#include "platform/win/message_box.h"
#include "support/active_window.h"
#include "support/dialog_library.h"
#include "support/lisp_functions.h"

namespace sg {
namespace {

constexpr intptr_t kNotCreated = -1;

// Runs a dialog by `show`; true when it was closed with OK.
template <class Show>
bool showDialog(const Show& show) {
    SupportDialogs* const dialogs = supportDialogs();
    return checkDialogResult(dialogs != nullptr ? show(*dialogs) : kNotCreated) == IDOK;
}

// What is no list is passed over.
std::vector<std::wstring> readAttachments(const resbuf* at) {
    std::vector<std::wstring> paths;
    if (!nextListBegin(at)) return paths;
    for (std::wstring path; nextString(at, path);) {
        if (!path.empty()) paths.push_back(path);
    }
    return paths;
}

}  // namespace

int submitBug() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    ReportRequest request;
    if (!nextInt(at, request.mode) || !nextString(at, request.archiveSuffix) ||
        !nextString(at, request.logFolder) || !nextString(at, request.systemInfo)) {
        return kLispWrongType;
    }
    request.attachments = readAttachments(at);
    showDialog([&](SupportDialogs& dialogs) { return dialogs.submitBug(request); });
    acedRetNil();  // LISP that the report called may have left another result
    return kLispOk;
}

int editUserOptions() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring discipline, edition = L"NOT ELEC";
    if (!nextString(at, discipline)) return kLispWrongType;
    nextString(at, edition);
    showDialog(
        [&](SupportDialogs& dialogs) { return dialogs.editUserOptions(discipline, edition); });
    return kLispOk;
}

int editMultilineText() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring text, title;
    if (!nextString(at, text)) return kLispWrongType;
    nextString(at, title);
    const ActiveWindowKept kept;
    const bool isTaken =
        showDialog([&](SupportDialogs& dialogs) { return dialogs.editMultilineText(text, title); });
    if (isTaken) acedRetStr(text.c_str());
    return kLispOk;
}

int safeContinue() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring caption, prompt, expected;
    if (!nextString(at, caption) || !nextString(at, prompt) || !nextString(at, expected)) {
        return kLispWrongType;
    }
    expected = upperCased(expected);
    bool isTyped = false;
    showDialog([&](SupportDialogs& dialogs) {
        return dialogs.safeContinue(caption, prompt, expected, isTyped);
    });
    isTyped ? acedRetT() : acedRetNil();
    return kLispOk;
}

}  // namespace sg
