#include "host/graphics/application.h"

#include <QApplication>

#include <cstdlib>

namespace sg::graphics {
namespace {

bool isSet(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != 0;
}

}  // namespace

void needApplication() {
    if (QCoreApplication::instance() != nullptr) return;
    if (!isSet("QT_QPA_PLATFORM") && !isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    // The toolkit keeps references to both.
    static int count = 1;
    static char name[] = "swiftgate";
    static char* arguments[] = {name, nullptr};
    // Never destroyed: windows and fonts may outlive every other static object.
    new QApplication(count, arguments);
}

}  // namespace sg::graphics
