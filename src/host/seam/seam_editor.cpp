#include <cstdarg>
#include <cwchar>
#include <string>
#include <string_view>

#include "host/editor/command_line_output.h"
#include "host/lisp/interpreter.h"
#include "host/seam/host.h"
#include "host/seam/system_variable_values.h"
#include "platform/ed/command_line.h"
#include "platform/win/message_box.h"

// platform/ed/command_line.h on the Host.

using sg::Host;

namespace {

// Formats of modules take a wide string for %s and a wide character for %c; here those are %ls and
// %lc. An explicit %hs stays narrow.
std::wstring nativeFormat(std::wstring_view format) {
    std::wstring out;
    for (size_t at = 0; at < format.size(); ++at) {
        out += format[at];
        if (format[at] != L'%') continue;
        ++at;
        while (at < format.size() &&
               std::wstring_view(L"-+ #0123456789.*").find(format[at]) != std::wstring_view::npos) {
            out += format[at++];
        }
        if (at >= format.size()) break;
        if (format[at] == L's' || format[at] == L'c') out += L'l';
        if (format[at] == L'h' || format[at] == L'l') out += format[at++];
        if (at < format.size()) out += format[at];
    }
    return out;
}

}  // namespace

int acutPrintf(const wchar_t* format, ...) {
    if (format == nullptr) return RTERROR;
    const std::wstring native = nativeFormat(format);
    std::wstring text(256, L'\0');
    for (;;) {
        std::va_list arguments;
        va_start(arguments, format);
        const int length = std::vswprintf(text.data(), text.size(), native.c_str(), arguments);
        va_end(arguments);
        if (length >= 0) {
            text.resize(static_cast<size_t>(length));
            break;
        }
        // The answer does not tell a small buffer from a bad format; no sane text is this long.
        if (text.size() > (size_t{64} << 20)) return RTERROR;
        text.resize(text.size() * 4);
    }
    Host::the().output().print(text);
    return RTNORM;
}

int acedPrompt(const wchar_t* text) {
    if (text == nullptr) return RTERROR;
    Host::the().output().print(text);
    return RTNORM;
}

int acedAlert(const wchar_t* text) {
    MessageBoxW(nullptr, text, L"AutoCAD Message", MB_OK | MB_ICONWARNING);
    return RTNORM;
}

int acedUsrBrk() {
    return Host::the().interpreter().interruptPending() ? 1 : 0;
}

int acedTextScr() {
    Host::the().textScreen = true;
    return RTNORM;
}

int acedGraphScr() {
    Host::the().textScreen = false;
    return RTNORM;
}

int acedGetVar(const wchar_t* name, resbuf* result) {
    if (name == nullptr || result == nullptr) return RTERROR;
    const auto value = Host::the().systemVariables().get(name);
    if (!value) return RTERROR;
    sg::systemVariableToNode(*value, *result);
    return RTNORM;
}

int acedSetVar(const wchar_t* name, const resbuf* value) {
    if (name == nullptr || value == nullptr) return RTERROR;
    const auto converted = sg::nodeToSystemVariable(*value);
    if (!converted) return RTERROR;
    const auto result = Host::the().systemVariables().set(name, *converted);
    return result == sg::SystemVariables::SetResult::ok ? RTNORM : RTERROR;
}
