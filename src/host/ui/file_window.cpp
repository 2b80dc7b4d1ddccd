#include "host/ui/file_window.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include "base/export.h"
#include "host/system/paths.h"
#include "platform/win/message_box.h"

namespace sg::ui {
namespace {

constexpr int kIsFolder = Qt::UserRole;  // of a list's item

// A list that the arrow keys lead through folders with.
class FolderList final : public QListWidget {
  public:
    FolderList(QWidget* parent, std::function<void()> enter, std::function<void()> leave)
        : QListWidget(parent), enter_(std::move(enter)), leave_(std::move(leave)) {}

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Right) return enter_();
        if (event->key() == Qt::Key_Left || event->key() == Qt::Key_Backspace) return leave_();
        QListWidget::keyPressEvent(event);
    }

  private:
    const std::function<void()> enter_, leave_;
};

QString folderToBeginIn(const std::wstring& folder) {
    const QString found = QString::fromStdWString(resolvePath(folder).path);
    return !folder.empty() && QDir(found).exists() ? found : QDir::currentPath();
}

}  // namespace

std::vector<FileKind> fileKinds(const std::wstring& filter) {
    std::vector<FileKind> kinds;
    const QStringList parts = QString::fromStdWString(filter).split(QLatin1Char('|'));
    for (int i = 0; i + 1 < parts.size() && !parts[i].isEmpty(); i += 2) {
        QStringList patterns = parts[i + 1].split(QLatin1Char(';'), Qt::SkipEmptyParts);
        patterns.replaceInStrings(QStringLiteral("*.*"), QStringLiteral("*"));
        kinds.push_back({parts[i], patterns});
    }
    if (kinds.empty()) kinds.push_back({QStringLiteral("All Files (*.*)"), {}});
    return kinds;
}

FileWindow::FileWindow(QWidget* parent, const FileRequest& request)
    : CDialog(parent), request_(request), kinds_(fileKinds(request.filter)) {
    setWindowTitle(QString::fromStdWString(request.title));
    setSizeGripEnabled(true);
    auto* const all = new QVBoxLayout(this);
    LayOutPlace(*all);
    if (IsFolder()) LayOutName(*all);
    MakeList();
    all->addWidget(list_, 1);
    if (!IsFolder()) LayOutName(*all);
    if (!IsFolder()) LayOutKinds(*all);
    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(NewOkButton());
    buttons->addWidget(NewCancelButton());
    all->addLayout(buttons);
}

// ---- Layout
// --------------------------------------------------------------------------------------

void FileWindow::LayOutPlace(QBoxLayout& all) {
    place_ = NewLabel(L"");
    SetControlId(*place_, kPlace);
    place_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* const row = new QHBoxLayout;
    row->addWidget(place_, 1);
    row->addWidget(
        NewButton(kUp, L"&Up", [this] { GoTo(QDir(folder_).filePath(QStringLiteral(".."))); }));
    all.addLayout(row);
}

void FileWindow::MakeList() {
    list_ = new FolderList(
        this, [this] { Enter(); }, [this] { GoTo(QDir(folder_).filePath(QStringLiteral(".."))); });
    SetControlId(*list_, kList);
    const QFontMetrics metrics = list_->fontMetrics();
    list_->setMinimumSize(64 * metrics.averageCharWidth(), 14 * metrics.height());
    connect(list_, &QListWidget::itemSelectionChanged, this, [this] { OnSelected(); });
    connect(list_, &QListWidget::itemDoubleClicked, this, [this](const QListWidgetItem* item) {
        item->data(kIsFolder).toBool() ? Enter() : OnOK();
    });
}

void FileWindow::LayOutName(QBoxLayout& all) {
    name_ = new QComboBox(this);
    SetControlId(*name_, kName);
    name_->setEditable(true);
    name_->setInsertPolicy(QComboBox::NoInsert);
    name_->setCompleter(nullptr);  // a path is what was typed
    name_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    for (const std::wstring& each : request_.recent)
        name_->addItem(QString::fromStdWString(each));
    auto* const row = new QHBoxLayout;
    row->addWidget(NewLabel(IsFolder() ? L"Folder &name:" : L"File &name:", name_));
    row->addWidget(name_, 1);
    all.addLayout(row);
}

