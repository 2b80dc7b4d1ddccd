#include "platform/ui/dialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QEventLoop>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMainWindow>
#include <QMessageBox>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>

#include <utility>

#include "host/graphics/application.h"
#include "host/ui/widget_scripts.h"
#include "platform/win/message_box.h"

using namespace sg;

namespace {

// Widgets need the application object, which is made when the first dialog is.
QWidget* prepared(QWidget* parent) {
    graphics::needApplication();
    return parent;
}

// What stands in a dialog, or in a frame there, and is no part of another control.
bool isControlOf(const QDialog& dialog, const QWidget& widget) {
    const QWidget* parent = widget.parentWidget();
    if (qobject_cast<const QGroupBox*>(parent) != nullptr) parent = parent->parentWidget();
    return parent == &dialog;
}

QMessageBox::Icon iconOf(unsigned flags) {
    switch (flags & 0xF0) {
        case MB_ICONERROR:
            return QMessageBox::Critical;
        case MB_ICONQUESTION:
            return QMessageBox::Question;
        case MB_ICONWARNING:
            return QMessageBox::Warning;
        case MB_ICONINFORMATION:
            return QMessageBox::Information;
        default:
            return QMessageBox::NoIcon;
    }
}

}  // namespace

QWidget* sgMainWindow() {
    if (QCoreApplication::instance() == nullptr) return nullptr;
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (qobject_cast<QMainWindow*>(window) != nullptr) return window;
    }
    return nullptr;
}

CDialog::CDialog(QWidget* parent) : QDialog(prepared(parent)) {
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}

CDialog::~CDialog() = default;

// --- Running ---

intptr_t CDialog::DoModal() {
    Open();
    if (isOpen_) sgRunDialog(*this);
    Close();
    return result_;
}

void CDialog::Open() {
    isOpen_ = true;
    result_ = kCancelled;
    setModal(true);
    const bool wantsFocus = OnInitDialog();
    if (!isOpen_) return;
    OnPlace();
    show();
    activateWindow();
    if (wantsFocus) focusNextChild();
    OnShown();
}

void CDialog::Close() {
    OnClosed();
    hide();
    if (parentWidget() != nullptr) parentWidget()->window()->activateWindow();
}

void CDialog::EndDialog(intptr_t result) {
    if (!isOpen_) return;
    isOpen_ = false;
    result_ = result;
    if (loop_ != nullptr) loop_->quit();
}

void CDialog::OnOK() {
    EndDialog(IDOK);
}

void CDialog::OnCancel() {
    EndDialog(IDCANCEL);
}

// Without rules of its own a dialog is as large as its layout.
void CDialog::OnPlace() {
    if (layout() != nullptr) layout()->setSizeConstraint(QLayout::SetFixedSize);
    adjustSize();
}

// The toolkit would press the default button whichever has the focus: none but OK may become it.
void CDialog::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    auto* const button = qobject_cast<QPushButton*>(focusWidget());
    if (isReturn && button != nullptr && button->isEnabled()) {
        button->click();
    } else {
        QDialog::keyPressEvent(event);
    }
}

// --- Controls ---

void CDialog::SetControlId(QWidget& control, int id) {
    control.setObjectName(QString::number(id));
}

int CDialog::ControlId(const QWidget& control) {
    return control.objectName().toInt();
}

QWidget* CDialog::GetDlgItem(int id) const {
    return findChild<QWidget*>(QString::number(id));
}

QPushButton* CDialog::NewButton(int id, const wchar_t* text, std::function<void()> pressed) {
    auto* const button = new QPushButton(QString::fromWCharArray(text), this);
    SetControlId(*button, id);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [pressed = std::move(pressed)] { pressed(); });
    return button;
}

QPushButton* CDialog::NewOkButton() {
    QPushButton* const button = NewButton(IDOK, L"&OK", [this] { OnOK(); });
    button->setDefault(true);
    return button;
}

QPushButton* CDialog::NewCancelButton() {
    return NewButton(IDCANCEL, L"&Cancel", [this] { OnCancel(); });
}

