#include "support/dialogs/safe_continue.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

#include "base/text.h"
#include "support/prompt_wrap.h"

namespace sg {

CSafeContinue::CSafeContinue(const std::wstring& caption, const std::wstring& prompt,
                             std::wstring expected)
    : CDialog(nullptr), expected_(std::move(expected)), prompt_(prompt) {
    setWindowTitle(QString::fromStdWString(caption));
    label_ = NewLabel(L"");
    SetControlId(*label_, kPrompt);
    label_->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    answer_ = NewEdit(kAnswer);
    answer_->setAlignment(Qt::AlignHCenter);
    const int character = fontMetrics().averageCharWidth();
    answer_->setFixedWidth(20 * character);
    connect(answer_, &QLineEdit::textChanged, this, [this] { OnChange(); });
    ok_ = NewOkButton();

    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(ok_);
    buttons->addWidget(NewCancelButton());
    buttons->addStretch();
    auto* const all = new QVBoxLayout(this);
    all->addWidget(label_);
    all->addWidget(answer_, 0, Qt::AlignHCenter);
    all->addLayout(buttons);
    label_->setMinimumWidth(76 * character);
}

bool CSafeContinue::OnInitDialog() {
    const int lines = WrapPrompt(prompt_);
    GrowLabel(lines);
    label_->setText(QString::fromStdWString(prompt_));
    answer_->setFocus();
    ok_->setEnabled(false);
    return false;
}

// By a line for each, with the one that it has as a spare; edit and buttons stay on the screen.
void CSafeContinue::GrowLabel(int lines) {
    const QSize room = screen()->availableSize() * 3 / 4;
    const int64_t height = int64_t(label_->fontMetrics().lineSpacing()) * (int64_t(lines) + 1);
    label_->setFixedHeight(int(std::min<int64_t>(height, room.height())));
    label_->setMaximumWidth(std::max(label_->minimumWidth(), room.width()));
}

void CSafeContinue::OnChange() {
    if (!filterOn_) return;
    const std::wstring text = upperCased(answer_->text().toStdWString());
    filterOn_ = false;
    answer_->setText(QString::fromStdWString(text));
    answer_->end(false);
    filterOn_ = true;
    ok_->setEnabled(text == expected_);
}

void CSafeContinue::OnOK() {
    isTyped_ = upperCased(answer_->text().toStdWString()) == expected_;
    CDialog::OnOK();
}

}  // namespace sg
