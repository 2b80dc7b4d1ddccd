#pragma once

#include <string>
#include <vector>

#include "base/export.h"

// What dialogs and their controls tell a script and take from it. Nothing here knows a toolkit: the
// driver of scripts stands on this alone, and whoever makes a control of a new kind implements it.
namespace sg::ui {

// Why something was not done, in words that follow the control's name: "is disabled". Empty when it
// was done.
using Refusal = std::wstring;

// A control. What its kind cannot do it refuses.
class SG_API ScriptedControl {
  public:
    virtual ~ScriptedControl() = default;

    // Such as "edit" or "grid".
    virtual std::wstring Kind() const = 0;
    virtual bool IsEnabled() const = 0;
    virtual bool IsShown() const = 0;
    // Its text and state in one line: what an edit holds, "on" of a check box.
    virtual std::wstring State() const = 0;
    // What is in it beside that, a line each: items of a list, rows of a grid.
    virtual std::vector<std::wstring> Contents() const { return {}; }
    // The headings of a grid by column; none for other kinds.
    virtual std::vector<std::wstring> Columns() const { return {}; }

    virtual Refusal Press() { return CannotBe(L"pressed"); }
    // Takes the place of the text, as typing does.
    virtual Refusal SetText(const std::wstring&) { return CannotBe(L"set"); }
    virtual Refusal Check(bool) { return CannotBe(L"checked"); }
    // By its text, or by its number from 0 on where no item has the text.
    virtual Refusal Choose(const std::wstring&) { return CannotBe(L"chosen from"); }
    // Rows and columns of a grid count from 0, the fixed ones first.
    virtual Refusal SelectRow(int) { return HasNo(L"rows"); }
    // Edits the cell in place and ends with Return. A check box takes "on" and "off".
    virtual Refusal EditCell(int, int, const std::wstring&) { return HasNo(L"cells"); }
    virtual Refusal DoubleClick(int, int) { return HasNo(L"cells"); }

  protected:
    Refusal CannotBe(const wchar_t* what) const {
        return L"is of the kind \"" + Kind() + L"\", which cannot be " + what;
    }
    Refusal HasNo(const wchar_t* what) const {
        return L"is of the kind \"" + Kind() + L"\", which has no " + what;
    }
};

// A control and what a script calls it.
struct NamedControl {
    int id = 0;          // 0: it has none, and goes by its label
    std::wstring label;  // without the mark of its mnemonic; empty when it has none
    ScriptedControl* control = nullptr;
};

// A dialog that is shown and waits for what is done to it.
class SG_API ScriptedDialog {
  public:
    virtual ~ScriptedDialog() = default;

    virtual std::wstring Title() const = 0;
    // The texts that stand in it for nobody but the reader.
    virtual std::wstring Text() const = 0;
    // In the order of tabbing. Valid until something is done to one of them.
    virtual std::vector<NamedControl> Controls() = 0;

    // Types a key into a control, by its name ("Tab", "F2", "Ctrl+C"), or one character.
    virtual Refusal TypeKey(ScriptedControl& control, const std::wstring& key) = 0;

    virtual bool IsOpen() const = 0;
    // As the button OK, and as Esc. Either may leave it open.
    virtual Refusal Accept() = 0;
    virtual void Cancel() = 0;
    // Closes it for certain, as cancelled.
    virtual void Abandon() = 0;
    // How it ended: "OK", "Cancel", or the number of another answer.
    virtual std::wstring Answer() const = 0;

    // Lets what was begun come to its end: painting, windows that close.
    virtual void Settle() = 0;
    // False when the file cannot be written.
    virtual bool SavePicture(const std::wstring& path) = 0;

    // There is a display with somebody before it.
    virtual bool HasDisplay() const = 0;
    // Answers when the person at the display has closed it.
    virtual void WaitForPerson() = 0;
    // Shows a message box before it, with the flags of MessageBoxW, and answers the button's id.
    virtual int ShowBox(const std::wstring& title, const std::wstring& text, unsigned flags) = 0;
};

// A widget that is a control of a kind of its own and says so itself.
class SG_API Scriptable {
  public:
    virtual ~Scriptable() = default;
    virtual ScriptedControl& Script() = 0;
};

}  // namespace sg::ui

// Runs a dialog that is shown until it is closed: a script drives it, or the person at the display
// does; without either it is cancelled, which is reported on standard error.
SG_API void sgRunDialog(sg::ui::ScriptedDialog& dialog);
