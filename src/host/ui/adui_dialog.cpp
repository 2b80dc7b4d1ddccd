#include "platform/ui/adui_dialog.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QLayout>
#include <QResizeEvent>
#include <QScreen>

#include <algorithm>
#include <cwchar>
#include <optional>

#include "host/seam/host.h"
#include "host/system/registry.h"
#include "platform/win/shell.h"

using namespace sg;

namespace {

constexpr const wchar_t* kPlaces = L"HKEY_CURRENT_USER\\Software\\Swift Gate\\Dialogs";

// "x y width height"
std::optional<QRect> readPlace(const std::wstring& name) {
    const auto data = Host::the().registry().read(kPlaces, name);
    if (!data || !std::holds_alternative<RegistryText>(*data)) return std::nullopt;
    int x = 0, y = 0, width = 0, height = 0;
    const std::wstring& text = std::get<RegistryText>(*data).text;
    if (std::swscanf(text.c_str(), L"%d %d %d %d", &x, &y, &width, &height) != 4) {
        return std::nullopt;
    }
    return QRect(x, y, width, height);
}

void writePlace(const std::wstring& name, const QRect& place) {
    std::wstring text;
    for (const int number : {place.x(), place.y(), place.width(), place.height()})
        text += (text.empty() ? L"" : L" ") + std::to_wstring(number);
    Host::the().registry().write(kPlaces, name, RegistryText{text, false}, true);
}

// Wholly on a screen that there is now.
QRect onScreen(QRect place, QSize smallest) {
    const QScreen* screen = QGuiApplication::screenAt(place.center());
    if (screen == nullptr) screen = QGuiApplication::primaryScreen();
    const QRect room = screen->availableGeometry();
    place.setSize(place.size().boundedTo(room.size()).expandedTo(smallest));
    place.moveLeft(std::clamp(place.left(), room.left(),
                              std::max(room.left(), room.right() - place.width() + 1)));
    place.moveTop(std::clamp(place.top(), room.top(),
                             std::max(room.top(), room.bottom() - place.height() + 1)));
    return place;
}

}  // namespace

// The layout says where everything is at first; from then on the rules do.
void CAdUiDialog::FreezeLayout() {
    ensurePolished();
    layout()->activate();
    laidOut_ = layout()->sizeHint().expandedTo(layout()->minimumSize());
    resize(laidOut_);
    // A layout follows its dialog's size when that is seen, which is too late here.
    layout()->setGeometry({{}, laidOut_});
    layout()->setEnabled(false);
    setMinimumSize(laidOut_);
    setSizeGripEnabled(true);
    for (QWidget* const control : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        Placed placed{control, control->geometry(), {}};
        for (const DLGCTLINFO& rule : rules_) {
            if (rule.control == ControlId(*control)) placed.percent[rule.property] = rule.percent;
        }
        const bool follows = std::any_of(std::begin(placed.percent), std::end(placed.percent),
                                         [](int percent) { return percent != 0; });
        if (follows) placed_.push_back(placed);
    }
}

void CAdUiDialog::ApplyRules() {
    const int wider = std::max(0, width() - laidOut_.width());
    const int higher = std::max(0, height() - laidOut_.height());
    for (const Placed& placed : placed_) {
        QRect place = placed.place.translated(wider * placed.percent[MOVEX] / 100,
                                              higher * placed.percent[MOVEY] / 100);
        place.setWidth(place.width() + wider * placed.percent[ELASTICX] / 100);
        place.setHeight(place.height() + higher * placed.percent[ELASTICY] / 100);
        placed.control->setGeometry(place);
    }
}

void CAdUiDialog::resizeEvent(QResizeEvent* event) {
    CDialog::resizeEvent(event);
    ApplyRules();
}

void CAdUiDialog::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_F1 && !name_.empty()) {
        HtmlHelpW(nullptr, name_.c_str(), HH_DISPLAY_TOC, 0);
        return;
    }
    CDialog::keyPressEvent(event);
}

void CAdUiDialog::OnPlace() {
    if (rules_.empty() || layout() == nullptr) {
        CDialog::OnPlace();
    } else if (placed_.empty()) {
        FreezeLayout();
    }
    const auto kept = name_.empty() ? std::nullopt : readPlace(name_);
    if (kept) {
        const QSize size = rules_.empty() ? this->size() : kept->size().expandedTo(laidOut_);
        setGeometry(onScreen(QRect(kept->topLeft(), size), minimumSize()));
    }
}

// The window's own place comes with its showing.
void CAdUiDialog::OnShown() {
    shownFirst_ = geometry();
}

// What nobody moved is not written: it stands as before.
void CAdUiDialog::OnClosed() {
    const bool isUsual = !isMaximized() && !isMinimized();
    if (!name_.empty() && isUsual && geometry() != shownFirst_) writePlace(name_, geometry());
}
