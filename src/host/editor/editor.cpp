#include "host/editor/editor.h"

#include <algorithm>

#include "platform/ed/jig.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcRxEventReactor, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcEditorReactor, AcRxEventReactor)
ACRX_NO_CONS_DEFINE_MEMBERS(AcEditor, AcRxObject)

void AcRxEventReactor::beginSave(AcDbDatabase*, const wchar_t*) {}
void AcRxEventReactor::saveComplete(AcDbDatabase*, const wchar_t*) {}

namespace sg {

void Editor::addReactor(AcEditorReactor* reactor) {
    if (reactor == nullptr) return;
    if (std::find(reactors_.begin(), reactors_.end(), reactor) == reactors_.end()) {
        reactors_.push_back(reactor);
    }
}

void Editor::removeReactor(AcEditorReactor* reactor) {
    std::erase(reactors_, reactor);
}

void Editor::notify(const std::function<void(AcEditorReactor&)>& event) {
    const std::vector<AcEditorReactor*> before = reactors_;
    for (AcEditorReactor* reactor : before) {
        if (std::find(reactors_.begin(), reactors_.end(), reactor) != reactors_.end()) {
            event(*reactor);
        }
    }
}

void registerEditorClasses() {
    AcRxEventReactor::rxInit();
    AcEditorReactor::rxInit();
    AcEditor::rxInit();
    AcEdJig::rxInit();
    acrxBuildClassHierarchy();
}

}  // namespace sg
