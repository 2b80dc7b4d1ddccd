#include <algorithm>
#include <memory>
#include <string>

#include "base/text.h"
#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/lisp_functions.h"
#include "platform/ap/documents.h"

// A routine in one drawing makes another drawing carry on: it leaves that drawing's name here,
// where it outlives the change of documents, and sends it a command.

namespace sg {
namespace {

std::wstring toDoDrawing;

AcApDocument* documentOf(std::wstring name) {
    std::replace(name.begin(), name.end(), L'\\', L'/');  // as documents name their files
    const std::unique_ptr<AcApDocumentIterator> documents(
        acDocManagerPtr()->newAcApDocumentIterator());
    for (; !documents->done(); documents->step()) {
        if (equalIgnoringCase(documents->document()->fileName(), name)) {
            return documents->document();
        }
    }
    return nullptr;
}

}  // namespace

int setToDoDrawing() {
    CallArguments arguments;
    return nextString(arguments.next, toDoDrawing) ? kLispOk : kLispWrongType;
}

int getToDoDrawing() {
    acedRetStr(toDoDrawing.c_str());
    return kLispOk;
}

int executeToDo() {
    constexpr int kSent = 1, kBusy = -1, kNotOpen = 0;
    CallArguments arguments;
    std::wstring name, command;
    if (!nextString(arguments.next, name) || !nextString(arguments.next, command)) {
        return kLispWrongType;
    }
    AcApDocument* const document = documentOf(name);
    int result = kNotOpen;
    if (document != nullptr && !document->isQuiescent()) {
        result = kBusy;
    } else if (document != nullptr) {
        acDocManagerPtr()->sendStringToExecute(document, (command + L"\n").c_str(), true, false,
                                               false);
        result = kSent;
    }
    acedRetInt(result);
    return kLispOk;
}

}  // namespace sg
