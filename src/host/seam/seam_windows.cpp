#include <fmt/xchar.h>

#include <utility>

#include "host/editor/command_line_output.h"
#include "host/editor/documents.h"
#include "host/editor/status_bar.h"
#include "host/seam/host.h"
#include "host/system/main_window.h"
#include "host/system/screen.h"
#include "platform/ed/status_bar.h"
#include "platform/win/window.h"

// platform/win/window.h and platform/ed/status_bar.h on the Host, whose main window is state alone:
// a terminal shows its title and its progress meter.

using sg::Host;

HWND adsw_acadMainWnd() {
    return &Host::the().mainWindow().window;
}

HWND GetActiveWindow() {
    return Host::the().mainWindow().active;
}

HWND SetActiveWindow(HWND window) {
    return std::exchange(Host::the().mainWindow().active, window);
}

bool EnableWindow(HWND window, bool enable) {
    return window != nullptr && !std::exchange(window->enabled, enable);
}

bool IsWindowEnabled(HWND window) {
    return window != nullptr && window->enabled;
}

CMDIFrameWnd* acedGetAcadFrame() {
    return &Host::the().frame();
}

void CMDIFrameWnd::GetWindowText(std::wstring& text) const {
    const sg::Document* const document = Host::the().documents().active();
    if (m_hWnd->text) {
        text = *m_hWnd->text;
    } else if (document != nullptr) {
        text = fmt::format(L"Swift Gate - [{}]", document->docTitle());
    } else {
        text = L"Swift Gate";
    }
}

void CMDIFrameWnd::SetWindowText(const wchar_t* text) {
    m_hWnd->text = text != nullptr ? text : L"";
    Host::the().output().setTitle(*m_hWnd->text);
}

int GetSystemMetrics(int index) {
    if (index == SM_CXSCREEN) return sg::screenSize().width;
    return index == SM_CYSCREEN ? sg::screenSize().height : 0;
}

int acedSetStatusBarProgressMeter(const wchar_t* label, int minimum, int maximum) {
    const bool started =
        Host::the().statusBar().start(label != nullptr ? label : L"", minimum, maximum);
    return started ? 0 : -1;
}

int acedSetStatusBarProgressMeterPos(int position) {
    return Host::the().statusBar().move(position) ? 0 : -1;
}

void acedRestoreStatusBar() {
    Host::the().statusBar().restore();
}
