#pragma once

#include <optional>
#include <string>

// What HWND points to.
struct SgWindow {
    bool enabled = true;
    std::optional<std::wstring> text;  // once a program has set it
};

namespace sg {

// The main window as programs see it, and which window is active.
struct MainWindow {
    SgWindow window;
    SgWindow* active = &window;

    MainWindow() = default;
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;
};

}  // namespace sg
