#pragma once

#include <memory>
#include <vector>

#include "base/export.h"
#include "host/editor/jig/drag_display.h"
#include "host/editor/prompts/prompter.h"
#include "platform/ed/jig.h"

namespace sg {

class JigDrag;

// The drags of a host: those that are going on, one inside another, and where they show.
class SG_API Drags {
  public:
    Drags();
    ~Drags();
    Drags(const Drags&) = delete;
    Drags& operator=(const Drags&) = delete;

    // Drags a jig. `word` gets the keyword or text that ended the drag, if one did.
    AcEdJig::DragStatus run(AcEdJig& jig, const Prompter::Place& place, std::wstring& word);
    // The drag of this jig that has asked for a sample; null when there is none.
    JigDrag* of(const AcEdJig& jig) const;

    // What drags show on, in place of a display that only counts. It outlives this; null takes it
    // back.
    void setDisplay(DragDisplay* display) { display_ = display; }
    // Takes what is dragged off the screen.
    void clear();

    const DragCounts& counts() const { return counts_; }

  private:
    DragDisplay& display() const { return display_ != nullptr ? *display_ : *headless_; }

    std::vector<JigDrag*> running_;  // innermost last
    std::unique_ptr<DragDisplay> headless_;
    DragDisplay* display_ = nullptr;
    DragCounts counts_;
};

}  // namespace sg
