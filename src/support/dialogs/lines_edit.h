#pragma once

#include <QPlainTextEdit>

#include <string>

namespace sg {

// An edit of several lines. Its text is one whose lines end with CR LF; a CR or a paragraph
// separator that ends no line is a character like others. Tab leaves it.
class LinesEdit final : public QPlainTextEdit {
  public:
    explicit LinesEdit(QWidget* parent);

    void SetText(const std::wstring& text);
    std::wstring Text() const;
};

}  // namespace sg
