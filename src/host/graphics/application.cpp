#include "host/graphics/application.h"

#include <QApplication>

#include <clocale>
#include <cstdio>
#include <cstdlib>

namespace sg::graphics {
namespace {

bool isSet(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != 0;
}

// What the toolkit says goes to standard error, but for notices about a folder that nothing here
// uses and about what a platform without a display cannot do: batches have neither as a rule.
void report(QtMsgType, const QMessageLogContext&, const QString& text) {
    if (text.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR"))) return;
    if (text.startsWith(QLatin1String("This plugin does not support"))) return;
    std::fprintf(stderr, "%s\n", qPrintable(text));
}

}  // namespace

void needApplication() {
    if (QCoreApplication::instance() != nullptr) return;
    qInstallMessageHandler(report);
    if (!isSet("QT_QPA_PLATFORM") && !isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    // The toolkit keeps references to both.
    static int count = 1;
    static char name[] = "swiftgate";
    static char* arguments[] = {name, nullptr};
    // Never destroyed: windows and fonts may outlive every other static object.
    new QApplication(count, arguments);
    // The toolkit takes the user's locale for the process; numbers of programs and files have a
    // point.
    std::setlocale(LC_NUMERIC, "C");
}

}  // namespace sg::graphics
