#pragma once

#include <QString>
#include <QStringList>

#include <string>
#include <vector>

#include "host/editor/input_source.h"
#include "platform/ui/dialog.h"

class QBoxLayout;
class QComboBox;
class QLabel;
class QListWidget;

namespace sg::ui {

// A kind of files: what it is called, and the patterns of its names.
struct FileKind {
    QString name;
    QStringList patterns;
};
// Those of a filter: "DWG Files (*.dwg)|*.dwg||". "*.*" is any name; an empty filter has that
// alone.
std::vector<FileKind> fileKinds(const std::wstring& filter);

// The chooser of files and folders. It closes with an answer that the request takes.
class FileWindow final : public CDialog {
  public:
    static constexpr int kPlace = 1089, kUp = 1090, kList = 1120, kKinds = 1136, kName = 1148;

    // The request outlives the window.
    FileWindow(QWidget* parent, const FileRequest& request);

    // After OK.
    const std::wstring& Chosen() const { return chosen_; }

  protected:
    bool OnInitDialog() override;
    void OnPlace() override;
    void OnOK() override;

  private:
    bool IsFolder() const { return request_.kind == FileRequest::Kind::folder; }
    void MakeList();
    void LayOutPlace(QBoxLayout& all);
    void LayOutName(QBoxLayout& all);
    void LayOutKinds(QBoxLayout& all);
    void GoTo(const QString& folder);
    void Enter();
    void OnSelected();
    QString SelectedPath() const;

    const FileRequest& request_;
    const std::vector<FileKind> kinds_;
    QString folder_;  // that is shown
    std::wstring chosen_;
    QLabel* place_;
    QListWidget* list_;
    QComboBox* name_;
    QComboBox* kind_ = nullptr;  // of files alone
};

}  // namespace sg::ui
