#include <string>
#include <string_view>

#include "bridge/argument_list.h"
#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "database/lisp_functions.h"
#include "platform/lisp/external_functions.h"
#include "platform/win/message_box.h"
#include "platform/win/sound.h"
#include "platform/win/system.h"
#include "platform/win/window.h"

namespace sg {
namespace {

struct Sound {
    std::wstring_view kind;
    unsigned value;
};

constexpr Sound kSounds[] = {
    {L"?", MB_ICONQUESTION}, {L"*", MB_ICONINFORMATION},
    {L"HAND", MB_ICONERROR}, {L"!", MB_ICONWARNING},
    {L"OK", MB_OK},
};

unsigned soundOf(std::wstring_view kind) {
    for (const Sound& sound : kSounds) {
        if (sound.kind == kind) return sound.value;
    }
    return MB_BEEP;
}

struct BoxKeyword {
    std::wstring_view text;
    unsigned flags;
    bool isButtons;
};

constexpr BoxKeyword kBoxKeywords[] = {
    {L"ABORT", MB_ABORTRETRYIGNORE, true},
    {L"OK", MB_OK, true},
    {L"OKCANCEL", MB_OKCANCEL, true},
    {L"RETRYCANCEL", MB_RETRYCANCEL, true},
    {L"YESNO", MB_YESNO, true},
    {L"YESNOCANCEL", MB_YESNOCANCEL, true},
    {L"!", MB_ICONWARNING, false},
    {L"i", MB_ICONINFORMATION, false},
    {L"?", MB_ICONQUESTION, false},
    {L"STOP", MB_ICONERROR, false},
    {L"DEF1", MB_DEFBUTTON1, false},
    {L"DEF2", MB_DEFBUTTON2, false},
    {L"DEF3", MB_DEFBUTTON3, false},
};

// Buttons replace all that was gathered before, so that they have to come first; the rest adds up.
unsigned withKeyword(unsigned flags, std::wstring_view text) {
    for (const BoxKeyword& keyword : kBoxKeywords) {
        if (keyword.text == text) return keyword.isButtons ? keyword.flags : flags + keyword.flags;
    }
    return flags;
}

struct PressedButton {
    int id;
    const wchar_t* name;
};

constexpr PressedButton kPressed[] = {
    {IDOK, L"OK"},         {IDCANCEL, L"CANCEL"}, {IDABORT, L"ABORT"}, {IDRETRY, L"RETRY"},
    {IDIGNORE, L"IGNORE"}, {IDYES, L"YES"},       {IDNO, L"NO"},
};

void retButton(int id) {
    for (const PressedButton& pressed : kPressed) {
        if (pressed.id == id) {
            acedRetStr(pressed.name);
            return;
        }
    }
    acedRetNil();
}

}  // namespace

int randomNumber() {
    acedRetInt(sgRandom());
    return kLispOk;
}

int beep() {
    MessageBeep(MB_BEEP);
    acedRetT();
    return kLispOk;
}

int messageBeep() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring kind;
    if (nextString(at, kind)) MessageBeep(soundOf(kind));
    acedRetT();
    return kLispOk;
}

int messageBox() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring text, caption;
    if (!nextString(at, text) || !nextString(at, caption)) return kLispWrongType;
    unsigned flags = 0;
    nextListBegin(at);
    for (std::wstring keyword; nextString(at, keyword);)
        flags = withKeyword(flags, keyword);
    HWND const active = GetActiveWindow();
    const int pressed = MessageBoxW(active, text.c_str(), caption.c_str(), flags);
    SetActiveWindow(active);
    retButton(pressed);
    return kLispOk;
}

}  // namespace sg
