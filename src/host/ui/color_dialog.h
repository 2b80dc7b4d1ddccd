#pragma once

#include <QWidget>

#include <functional>
#include <string>

#include "platform/ui/dialog.h"

namespace sg::ui {

// The 255 colours of the table as fields: 24 hues by ten shades, the nine basic ones and the greys
// below. The arrow keys go from one to the next.
class ColorFields final : public QWidget, public Scriptable, private ScriptedControl {
  public:
    explicit ColorFields(QWidget* parent);

    int Color() const { return color_; }  // 1 to 255
    void SetColor(int color);
    // Called when the user has chosen another one.
    std::function<void(int)> onChosen;

    ScriptedControl& Script() override { return *this; }
    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    std::wstring Kind() const override { return L"colours"; }
    bool IsEnabled() const override { return isEnabled(); }
    bool IsShown() const override { return !isHidden(); }
    std::wstring State() const override { return std::to_wstring(color_); }
    Refusal Choose(const std::wstring& item) override;

    QRect FieldOf(int color) const;
    int ColorAt(QPoint point) const;
    void Take(int color);

    int color_ = 7;
};

// "Select Color": a colour by its index.
class ColorDialog final : public CDialog {
  public:
    // `withNamed` offers the colours by layer (256) and by block (0), too.
    ColorDialog(QWidget* parent, int color, bool withNamed);

    int Color() const { return color_; }

  protected:
    bool OnInitDialog() override;
    void OnOK() override;

  private:
    void Show(int color);

    ColorFields* fields_;
    QLineEdit* number_;
    const bool withNamed_;
    int color_;
};

}  // namespace sg::ui
