#include "base/text.h"
#include "host/editor/commands/command.h"
#include "host/editor/commands/programs.h"
#include "host/editor/documents.h"
#include "host/editor/undo_history.h"

namespace sg::commands {
namespace {

using Reply = Command::Reply;
using Mode = UndoHistory::Mode;

void tell(Command& c, const UndoHistory::Outcome& outcome, const wchar_t* otherwise) {
    std::wstring names;
    for (const std::wstring& name : outcome.names)
        names += (names.empty() ? L"" : L" ") + name;
    if (!names.empty()) c.print(names);
    if (outcome.reachedMark) c.print(L"Mark encountered");
    if (outcome.refused) {
        c.print(L"A program has a transaction under way.");
    } else if (names.empty() && !outcome.reachedMark) {
        c.print(otherwise);
    }
}

void undoSome(Command& c, size_t count) {
    UndoHistory& history = c.document().undo();
    const UndoHistory::Outcome outcome = history.undo(count);
    tell(c, outcome, L"Nothing to undo");
    if (!outcome.names.empty() && outcome.names.size() < count && history.recordCount() == 0) {
        c.print(L"Everything has been undone");
    }
}

void control(Command& c) {
    UndoHistory& history = c.document().undo();
    const std::wstring option =
        c.option(L"Enter an UNDO control option [All/None/One/Combine/Layer] <All>: ");
    if (option.empty() || option == L"All") history.setMode(Mode::all);
    if (option == L"None") history.setMode(Mode::none);
    if (option == L"One") history.setMode(Mode::one);
}

void back(Command& c) {
    UndoHistory& history = c.document().undo();
    if (history.markCount() == 0 &&
        !c.yes(L"This will undo everything. OK? [Yes/No] <Y>: ", true)) {
        return;
    }
    const bool hasMark = history.markCount() != 0;
    tell(c, history.undoToMark(), L"Nothing to undo");
    if (!hasMark) c.print(L"Everything has been undone");
}

const wchar_t* modeText(Mode mode) {
    return mode == Mode::all ? L"All" : mode == Mode::one ? L"One" : L"None";
}

}  // namespace

void undoOne(Command& c) {
    undoSome(c, 1);
}

void undoOptions(Command& c) {
    UndoHistory& history = c.document().undo();
    c.print(std::wstring(L"Current settings: Auto = On, Control = ") + modeText(history.mode()) +
            L", Combine = Yes, Layer = Yes");
    if (history.mode() == Mode::none) return control(c);
    int32_t count = 1;
    const Reply reply = c.integer(
        {L"Enter the number of operations to undo or [Auto/Control/BEgin/End/Mark/Back] <1>: ",
         std::nullopt, Prompter::Allowed::noZero | Prompter::Allowed::noNegative},
        count);
    if (reply != Reply::keyword) {
        undoSome(c, static_cast<size_t>(count));
    } else if (c.is(L"Control")) {
        control(c);
    } else if (c.is(L"BEgin")) {
        history.beginGroup();
    } else if (c.is(L"End")) {
        history.endGroup();
    } else if (c.is(L"Mark")) {
        history.setMark();
    } else if (c.is(L"Back")) {
        back(c);
    } else {
        c.option(L"Enter UNDO Auto mode [ON/OFF] <ON>: ");  // what a program does is one anyway
    }
}

void redo(Command& c) {
    tell(c, c.document().undo().redo(), L"Nothing to redo");
}

void redoSeveral(Command& c) {
    int32_t count = 1;
    const Reply reply = c.integer({L"Enter number of actions or [All/Last]: ", std::nullopt,
                                   Prompter::Allowed::noZero | Prompter::Allowed::noNegative},
                                  count);
    const bool all = reply == Reply::keyword && c.is(L"All");
    tell(c, c.document().undo().redo(all ? SIZE_MAX : static_cast<size_t>(count)),
         L"Nothing to redo");
}

}  // namespace sg::commands
