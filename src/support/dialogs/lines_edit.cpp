#include "support/dialogs/lines_edit.h"

#include <QTextDocument>

namespace sg {
namespace {

// The toolkit ends a line at each of these. They are kept as characters that no text has.
constexpr char16_t kReturn = u'\r', kParagraph = u'\u2029';
constexpr char16_t kKeptReturn = 0xFDD2, kKeptParagraph = 0xFDD3;

}  // namespace

LinesEdit::LinesEdit(QWidget* parent) : QPlainTextEdit(parent) {
    setTabChangesFocus(true);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
}

void LinesEdit::SetText(const std::wstring& text) {
    QString shown = QString::fromStdWString(text);
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    shown.replace(QChar(kReturn), QChar(kKeptReturn));
    shown.replace(QChar(kParagraph), QChar(kKeptParagraph));
    setPlainText(shown);
}

// The raw text has its no-break spaces still, and paragraph separators for the ends of lines.
std::wstring LinesEdit::Text() const {
    QString text = document()->toRawText();
    text.replace(QChar(kParagraph), QStringLiteral("\r\n"));
    text.replace(QChar(kKeptReturn), QChar(kReturn));
    text.replace(QChar(kKeptParagraph), QChar(kParagraph));
    return text.toStdWString();
}

}  // namespace sg