void FileWindow::LayOutKinds(QBoxLayout& all) {
    kind_ = new QComboBox(this);
    SetControlId(*kind_, kKinds);
    for (const FileKind& kind : kinds_)
        kind_->addItem(kind.name);
    connect(kind_, &QComboBox::currentIndexChanged, this, [this] { GoTo(folder_); });
    auto* const row = new QHBoxLayout;
    row->addWidget(NewLabel(L"Files of &type:", kind_));
    row->addWidget(kind_, 1);
    all.addLayout(row);
}

bool FileWindow::OnInitDialog() {
    GoTo(folderToBeginIn(request_.folder));
    name_->setEditText(QString::fromStdWString(request_.name));
    name_->setFocus();
    name_->lineEdit()->selectAll();
    return false;
}

// It can be made larger.
void FileWindow::OnPlace() {
    adjustSize();
}

// ---- Folders
// -------------------------------------------------------------------------------------

void FileWindow::GoTo(const QString& folder) {
    QDir dir(QDir::cleanPath(folder));
    if (!dir.exists()) return;
    folder_ = dir.absolutePath();
    place_->setText(QDir::toNativeSeparators(folder_));
    QDir::Filters what = QDir::AllDirs | QDir::NoDotAndDotDot;
    if (!IsFolder()) {
        what |= QDir::Files;
        dir.setNameFilters(kinds_[size_t(kind_->currentIndex())].patterns);
    }
    const QIcon folderIcon = style()->standardIcon(QStyle::SP_DirIcon);
    const QIcon fileIcon = style()->standardIcon(QStyle::SP_FileIcon);
    list_->clear();
    for (const QFileInfo& info :
         dir.entryInfoList(what, QDir::DirsFirst | QDir::Name | QDir::IgnoreCase)) {
        auto* const item =
            new QListWidgetItem(info.isDir() ? folderIcon : fileIcon, info.fileName(), list_);
        item->setData(kIsFolder, info.isDir());
    }
}

// Shows the folder that is selected. For a folder that is then what OK takes.
void FileWindow::Enter() {
    const QString path = SelectedPath();
    if (path.isEmpty() || !QFileInfo(path).isDir()) return;
    GoTo(path);
    name_->setEditText(IsFolder() ? folder_ : QString());
}

void FileWindow::OnSelected() {
    const QString path = SelectedPath();
    if (!IsFolder() && !path.isEmpty() && !QFileInfo(path).isDir())
        name_->setEditText(QFileInfo(path).fileName());
}

QString FileWindow::SelectedPath() const {
    const QList<QListWidgetItem*> selected = list_->selectedItems();
    return selected.isEmpty() ? QString() : QDir(folder_).filePath(selected.front()->text());
}

// ---- OK
// ------------------------------------------------------------------------------------------

// Of a folder, what is selected counts before what is typed. What is typed for a file may name a
// folder, which is then shown.
void FileWindow::OnOK() {
    const QString selected = SelectedPath();
    const QString typed = name_->currentText().trimmed();
    if (!IsFolder() && typed.isEmpty()) return Enter();
    QString path = IsFolder() && !selected.isEmpty() ? selected : typed;
    if (!IsFolder()) path = QDir(folder_).absoluteFilePath(path);
    const std::wstring answer = path.toStdWString();
    const std::wstring before = request_.folder;
    if (!request_.takes || request_.takes(answer)) {
        chosen_ = answer;
        CDialog::OnOK();
    } else if (request_.folder != before) {
        GoTo(QString::fromStdWString(request_.folder));
        name_->setEditText(QString());
    }
}

}  // namespace sg::ui

// Lets the user choose; false when that is cancelled.
extern "C" SG_API bool swiftgateChooseFile(const sg::FileRequest& request, std::wstring& answer) {
    QWidget* const open =
        QApplication::instance() != nullptr ? QApplication::activeModalWidget() : nullptr;
    sg::ui::FileWindow window(open != nullptr ? open : sgMainWindow(), request);
    if (window.DoModal() != IDOK) return false;
    answer = window.Chosen();
    return true;
}
