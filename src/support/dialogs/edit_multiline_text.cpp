#include "support/dialogs/edit_multiline_text.h"

#include "platform/win/message_box.h"
#include "support/dialogs/above_buttons.h"
#include "support/dialogs/lines_edit.h"
#include "support/dialogs/product_icon.h"

namespace sg {
namespace {

void replaceAll(std::wstring& text, std::wstring_view what, std::wstring_view by) {
    std::wstring replaced;
    size_t done = 0;
    for (size_t at; (at = text.find(what, done)) != std::wstring::npos; done = at + what.size())
        replaced.append(text, done, at - done).append(by);
    text = replaced.append(text, done);
}

}  // namespace

CEditMultilineText::CEditMultilineText(QWidget* parent, const std::wstring& text,
                                       const std::wstring& title)
    : CAcUiDialog(parent), text_(text) {
    // Deliberately also behind a CR that the text has.
    replaceAll(text_, L"\n", L"\r\n");
    setWindowTitle(title.empty() ? QStringLiteral("Edit Text") : QString::fromStdWString(title));
    SetDialogName(L"qn_swiftgate:EditMultilineText");
    setWindowIcon(productIcon());
    edit_ = new LinesEdit(this);
    SetControlId(*edit_, kEdit);
    const QFontMetrics metrics = edit_->fontMetrics();
    edit_->setMinimumSize(60 * metrics.averageCharWidth(), 14 * metrics.height());

    QPushButton* const ok = NewOkButton();
    QPushButton* const cancel = NewCancelButton();
    layOutAboveButtons(*this, *edit_, kEdit, ok, cancel);
}

bool CEditMultilineText::OnInitDialog() {
    edit_->SetText(text_);
    edit_->setFocus();
    edit_->selectAll();
    return false;
}

void CEditMultilineText::OnOK() {
    text_ = edit_->Text();
    replaceAll(text_, L"\r\n", L"\n");
    CAcUiDialog::OnOK();
}

}  // namespace sg
