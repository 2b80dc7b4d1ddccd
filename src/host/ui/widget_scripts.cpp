#include "host/ui/widget_scripts.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPointer>

#include <optional>

#include "base/text.h"

namespace sg::ui {
namespace {

// "&&" is one "&" that is shown.
std::wstring withoutMnemonic(const QString& text) {
    std::wstring plain;
    const std::wstring marked = text.toStdWString();
    for (size_t i = 0; i < marked.size(); ++i) {
        if (marked[i] == L'&' && i + 1 < marked.size()) ++i;
        plain += marked[i];
    }
    return plain;
}

class ButtonScript final : public WidgetScript {
  public:
    explicit ButtonScript(QAbstractButton& button) : WidgetScript(button), button_(button) {}
    std::wstring Kind() const override { return button_.isCheckable() ? L"check box" : L"button"; }
    std::wstring State() const override {
        return !button_.isCheckable() ? L"" : button_.isChecked() ? L"on" : L"off";
    }
    Refusal Press() override {
        if (const Refusal refusal = Unusable(); !refusal.empty()) return refusal;
        button_.setFocus(Qt::MouseFocusReason);
        button_.click();
        return {};
    }
    Refusal Check(bool on) override {
        if (!button_.isCheckable()) return CannotBe(L"checked");
        if (const Refusal refusal = Unusable(); !refusal.empty()) return refusal;
        if (button_.isChecked() != on) return Press();
        return {};
    }

  private:
    QAbstractButton& button_;
};

class LabelScript final : public WidgetScript {
  public:
    explicit LabelScript(QLabel& label) : WidgetScript(label), label_(label) {}
    std::wstring Kind() const override { return L"text"; }
    std::wstring State() const override { return withoutMnemonic(label_.text()); }

  private:
    QLabel& label_;
};

class EditScript final : public WidgetScript {
  public:
    explicit EditScript(QLineEdit& edit) : WidgetScript(edit), edit_(edit) {}
    std::wstring Kind() const override { return L"edit"; }
    std::wstring State() const override { return L"\"" + edit_.text().toStdWString() + L"\""; }
    Refusal SetText(const std::wstring& text) override {
        if (const Refusal refusal = Unusable(); !refusal.empty()) return refusal;
        if (edit_.isReadOnly()) return L"cannot be edited";
        edit_.setFocus(Qt::MouseFocusReason);
        edit_.selectAll();
        edit_.insert(toQString(text));
        return {};
    }

  private:
    QLineEdit& edit_;
};

class TextScript final : public WidgetScript {
  public:
    explicit TextScript(QPlainTextEdit& edit) : WidgetScript(edit), edit_(edit) {}
    std::wstring Kind() const override { return L"edit"; }
    std::wstring State() const override {
        return L"\"" + edit_.toPlainText().toStdWString() + L"\"";
    }
    Refusal SetText(const std::wstring& text) override {
        if (const Refusal refusal = Unusable(); !refusal.empty()) return refusal;
        if (edit_.isReadOnly()) return L"cannot be edited";
        edit_.setFocus(Qt::MouseFocusReason);
        edit_.selectAll();
        edit_.insertPlainText(toQString(text));
        return {};
    }

  private:
    QPlainTextEdit& edit_;
};

// The item of a text, ignoring case where none has it exactly, or else of a number; -1: none.
template <class TextAt>
int itemOf(const std::wstring& wanted, int count, const TextAt& textAt) {
    for (int i = 0; i < count; ++i) {
        if (textAt(i).toStdWString() == wanted) return i;
    }
    for (int i = 0; i < count; ++i) {
        if (equalIgnoringCase(textAt(i).toStdWString(), wanted)) return i;
    }
    bool isNumber = false;
    const int number = toQString(wanted).toInt(&isNumber);
    return isNumber && number >= 0 && number < count ? number : -1;
}

Refusal noItem(const std::wstring& item) {
    return L"has no item \"" + item + L"\"";
}

class ComboScript final : public WidgetScript {
  public:
    explicit ComboScript(QComboBox& combo) : WidgetScript(combo), combo_(combo) {}
    std::wstring Kind() const override { return L"list"; }
    std::wstring State() const override {
        return L"\"" + combo_.currentText().toStdWString() + L"\"";
    }
    std::vector<std::wstring> Contents() const override {
        std::vector<std::wstring> lines;
        for (int i = 0; i < combo_.count(); ++i)
            lines.push_back(std::to_wstring(i) + L" " + combo_.itemText(i).toStdWString());
        return lines;
    }
    Refusal SetText(const std::wstring& text) override {
        if (!combo_.isEditable()) return CannotBe(L"set");
        if (const Refusal refusal = Unusable(); !refusal.empty()) return refusal;
        combo_.setFocus(Qt::MouseFocusReason);
        combo_.setEditText(toQString(text));
        return {};
    }
    Refusal Choose(const std::wstring& item) override {
        if (const Refusal refusal = Unusable(); !refusal.empty()) return refusal;
        const int found = itemOf(item, combo_.count(), [&](int i) { return combo_.itemText(i); });
        if (found < 0) return noItem(item);
        combo_.setFocus(Qt::MouseFocusReason);
        combo_.setCurrentIndex(found);
        emit combo_.activated(found);
        return {};
    }

