#pragma once

#include <functional>
#include <vector>

#include "platform/ed/editor.h"

namespace sg {

// The editor of one host, and the reactors that were added to it.
class Editor final : public AcEditor {
  public:
    void addReactor(AcEditorReactor* reactor) override;
    void removeReactor(AcEditorReactor* reactor) override;

    // Calls every reactor. One that is removed meanwhile is not called any more; one that is added
    // is not called yet.
    void notify(const std::function<void(AcEditorReactor&)>& event);

  private:
    std::vector<AcEditorReactor*> reactors_;
};

// Registers the editor's run-time classes.
void registerEditorClasses();

}  // namespace sg
