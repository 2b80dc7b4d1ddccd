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
// uses, about what a platform without a display cannot do, and about platforms that were tried: why
// a display did not answer is told by another notice.
void report(QtMsgType, const QMessageLogContext&, const QString& text) {
    for (const char* const spared :
         {"QStandardPaths: XDG_RUNTIME_DIR", "This plugin does not support",
          "Could not load the Qt platform", "Could not find the Qt platform"}) {
        if (text.startsWith(QLatin1String(spared))) return;
    }
    std::fprintf(stderr, "%s\n", qPrintable(text));
}

}  // namespace

void needApplication() {
    if (QCoreApplication::instance() != nullptr) return;
    qInstallMessageHandler(report);
    // The toolkit takes the first of these that it can reach, and ends the process without one.
    if (!isSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", isSet("DISPLAY")           ? "xcb;wayland;offscreen"
                                   : isSet("WAYLAND_DISPLAY") ? "wayland;xcb;offscreen"
                                                              : "offscreen");
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