  private:
    QComboBox& combo_;
};

class ListScript final : public WidgetScript {
  public:
    explicit ListScript(QListWidget& list) : WidgetScript(list), list_(list) {}
    std::wstring Kind() const override { return L"list"; }
    std::wstring State() const override {
        const QListWidgetItem* const item = list_.currentItem();
        return item == nullptr ? L"" : L"\"" + item->text().toStdWString() + L"\"";
    }
    std::vector<std::wstring> Contents() const override {
        std::vector<std::wstring> lines;
        for (int i = 0; i < list_.count(); ++i) {
            const QListWidgetItem& item = *list_.item(i);
            lines.push_back(std::to_wstring(i) + L" " + item.text().toStdWString() +
                            (item.isSelected() ? L" (selected)" : L""));
        }
        return lines;
    }
    Refusal Choose(const std::wstring& item) override {
        if (const Refusal refusal = Unusable(); !refusal.empty()) return refusal;
        const int found = itemOf(item, list_.count(), [&](int i) { return list_.item(i)->text(); });
        if (found < 0) return noItem(item);
        list_.setFocus(Qt::MouseFocusReason);
        list_.setCurrentRow(found);
        return {};
    }

  private:
    QListWidget& list_;
};

// The label that leads to a widget.
const QLabel* labelFor(const QWidget& widget) {
    for (const QLabel* const label : widget.window()->findChildren<QLabel*>()) {
        if (label->buddy() == &widget) return label;
    }
    return nullptr;
}

// A press of one key: its number, what is held, and what it types.
struct KeyPress {
    int key;
    Qt::KeyboardModifiers modifiers;
    QString text;
};

std::optional<KeyPress> pressOf(const QString& name) {
    const QString shift = QStringLiteral("Shift+Tab");
    if (name.compare(shift, Qt::CaseInsensitive) == 0) {
        return KeyPress{Qt::Key_Backtab, Qt::ShiftModifier, {}};
    }
    const QList<uint> characters = name.toUcs4();
    if (characters.size() == 1) {
        const int key = QKeySequence(name.toUpper())[0].key();
        return KeyPress{key, {}, name};
    }
    const QKeySequence keys = QKeySequence::fromString(name, QKeySequence::PortableText);
    if (keys.count() != 1 || keys[0].key() == Qt::Key_unknown) return std::nullopt;
    const Qt::Key key = keys[0].key();
    QString text;
    if (key == Qt::Key_Space) text = QStringLiteral(" ");
    if (key == Qt::Key_Return || key == Qt::Key_Enter) text = QStringLiteral("\r");
    return KeyPress{key, keys[0].keyboardModifiers(), text};
}

}  // namespace

Refusal WidgetScript::Unusable() const {
    if (!IsShown()) return L"is hidden";
    if (!IsEnabled()) return L"is disabled";
    return {};
}

Refusal typeKey(QWidget& widget, const std::wstring& key) {
    if (!widget.isVisible()) return L"is hidden";
    if (!widget.isEnabled()) return L"is disabled";
    const auto press = pressOf(toQString(key));
    if (!press) return L"knows no key \"" + key + L"\"";
    QWidget* const focus = widget.window()->focusWidget();
    const bool isInside = focus != nullptr && widget.isAncestorOf(focus);
    if (!isInside) widget.setFocus(Qt::OtherFocusReason);
    QPointer<QWidget> target = isInside ? focus : &widget;
    if (target->focusProxy() != nullptr) target = target->focusProxy();
    QKeyEvent down(QEvent::KeyPress, press->key, press->modifiers, press->text);
    QCoreApplication::sendEvent(target, &down);
    if (target == nullptr) return {};
    QKeyEvent up(QEvent::KeyRelease, press->key, press->modifiers, press->text);
    QCoreApplication::sendEvent(target, &up);
    return {};
}

std::unique_ptr<WidgetScript> scriptFor(QWidget& widget) {
    if (auto* const button = qobject_cast<QAbstractButton*>(&widget)) {
        return std::make_unique<ButtonScript>(*button);
    }
    if (auto* const label = qobject_cast<QLabel*>(&widget)) {
        // Labels of other controls are told with these.
        if (label->buddy() != nullptr) return nullptr;
        return std::make_unique<LabelScript>(*label);
    }
    if (auto* const edit = qobject_cast<QLineEdit*>(&widget)) {
        return std::make_unique<EditScript>(*edit);
    }
    if (auto* const edit = qobject_cast<QPlainTextEdit*>(&widget)) {
        return std::make_unique<TextScript>(*edit);
    }
    if (auto* const combo = qobject_cast<QComboBox*>(&widget)) {
        return std::make_unique<ComboScript>(*combo);
    }
    if (auto* const list = qobject_cast<QListWidget*>(&widget)) {
        return std::make_unique<ListScript>(*list);
    }
    return nullptr;
}

std::wstring labelOf(const QWidget& widget) {
    if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget)) {
        return withoutMnemonic(button->text());
    }
    const QLabel* const label = labelFor(widget);
    return label != nullptr ? withoutMnemonic(label->text()) : std::wstring();
}

}  // namespace sg::ui
