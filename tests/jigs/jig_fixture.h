#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "host/editor/jig/drags.h"
#include "host/model/core/database_state.h"
#include "host/model/tables/header_variables.h"
#include "module/module_fixture.h"

namespace sg::test {

// Answers drags with what it is told: points that are pointed at, and typed texts.
class Hand : public InputSource {
  public:
    // Each step is "sample x,y" or a text that is typed; "ESC" and "" (Enter) among them.
    void will(std::vector<std::string> steps) { steps_.assign(steps.begin(), steps.end()); }
    const std::vector<std::string>& prompts() const { return prompts_; }
    size_t left() const { return steps_.size(); }
    std::function<void(const DragRequest&)> onDrag;

    Answer<DragAnswer> drag(const DragRequest& request) override {
        prompts_.push_back(toUtf8(request.prompt));
        if (onDrag) onDrag(request);
        if (steps_.empty()) return {};
        std::string step = steps_.front();
        steps_.pop_front();
        if (step == "ESC") return Answer<DragAnswer>::cancel();
        DragAnswer answer;
        constexpr std::string_view kSample = "sample ";
        answer.isConfirmed = !step.starts_with(kSample);
        if (!answer.isConfirmed) step.erase(0, kSample.size());
        answer.answer.text = fromUtf8(step);
        return Answer<DragAnswer>::of(std::move(answer));
    }

  private:
    std::deque<std::string> steps_;
    std::vector<std::string> prompts_;
};

// A test of drags with the module loaded.
class JigTest : public ModuleTest {
  protected:
    void SetUp() override {
        start();
        host().setInput({hand});
    }

    const DragCounts& counts() { return host().drags().counts(); }
    // Runs a program while the user does these things in turn.
    std::string drag(std::vector<std::string> steps, std::string_view program) {
        hand->will(std::move(steps));
        return eval(program);
    }

    // The x axis of the user coordinate system goes up.
    void turnUserAxes() {
        model::HeaderVariables& header =
            model::DatabaseState::of(*active().database()).changeHeader();
        header.set(L"UCSXDIR", AcGePoint3d(0, 1, 0));
        header.set(L"UCSYDIR", AcGePoint3d(-1, 0, 0));
    }

    std::shared_ptr<Hand> hand = std::make_shared<Hand>();
};

}  // namespace sg::test
