#include "host/editor/variable_undo.h"

#include <map>
#include <memory>

namespace sg {
namespace {

class VariableChange final : public model::OutsideChange {
  public:
    VariableChange(SystemVariables& variables, const wchar_t* name, SystemVariableValue before)
        : variables_(variables), name_(name), before_(std::move(before)) {}

    std::unique_ptr<OutsideChange> takeBack() override {
        auto again = std::make_unique<VariableChange>(variables_, name_, *variables_.get(name_));
        variables_.assign(name_, before_);
        return again;
    }

  private:
    SystemVariables& variables_;
    const wchar_t* const name_;
    const SystemVariableValue before_;
};

// The bits of "UNDOCTL".
enum Control : int16_t { kEnabled = 1, kOneOnly = 2, kGroupsPrograms = 4, kInGroup = 8 };

int16_t controlOf(const UndoHistory& history) {
    int16_t control = kGroupsPrograms;
    if (history.mode() != UndoHistory::Mode::none) control |= kEnabled;
    if (history.mode() == UndoHistory::Mode::one) control |= kOneOnly;
    if (history.isInGroup()) control |= kInGroup;
    return control;
}

}  // namespace

void joinUndo(SystemVariables& variables, UndoHistory& history) {
    // Within one span the first value is enough.
    using Kept = std::map<const SystemVariableRow*, uint32_t>;
    variables.watch([&variables, &history, kept = Kept()](
                        const SystemVariableRow& row, const SystemVariableValue& before) mutable {
        uint32_t& span = kept[&row];
        if (span == history.log().span()) return;
        span = history.log().span();
        history.log().outsideChanges(std::make_unique<VariableChange>(variables, row.name, before));
    });
    variables.setProvider(L"UNDOCTL",
                          [&history] { return SystemVariableValue(controlOf(history)); });
    variables.setProvider(L"UNDOMARKS", [&history] {
        return SystemVariableValue(static_cast<int16_t>(history.markCount()));
    });
}

}  // namespace sg
