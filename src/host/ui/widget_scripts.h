#pragma once

#include <QString>
#include <QWidget>

#include <memory>
#include <string>

#include "platform/ui/scripted.h"

class QMessageBox;

// The toolkit's own widgets as scripts see them.
namespace sg::ui {

inline QString toQString(const std::wstring& text) {
    return QString::fromStdWString(text);
}

class WidgetScript : public ScriptedControl {
  public:
    explicit WidgetScript(QWidget& widget) : widget_(widget) {}

    QWidget& Widget() const { return widget_; }
    bool IsEnabled() const override { return widget_.isEnabled(); }
    bool IsShown() const override { return !widget_.isHidden(); }

  protected:
    // Why nothing can be done to it now.
    Refusal Unusable() const;

  private:
    QWidget& widget_;
};

// Null for a widget that is of no kind that scripts know.
std::unique_ptr<WidgetScript> scriptFor(QWidget& widget);

// What a script calls it: its own text, or that of the label that leads to it.
std::wstring labelOf(const QWidget& widget);

// Types a key by its name into a widget, or a character. It goes to what has the focus in it.
Refusal typeKey(QWidget& widget, const std::wstring& key);

// Gives the box the buttons of the flags of MessageBoxW, and waits for one; answers its id.
int runBox(QMessageBox& box, unsigned flags);

}  // namespace sg::ui
