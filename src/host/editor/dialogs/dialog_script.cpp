#include "host/editor/dialogs/dialog_script.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <vector>

#include "base/text.h"
#include "host/editor/dialogs/dialog_words.h"
#include "host/system/paths.h"

namespace sg {
namespace {

using ui::NamedControl;

// As messages and "show" call it.
std::wstring nameOf(const NamedControl& named) {
    const std::wstring label = named.label.empty() ? std::wstring() : L" \"" + named.label + L"\"";
    const std::wstring id = named.id == 0 ? std::wstring() : L" " + std::to_wstring(named.id);
    return named.control->Kind() + id + label;
}

// By number or heading.
std::optional<int> takeColumn(std::wstring_view& text, const ui::ScriptedControl& control,
                              bool isWhole) {
    if (const auto number = takeWholeNumber(text)) return number;
    const auto heading = takeName(text, control.Columns(), isWhole);
    return heading ? std::optional(int(*heading)) : std::nullopt;
}

std::wstring inOneLine(std::wstring text) {
    for (size_t at = 0; (at = text.find_first_of(L"\r\n", at)) != std::wstring::npos; at += 2)
        text.replace(at, 1, text[at] == L'\n' ? L"\\n" : L"\\r");
    return text;
}

}  // namespace

DialogScript::Target DialogScript::target(std::wstring_view operands, bool isWhole,
                                          std::wstring& problem) {
    const std::vector<NamedControl> controls = dialog_.Controls();
    std::wstring_view rest = operands;
    const auto id = takeWholeNumber(rest);
    if (id && (!isWhole || rest.empty())) {
        for (const NamedControl& named : controls) {
            if (named.id == *id) return {named, rest};
        }
    }
    std::vector<std::wstring> labels;
    for (const NamedControl& named : controls)
        labels.push_back(named.label);
    rest = operands;
    if (const auto found = takeName(rest, labels, isWhole)) return {controls[*found], rest};
    problem = L"the dialog \"" + dialog_.Title() + L"\" has no control \"" +
              std::wstring(operands) + L"\"";
    return {};
}

ui::Refusal DialogScript::press(DialogScript&, const Target& target) {
    return target.named.control->Press();
}

ui::Refusal DialogScript::set(DialogScript&, const Target& target) {
    return target.named.control->SetText(std::wstring(target.rest));
}

ui::Refusal DialogScript::check(DialogScript&, const Target& target) {
    const bool isOn = equalIgnoringCase(target.rest, L"on");
    if (!isOn && !equalIgnoringCase(target.rest, L"off")) return L"takes on or off";
    return target.named.control->Check(isOn);
}

ui::Refusal DialogScript::choose(DialogScript&, const Target& target) {
    return target.named.control->Choose(std::wstring(target.rest));
}

ui::Refusal DialogScript::selectRow(DialogScript&, const Target& target) {
    std::wstring_view rest = target.rest;
    const auto row = takeWholeNumber(rest);
    if (!row || !rest.empty()) return L"takes the number of a row";
    return target.named.control->SelectRow(*row);
}

ui::Refusal DialogScript::editCell(DialogScript&, const Target& target) {
    ui::ScriptedControl& control = *target.named.control;
    std::wstring_view rest = target.rest;
    const auto row = takeWholeNumber(rest);
    if (!row) return L"takes the number of a row, a column and a text";
    const auto column = takeColumn(rest, control, false);
    if (!column) return L"has no column \"" + std::wstring(rest) + L"\"";
    return control.EditCell(*row, *column, std::wstring(rest));
}

ui::Refusal DialogScript::doubleClick(DialogScript&, const Target& target) {
    ui::ScriptedControl& control = *target.named.control;
    std::wstring_view rest = target.rest;
    const auto row = takeWholeNumber(rest);
    if (!row) return L"takes the number of a row and a column";
    const auto column = takeColumn(rest, control, true);
    if (!column) return L"has no column \"" + std::wstring(rest) + L"\"";
    return control.DoubleClick(*row, *column);
}

// A key may close the dialog; those behind it are not typed then.
ui::Refusal DialogScript::typeKeys(DialogScript& script, const Target& target) {
    std::wstring_view rest = target.rest;
    if (rest.empty()) return L"takes the names of keys";
    while (!rest.empty()) {
        if (!script.dialog_.IsOpen())
            return L"is gone before the keys \"" + std::wstring(rest) + L"\"";
        const ui::Refusal refusal = script.dialog_.TypeKey(*target.named.control, takeWord(rest));
        if (!refusal.empty()) return refusal;
        script.dialog_.Settle();
    }
    return {};
}

void DialogScript::show() {
    std::wstring text = L"\nDialog \"" + dialog_.Title() + L"\"\n";
    for (const NamedControl& named : dialog_.Controls()) {
        const ui::ScriptedControl& control = *named.control;
        text += L"  " + nameOf(named);
        if (const std::wstring state = control.State(); !state.empty())
            text += L": " + inOneLine(state);
        if (!control.IsEnabled()) text += L" (disabled)";
        if (!control.IsShown()) text += L" (hidden)";
        text += L"\n";
        for (const std::wstring& line : control.Contents())
            text += L"    " + inOneLine(line) + L"\n";
    }
    print_(text);
}

const DialogScript::Verb DialogScript::kVerbs[] = {
    {L"press", true, press},           {L"set", false, set},       {L"check", false, check},
    {L"choose", false, choose},        {L"row", false, selectRow}, {L"cell", false, editCell},
    {L"dblclick", false, doubleClick}, {L"key", false, typeKeys},
};

std::wstring DialogScript::act(const Verb& verb, const ScriptItem& item) {
    std::wstring problem;
    const Target found = target(item.value, verb.isWhole, problem);
    if (found.named.control == nullptr) return problem;
    const std::wstring name = nameOf(found.named);
    const ui::Refusal refusal = verb.act(*this, found);
    return refusal.empty() ? refusal : name + L" " + refusal;
}

std::wstring DialogScript::run(const ScriptItem& item) {
    std::wstring problem;
    const auto* const verb = std::find_if(std::begin(kVerbs), std::end(kVerbs),
                                          [&](const Verb& each) { return item.word == each.word; });
    if (verb != std::end(kVerbs)) {
        problem = act(*verb, item);
    } else if (item.word == L"show") {
        show();
    } else if (item.word == L"shot") {
        if (!dialog_.SavePicture(resolvePath(item.value).path)) {
            problem = L"the picture cannot be written: " + item.value;
        }
    } else if (item.word == L"ok") {
        problem = dialog_.Accept();
    } else {
        dialog_.Cancel();
    }
    if (dialog_.IsOpen()) dialog_.Settle();
    return problem;
}

std::wstring dialogReport(const ui::ScriptedDialog& dialog) {
    const std::wstring text = dialog.Text();
    return L"dialog \"" + dialog.Title() + L"\":" + (text.empty() ? L"" : L" " + text) +
           L" [answered: " + dialog.Answer() + L"]";
}

}  // namespace sg
