#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "host/editor/script_input.h"
#include "platform/ui/scripted.h"

namespace sg {

// Does to an open dialog what the lines of a script say. It knows dialogs and controls by
// platform/ui/scripted.h alone.
class SG_API DialogScript {
  public:
    // `print` takes what "show" prints.
    DialogScript(ui::ScriptedDialog& dialog, std::function<void(const std::wstring&)> print)
        : dialog_(dialog), print_(std::move(print)) {}

    // Does one line. What was not done, and why, is the answer; empty when all was.
    std::wstring run(const ScriptItem& item);

  private:
    struct Target {
        ui::NamedControl named;
        std::wstring_view rest;  // what follows the control in the line
    };

    // What a word of the script does to the control that stands behind it. With `isWhole` the
    // control is all that stands there.
    struct Verb {
        const wchar_t* word;
        bool isWhole;
        ui::Refusal (*act)(DialogScript& script, const Target& target);
    };
    static const Verb kVerbs[];

    Target target(std::wstring_view operands, bool isWhole, std::wstring& problem);
    std::wstring act(const Verb& verb, const ScriptItem& item);
    static ui::Refusal press(DialogScript& script, const Target& target);
    static ui::Refusal set(DialogScript& script, const Target& target);
    static ui::Refusal check(DialogScript& script, const Target& target);
    static ui::Refusal choose(DialogScript& script, const Target& target);
    static ui::Refusal selectRow(DialogScript& script, const Target& target);
    static ui::Refusal editCell(DialogScript& script, const Target& target);
    static ui::Refusal doubleClick(DialogScript& script, const Target& target);
    static ui::Refusal typeKeys(DialogScript& script, const Target& target);
    void show();

    ui::ScriptedDialog& dialog_;
    const std::function<void(const std::wstring&)> print_;
};

// The line that is reported of a dialog that was answered without a person.
std::wstring dialogReport(const ui::ScriptedDialog& dialog);

}  // namespace sg
