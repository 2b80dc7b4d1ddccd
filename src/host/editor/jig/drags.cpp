#include "host/editor/jig/drags.h"

#include <algorithm>

#include "host/editor/jig/canvas_display.h"
#include "host/editor/jig/jig_drag.h"

namespace sg {
namespace {

class Running {
  public:
    Running(std::vector<JigDrag*>& all, JigDrag& drag) : all_(all) { all_.push_back(&drag); }
    ~Running() { all_.pop_back(); }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

  private:
    std::vector<JigDrag*>& all_;
};

}  // namespace

Drags::Drags() : headless_(std::make_unique<HeadlessDisplay>()) {}

Drags::~Drags() = default;

AcEdJig::DragStatus Drags::run(AcEdJig& jig, const Prompter::Place& place, std::wstring& word) {
    JigDrag drag(jig, place, display(), counts_);
    const Running running(running_, drag);
    const AcEdJig::DragStatus status = drag.run();
    word = drag.word();
    return status;
}

JigDrag* Drags::of(const AcEdJig& jig) const {
    const auto found = std::find_if(running_.rbegin(), running_.rend(),
                                    [&](const JigDrag* drag) { return &drag->jig() == &jig; });
    return found == running_.rend() ? nullptr : *found;
}

void Drags::clear() {
    ++counts_.clears;
    display().clear();
}

}  // namespace sg
