#pragma once

#include <QRect>

#include <initializer_list>
#include <string>
#include <vector>

#include "platform/ui/dialog.h"

// What a control does when its dialog grows: a share of the growth moves it, or makes it larger.
enum DlgControlProperty { MOVEX, MOVEY, ELASTICX, ELASTICY };

struct DLGCTLINFO {
    int control;  // its id
    DlgControlProperty property;
    int percent;
};

// A dialog that keeps its position and size, and whose controls follow its size.
class SG_API CAdUiDialog : public CDialog {
  public:
    using CDialog::CDialog;

    // Under this name the dialog's position and size are kept, from one time that it is shown to
    // the next, in the key "Software\Swift Gate\Dialogs" of the user's registry. It is the name of
    // its help topic, too, which F1 shows.
    void SetDialogName(const std::wstring& name) { name_ = name; }
    const std::wstring& DialogName() const { return name_; }

    // The rules by which controls follow the dialog's size, which can then be changed; controls
    // without a rule stay where they are. It never gets smaller than it was laid out.
    void SetControlProperty(std::initializer_list<DLGCTLINFO> rules) { rules_ = rules; }

  protected:
    void OnPlace() override;
    void OnShown() override;
    void OnClosed() override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    struct Placed {
        QWidget* control;
        QRect place;  // as it was laid out
        int percent[4];
    };
    void FreezeLayout();
    void ApplyRules();

    std::wstring name_;
    std::vector<DLGCTLINFO> rules_;
    std::vector<Placed> placed_;
    QSize laidOut_;     // of the dialog
    QRect shownFirst_;  // where it came up this time
};

// The same: the drawing program has two such classes, one for itself and one for its modules.
class SG_API CAcUiDialog : public CAdUiDialog {
  public:
    using CAdUiDialog::CAdUiDialog;
};
