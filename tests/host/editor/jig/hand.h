#pragma once

#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/encoding.h"
#include "host/editor/input_source.h"

namespace sg::test {

// Answers drags with what it is told: points that are pointed at, and typed texts.
class Hand : public InputSource {
  public:
    // Each step is "sample x,y", "pick x,y" for a place that is pointed at and confirmed, or a text
    // that is typed; "ESC" and "" (Enter) among them.
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
        constexpr std::string_view kPick = "pick ";
        if (step.starts_with(kPick)) {
            answer.answer.kind = PromptAnswer::Kind::pick;
            step.erase(0, kPick.size());
        }
        answer.answer.text = fromUtf8(step);
        return Answer<DragAnswer>::of(std::move(answer));
    }

  private:
    std::deque<std::string> steps_;
    std::vector<std::string> prompts_;
};

}  // namespace sg::test
