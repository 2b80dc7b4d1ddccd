#include "app/browse/browse.h"

#include <QApplication>
#include <QPageSize>
#include <QPrinter>

#include <cstdio>

#include "app/browse/browse_window.h"
#include "base/encoding.h"
#include "host/graphics/application.h"

namespace sg::app {
namespace {

bool writePdf(BrowseWindow& window, const std::wstring& path) {
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(QString::fromStdWString(path));
    return window.Grid().PrintTo(printer);
}

bool report(bool isWritten, const std::wstring& path) {
    if (!isWritten) std::fprintf(stderr, "swiftgate: cannot write %s\n", toUtf8(path).c_str());
    return isWritten;
}

BrowseResult writeFiles(BrowseWindow& window, const BrowseRequest& request) {
    bool isWritten = true;
    if (!request.picture.empty()) {
        QApplication::processEvents();
        const bool saved = window.grab().save(QString::fromStdWString(request.picture));
        isWritten = report(saved, request.picture) && isWritten;
    }
    // The grid itself tells why it cannot save.
    if (!request.text.empty()) isWritten = window.Grid().Save(request.text, L'\t') && isWritten;
    if (!request.pdf.empty()) {
        isWritten = report(writePdf(window, request.pdf), request.pdf) && isWritten;
    }
    return isWritten ? BrowseResult::Done : BrowseResult::NotWritten;
}

}  // namespace
}  // namespace sg::app

extern "C" SG_API sg::app::BrowseResult swiftgateBrowse(sg::jet::Database& database,
                                                        const sg::app::BrowseRequest& request) {
    using namespace sg::app;
    sg::graphics::needApplication();
    const bool writes = !request.picture.empty() || !request.text.empty() || !request.pdf.empty();
    const bool hasDisplay = QGuiApplication::platformName() != QStringLiteral("offscreen");
    if (!writes && !hasDisplay) return BrowseResult::NoDisplay;
    BrowseWindow window(database, request);
    window.show();
    if (writes) return writeFiles(window, request);
    QApplication::exec();
    return BrowseResult::Done;
}
