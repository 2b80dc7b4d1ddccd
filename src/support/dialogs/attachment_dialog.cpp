#include "support/dialogs/attachment_dialog.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "base/text.h"
#include "platform/win/file_dialog.h"
#include "platform/win/message_box.h"

namespace sg {
namespace {

constexpr const wchar_t* kFilter =
    L"Drawing Files (*.dwg)|*.dwg|Database Files (*.qn)|*.qn|IES Files (*.ies)|*.ies|"
    L"All Files (*.*)|*.*||";

// Lists are sorted ignoring case.
class PathItem final : public QListWidgetItem {
  public:
    using QListWidgetItem::QListWidgetItem;
    bool operator<(const QListWidgetItem& other) const override {
        const std::wstring mine = text().toStdWString(), its = other.text().toStdWString();
        if (!equalIgnoringCase(mine, its)) return upperCased(mine) < upperCased(its);
        return mine < its;
    }
};

// What is in front of the last "\", or where there is none of the last "/".
std::wstring folderOf(const std::wstring& path) {
    size_t end = path.rfind(L'\\');
    if (end == std::wstring::npos) end = path.rfind(L'/');
    return end == std::wstring::npos ? std::wstring() : path.substr(0, end);
}

}  // namespace

CAttachmentDialog::CAttachmentDialog(std::vector<std::wstring>& attachments, QWidget* parent)
    : CDialog(parent), attachments_(attachments) {
    setWindowTitle(QStringLiteral("Quillon Attachments"));
    list_ = new QListWidget(this);
    SetControlId(*list_, kList);
    list_->setSortingEnabled(true);
    list_->setTextElideMode(Qt::ElideNone);
    list_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    const QFontMetrics metrics = list_->fontMetrics();
    list_->setMinimumSize(80 * metrics.averageCharWidth(), 11 * metrics.height());
    LayOut();
}

void CAttachmentDialog::LayOut() {
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(NewButton(kAdd, L"Add", [this] { OnAdd(); }));
    buttons->addWidget(NewButton(kRemove, L"Remove", [this] { OnRemove(); }));
    buttons->addStretch();
    buttons->addWidget(NewOkButton());
    buttons->addWidget(NewButton(IDCANCEL, L"Cancel", [this] { OnCancel(); }));
    auto* const all = new QVBoxLayout(this);
    all->addWidget(list_);
    all->addLayout(buttons);
}

bool CAttachmentDialog::OnInitDialog() {
    for (const std::wstring& path : attachments_) {
        if (path.empty()) continue;
        AddPath(path);
        initialFolder_ = folderOf(path);
    }
    UpdateListExtent();
    return true;
}

void CAttachmentDialog::AddPath(const std::wstring& path) {
    list_->addItem(new PathItem(QString::fromStdWString(path)));
}

void CAttachmentDialog::OnAdd() {
    constexpr bool opens = true;
    CFileDialog chooser(opens, L"", L"", OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST, kFilter,
                        GetActiveWindow());
    chooser.m_ofn.lpstrTitle = L"Select Additional Files";
    chooser.m_ofn.lpstrInitialDir = initialFolder_;
    if (chooser.DoModal() != IDOK) return;
    const QString path = QString::fromStdWString(chooser.GetPathName());
    if (!list_->findItems(path, Qt::MatchFixedString | Qt::MatchCaseSensitive).isEmpty()) return;
    AddPath(chooser.GetPathName());
    UpdateListExtent();
}

// Nothing is selected then.
void CAttachmentDialog::OnRemove() {
    qDeleteAll(list_->selectedItems());
    list_->setCurrentRow(-1);
    UpdateListExtent();
}

void CAttachmentDialog::OnOK() {
    attachments_.assign(size_t(list_->count()), std::wstring());
    for (int i = 0; i < list_->count(); ++i)
        attachments_[size_t(i)] = list_->item(i)->text().toStdWString();
    CDialog::OnOK();
}

// As wide as the longest path and a character.
void CAttachmentDialog::UpdateListExtent() {
    const QFontMetrics metrics = list_->fontMetrics();
    int extent = 0;
    for (int i = 0; i < list_->count(); ++i) {
        const int width = metrics.horizontalAdvance(list_->item(i)->text());
        extent = std::max(extent, width + metrics.averageCharWidth());
    }
    constexpr int kEdges = 4;
    for (int i = 0; i < list_->count(); ++i)
        list_->item(i)->setSizeHint(QSize(extent + kEdges, metrics.height() + kEdges));
}

}  // namespace sg
