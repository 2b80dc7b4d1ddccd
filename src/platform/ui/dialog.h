#pragma once

#include <QDialog>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/export.h"
#include "platform/ui/scripted.h"

class QCheckBox;
class QEventLoop;
class QLabel;
class QLineEdit;
class QPushButton;

namespace sg::ui {
class WidgetScript;
}

// The drawing program's main window, which is the parent of dialogs; null when there is none.
SG_API QWidget* sgMainWindow();

// A modal dialog. Its controls are widgets of the toolkit in a layout, and each that a program or a
// script speaks of has a number, its id; those of the buttons OK and Cancel are IDOK and IDCANCEL.
// Tab goes through the controls in the order in which they were made. Return presses the button
// that has the focus, otherwise the default one.
//
// It runs on the thread that makes it, which is the main one. Functions that a derived class
// overrides may run further dialogs and message boxes, and call LISP.
class SG_API CDialog : public QDialog, private sg::ui::ScriptedDialog {
  public:
    explicit CDialog(QWidget* parent = nullptr);
    ~CDialog() override;

    // Shows the dialog until it is closed and answers how: IDOK, IDCANCEL or what EndDialog was
    // given.
    intptr_t DoModal();
    // Closes it when what is running has ended.
    void EndDialog(intptr_t result);

    // The control with this id; null when there is none.
    QWidget* GetDlgItem(int id) const;
    static void SetControlId(QWidget& control, int id);
    static int ControlId(const QWidget& control);  // 0: it has none

    void accept() override { OnOK(); }
    void reject() override { OnCancel(); }

  protected:
    // Fills the controls, before the dialog is seen. False when it has given the focus to one of
    // them; otherwise the first one gets it.
    virtual bool OnInitDialog() { return true; }
    virtual void OnOK();
    virtual void OnCancel();
    // Sizes and places the dialog, before it is seen.
    virtual void OnPlace();
    // It has come up.
    virtual void OnShown() {}
    // It has been closed, and still stands where it was.
    virtual void OnClosed() {}
    void keyPressEvent(QKeyEvent* event) override;

    // Makers of controls. Texts have "&" before the character of their mnemonic.
    QPushButton* NewButton(int id, const wchar_t* text, std::function<void()> pressed);
    QPushButton* NewOkButton();
    QPushButton* NewCancelButton();
    QLineEdit* NewEdit(int id);
    QCheckBox* NewCheckBox(int id, const wchar_t* text);
    // With a control, the label's mnemonic leads to it.
    QLabel* NewLabel(const wchar_t* text, QWidget* control = nullptr);

  private:
    std::wstring Title() const override;
    std::wstring Text() const override;
    std::vector<sg::ui::NamedControl> Controls() override;
    sg::ui::Refusal TypeKey(sg::ui::ScriptedControl& control, const std::wstring& key) override;
    bool IsOpen() const override { return isOpen_; }
    sg::ui::Refusal Accept() override;
    void Cancel() override { OnCancel(); }
    void Abandon() override { EndDialog(kCancelled); }
    std::wstring Answer() const override;
    void Settle() override;
    bool SavePicture(const std::wstring& path) override;
    bool HasDisplay() const override;
    void WaitForPerson() override;
    int ShowBox(const std::wstring& title, const std::wstring& text, unsigned flags) override;

    sg::ui::ScriptedControl* ScriptOf(QWidget& widget);
    template <class Take>
    void EachControl(const Take& take);
    void Open();
    void Close();

    static constexpr intptr_t kCancelled = 2;  // IDCANCEL

    bool isOpen_ = false;
    intptr_t result_ = kCancelled;
    QEventLoop* loop_ = nullptr;  // while a person has it
    std::vector<std::unique_ptr<sg::ui::WidgetScript>> scripts_;
};
