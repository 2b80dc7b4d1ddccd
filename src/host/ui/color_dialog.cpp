#include "host/ui/color_dialog.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

#include "base/text.h"
#include "platform/db/color.h"
#include "platform/win/message_box.h"

namespace sg::ui {
namespace {

enum Id { kFields = 100, kNumber = 101, kByLayerButton = 102, kByBlockButton = 103 };

constexpr int kFirst = 1, kLast = 255;
constexpr int kByBlock = 0, kByLayer = 256;
constexpr int kFirstHue = 10, kFirstGrey = 250, kShades = 10, kHues = 24;
constexpr int kBasicRow = kShades + 1;  // below a gap of one field

QColor shownColor(int index) {
    AcCmColor color;
    color.setColorIndex(static_cast<uint16_t>(index));
    return QColor::fromRgb(color.rgb());
}

// The number of a colour, or the name of one that is none of the table; -1 for anything else.
int colorNamed(const QString& text, bool withNamed) {
    bool isNumber = false;
    const int number = text.trimmed().toInt(&isNumber);
    const int first = withNamed ? kByBlock : kFirst, last = withNamed ? kByLayer : kLast;
    if (isNumber) return number >= first && number <= last ? number : -1;
    if (!withNamed) return -1;
    const std::wstring name(trimmed(text.toStdWString()));
    if (equalIgnoringCase(name, L"ByLayer")) return kByLayer;
    return equalIgnoringCase(name, L"ByBlock") ? kByBlock : -1;
}

QString nameOf(int color) {
    if (color == kByLayer) return QStringLiteral("ByLayer");
    return color == kByBlock ? QStringLiteral("ByBlock") : QString::number(color);
}

}  // namespace

// --- The fields ---

ColorFields::ColorFields(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
}

QSize ColorFields::sizeHint() const {
    const int side = fontMetrics().height();
    return {kHues * side + 1, (kBasicRow + 2) * side + 1};
}

// A column a hue, its ten shades below each other.
QRect ColorFields::FieldOf(int color) const {
    const int side = fontMetrics().height();
    int column = 0, row = 0;
    if (color >= kFirstGrey) {
        column = color - kFirstGrey;
        row = kBasicRow + 1;
    } else if (color >= kFirstHue) {
        column = (color - kFirstHue) / kShades;
        row = (color - kFirstHue) % kShades;
    } else {
        column = color - kFirst;
        row = kBasicRow;
    }
    return {column * side, row * side, side, side};
}

int ColorFields::ColorAt(QPoint point) const {
    for (int color = kFirst; color <= kLast; ++color) {
        if (FieldOf(color).contains(point)) return color;
    }
    return -1;
}

void ColorFields::SetColor(int color) {
    color_ = std::clamp(color, kFirst, kLast);
    update();
}

void ColorFields::Take(int color) {
    if (color < kFirst || color > kLast) return;
    SetColor(color);
    if (onChosen) onChosen(color);
}

Refusal ColorFields::Choose(const std::wstring& item) {
    const int color = colorNamed(QString::fromStdWString(item), false);
    if (color < 0) return L"has no colour \"" + item + L"\"";
    Take(color);
    return {};
}

void ColorFields::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Window));
    for (int color = kFirst; color <= kLast; ++color) {
        painter.setBrush(shownColor(color));
        painter.drawRect(FieldOf(color));
    }
    painter.setBrush(Qt::NoBrush);
    const QRect chosen = FieldOf(color_);
    painter.setPen(QPen(palette().color(QPalette::Base), 1));
    painter.drawRect(chosen.adjusted(1, 1, -1, -1));
    painter.setPen(QPen(palette().color(hasFocus() ? QPalette::Highlight : QPalette::Text), 2));
    painter.drawRect(chosen);
}

void ColorFields::mousePressEvent(QMouseEvent* event) {
    Take(ColorAt(event->position().toPoint()));
}

void ColorFields::keyPressEvent(QKeyEvent* event) {
    const int side = fontMetrics().height();
    QPoint step;
    switch (event->key()) {
        case Qt::Key_Left:
            step = {-side, 0};
            break;
        case Qt::Key_Right:
            step = {side, 0};
            break;
        case Qt::Key_Up:
            step = {0, -side};
            break;
        case Qt::Key_Down:
            step = {0, side};
            break;
        default:
            QWidget::keyPressEvent(event);
            return;
    }
    // Over the gap above the basic colours, too.
    const QPoint here = FieldOf(color_).center();
    const int next = ColorAt(here + step);
    Take(next >= 0 ? next : ColorAt(here + 2 * step));
}

// --- The dialog ---

ColorDialog::ColorDialog(QWidget* parent, int color, bool withNamed)
    : CDialog(parent), withNamed_(withNamed), color_(color) {
    setWindowTitle(QStringLiteral("Select Color"));
    fields_ = new ColorFields(this);
    SetControlId(*fields_, kFields);
    fields_->onChosen = [this](int chosen) { number_->setText(nameOf(chosen)); };
    number_ = NewEdit(kNumber);
    connect(number_, &QLineEdit::textEdited, this, [this](const QString& text) {
        const int typed = colorNamed(text, withNamed_);
        if (typed >= kFirst && typed <= kLast) fields_->SetColor(typed);
    });

    auto* const below = new QHBoxLayout;
    below->addWidget(NewLabel(L"&Color:", number_));
    below->addWidget(number_);
    if (withNamed_) {
        below->addWidget(NewButton(kByLayerButton, L"By&Layer", [this] { Show(kByLayer); }));
        below->addWidget(NewButton(kByBlockButton, L"By&Block", [this] { Show(kByBlock); }));
    }
    below->addStretch();
    below->addWidget(NewOkButton());
    below->addWidget(NewCancelButton());
    auto* const all = new QVBoxLayout(this);
    all->addWidget(fields_);
    all->addLayout(below);
}

void ColorDialog::Show(int color) {
    number_->setText(nameOf(color));
    if (color >= kFirst && color <= kLast) fields_->SetColor(color);
}

bool ColorDialog::OnInitDialog() {
    Show(color_);
    fields_->setFocus();
    return false;
}

void ColorDialog::OnOK() {
    const int typed = colorNamed(number_->text(), withNamed_);
    if (typed < 0) {
        MessageBoxW(nullptr, L"A colour is a number from 1 to 255.", L"Select Color",
                    MB_OK | MB_ICONWARNING);
        number_->setFocus();
        number_->selectAll();
        return;
    }
    color_ = typed;
    CDialog::OnOK();
}

}  // namespace sg::ui

// The index of the colour that the user chooses; -1 for none.
extern "C" SG_API int swiftgateChooseColor(int current, bool withNamed) {
    QWidget* const open =
        QApplication::instance() != nullptr ? QApplication::activeModalWidget() : nullptr;
    sg::ui::ColorDialog dialog(open != nullptr ? open : sgMainWindow(), current, withNamed);
    return dialog.DoModal() == IDOK ? dialog.Color() : -1;
}