QLineEdit* CDialog::NewEdit(int id) {
    auto* const edit = new QLineEdit(this);
    SetControlId(*edit, id);
    return edit;
}

QCheckBox* CDialog::NewCheckBox(int id, const wchar_t* text) {
    auto* const box = new QCheckBox(QString::fromWCharArray(text), this);
    SetControlId(*box, id);
    return box;
}

QLabel* CDialog::NewLabel(const wchar_t* text, QWidget* control) {
    auto* const label = new QLabel(QString::fromWCharArray(text), this);
    label->setTextFormat(Qt::PlainText);
    label->setBuddy(control);
    return label;
}

// --- What a script is told and does ---

std::wstring CDialog::Title() const {
    return windowTitle().toStdWString();
}

std::wstring CDialog::Text() const {
    std::wstring text;
    for (const QLabel* const label : findChildren<QLabel*>()) {
        if (label->buddy() != nullptr || label->isHidden() || label->text().isEmpty()) continue;
        text += (text.empty() ? L"" : L"\n") + label->text().toStdWString();
    }
    return text;
}

ui::ScriptedControl* CDialog::ScriptOf(QWidget& widget) {
    if (auto* const own = dynamic_cast<ui::Scriptable*>(&widget)) return &own->Script();
    for (const auto& script : scripts_) {
        if (&script->Widget() == &widget) return script.get();
    }
    auto made = ui::scriptFor(widget);
    if (made == nullptr) return nullptr;
    return scripts_.emplace_back(std::move(made)).get();
}

// The controls in the order of tabbing. The toolkit's chain of focus has all widgets, those inside
// of controls too.
template <class Take>
void CDialog::EachControl(const Take& take) {
    for (QWidget* widget = nextInFocusChain(); widget != nullptr && widget != this;
         widget = widget->nextInFocusChain()) {
        if (!isControlOf(*this, *widget)) continue;
        if (ui::ScriptedControl* const script = ScriptOf(*widget)) take(*widget, *script);
    }
}

std::vector<ui::NamedControl> CDialog::Controls() {
    std::vector<ui::NamedControl> controls;
    EachControl([&](QWidget& widget, ui::ScriptedControl& script) {
        controls.push_back({ControlId(widget), ui::labelOf(widget), &script});
    });
    return controls;
}

ui::Refusal CDialog::TypeKey(ui::ScriptedControl& control, const std::wstring& key) {
    QWidget* typedInto = nullptr;
    EachControl([&](QWidget& widget, ui::ScriptedControl& script) {
        if (&script == &control) typedInto = &widget;
    });
    return typedInto != nullptr ? ui::typeKey(*typedInto, key) : L"is gone";
}

ui::Refusal CDialog::Accept() {
    QWidget* const button = GetDlgItem(IDOK);
    if (button != nullptr) {
        const ui::Refusal refusal = ScriptOf(*button)->Press();
        return refusal.empty() ? refusal : L"the button OK " + refusal;
    }
    OnOK();
    return {};
}

std::wstring CDialog::Answer() const {
    switch (result_) {
        case IDOK:
            return L"OK";
        case IDCANCEL:
            return L"Cancel";
        default:
            return std::to_wstring(result_);
    }
}

void CDialog::Settle() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

bool CDialog::SavePicture(const std::wstring& path) {
    Settle();
    return grab().save(ui::toQString(path));
}

bool CDialog::HasDisplay() const {
    const QString platform = QGuiApplication::platformName();
    return platform != QStringLiteral("offscreen") && platform != QStringLiteral("minimal");
}

void CDialog::WaitForPerson() {
    if (!isOpen_) return;
    QEventLoop loop;
    QEventLoop* const outer = std::exchange(loop_, &loop);
    loop.exec(QEventLoop::DialogExec);
    loop_ = outer;
}

int CDialog::ShowBox(const std::wstring& title, const std::wstring& text, unsigned flags) {
    QMessageBox box(iconOf(flags), ui::toQString(title), ui::toQString(text), QMessageBox::NoButton,
                    this);
    box.setTextFormat(Qt::PlainText);
    return ui::runBox(box, flags);
}
