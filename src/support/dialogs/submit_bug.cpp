#include "support/dialogs/submit_bug.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include "database/driver_offer.h"
#include "platform/win/message_box.h"
#include "support/dialogs/attachment_dialog.h"
#include "support/dialogs/lines_edit.h"
#include "support/dialogs/product_icon.h"
#include "support/report_rules.h"

namespace sg {
namespace {

constexpr const wchar_t* kTip =
    L"Save as a ZIP file to your desktop.  Use this option if sending normally fails.";

int idOf(ReportField field) {
    return static_cast<int>(field);
}

}  // namespace

CSubmitBug::CSubmitBug(QWidget* parent, const SupportServices& services,
                       const ReportRequest& request)
    : CAcUiDialog(parent),
      services_(services),
      mode_(request.mode),
      report_(services.newReport(*this, request)) {
    SetDialogName(L"qn_swiftgate:SubmitBug");
    setWindowIcon(productIcon());
    MakeControls();
}

// ---- Layout
// --------------------------------------------------------------------------------------

void CSubmitBug::MakeControls() {
    QWidget* const to = NewToGroup();
    QWidget* const from = NewFromGroup();
    attachments_ = NewButton(kAttachments, L"Attachments. . .", [this] { EditAttachments(); });
    count_ = NewLabel(L"");
    SetControlId(*count_, kCount);
    count_->setEnabled(false);
    toDesktop_ = NewCheckBox(kToDesktop, L"Save to desktop (check if sending fails or crashes)");
    toDesktop_->setToolTip(QString::fromWCharArray(kTip));
    connect(toDesktop_, &QCheckBox::toggled, status_, &QLabel::setDisabled);
    LayOut(to, from);
}

QWidget* CSubmitBug::NewToGroup() {
    auto* const group = new QGroupBox(QStringLiteral("To:"), this);
    SetControlId(*group, kToGroup);
    status_ = NewLabel((L"Quillon Support (" + services_.supportAddress() + L")").c_str());
    SetControlId(*status_, kStatus);
    status_->setAlignment(Qt::AlignCenter);
    auto* const inside = new QVBoxLayout(group);
    inside->addWidget(status_);
    return group;
}

QWidget* CSubmitBug::NewFromGroup() {
    auto* const group = new QGroupBox(QStringLiteral("From:"), this);
    SetControlId(*group, kFromGroup);
    auto* const inside = new QGridLayout(group);
    const std::pair<ReportField, const wchar_t*> fields[] = {
        {ReportField::name, L"Name:"},
        {ReportField::email, L"Email Address (required):"},
        {ReportField::repeatedEmail, L"Re-enter Email Address:"},
        {ReportField::phone, L"Phone Number:"},
    };
    int row = 0;
    for (const auto& [field, label] : fields) {
        QLineEdit* const edit = NewEdit(idOf(field));
        inside->addWidget(NewLabel(label, edit), row, 0);
        inside->addWidget(edit, row++, 1);
    }
    text_ = new LinesEdit(this);
    SetControlId(*text_, idOf(ReportField::text));
    const QFontMetrics metrics = text_->fontMetrics();
    text_->setMinimumSize(70 * metrics.averageCharWidth(), 8 * metrics.height());
    inside->addWidget(NewLabel(L"Additional Information:", text_), row++, 0, 1, 2);
    inside->addWidget(text_, row, 0, 1, 2);
    return group;
}

void CSubmitBug::LayOut(QWidget* to, QWidget* from) {
    auto* const files = new QHBoxLayout;
    files->addWidget(attachments_);
    files->addWidget(count_, 1);
    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(NewOkButton());
    buttons->addWidget(NewButton(IDCANCEL, L"Cancel", [this] { OnCancel(); }));
    auto* const all = new QVBoxLayout(this);
    all->addWidget(to);
    all->addWidget(from);
    all->addLayout(files);
    all->addWidget(toDesktop_);
    all->addLayout(buttons);
}

// ---- What it starts with
// -------------------------------------------------------------------------

bool CSubmitBug::OnInitDialog() {
    const ReportSender sender = storedSender();
    ShowSender(sender);
    const ReportMode mode = reportMode(mode_);
    setWindowTitle(QString::fromWCharArray(mode.dialogTitle));
    attachments_->setEnabled(mode.attachmentsCanBeEdited);
    ShowAttachmentCount();
    focusField(sender.firstFocus());
    return false;
}

void CSubmitBug::ShowSender(const ReportSender& sender) {
    Edit(ReportField::name).setText(QString::fromStdWString(sender.name));
    Edit(ReportField::email).setText(QString::fromStdWString(sender.email));
    Edit(ReportField::repeatedEmail).setText(QString::fromStdWString(sender.email));
    Edit(ReportField::phone).setText(QString::fromStdWString(sender.phone));
    toDesktop_->setChecked(sender.savesToDesktop);
}

// In the middle of the main window, or of the screen, wherever it was the last time.
void CSubmitBug::OnPlace() {
    CAcUiDialog::OnPlace();
    const QWidget* const main = parentWidget();
    QRect place(QPoint(), size());
    place.moveCenter(
        (main != nullptr ? main->frameGeometry() : screen()->availableGeometry()).center());
    move(place.topLeft());
}

void CSubmitBug::ShowAttachmentCount() {
    count_->setText(QString::fromStdWString(attachmentCountText(report_->attachments.size())));
}

void CSubmitBug::EditAttachments() {
    CAttachmentDialog dialog(report_->attachments, this);
    if (checkDialogResult(dialog.DoModal()) == IDOK) ShowAttachmentCount();
}

// ---- Sending
// -------------------------------------------------------------------------------------

void CSubmitBug::OnOK() {
    if (report_->submit()) CAcUiDialog::OnOK();
}

QLineEdit& CSubmitBug::Edit(ReportField field) const {
    return *static_cast<QLineEdit*>(GetDlgItem(idOf(field)));
}

std::wstring CSubmitBug::fieldText(ReportField field) {
    return field == ReportField::text ? text_->Text() : Edit(field).text().toStdWString();
}

void CSubmitBug::focusField(ReportField field) {
    GetDlgItem(idOf(field))->setFocus();
}

bool CSubmitBug::isSaveToDesktopChecked() {
    return toDesktop_->isChecked();
}

// The display gets the picture now; what the user does meanwhile waits.
void CSubmitBug::showStatus(const std::wstring& text) {
    status_->setText(QString::fromStdWString(text));
    status_->repaint();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

int CSubmitBug::showBox(const std::wstring& text, const std::wstring& caption, unsigned flags) {
    return MessageBoxW(GetActiveWindow(), text.c_str(), caption.c_str(), flags);
}

}  // namespace sg
