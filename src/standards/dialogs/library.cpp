#include <QApplication>

#include "base/export.h"
#include "database/database_error.h"
#include "standards/dialogs/label_order.h"
#include "standards/dialogs/layer_customization.h"
#include "standards/dialogs/layer_system_options.h"
#include "standards/dialogs/standards_dialogs.h"
#include "standards/dialogs/text_style_customization.h"

namespace sg {
namespace {

DialogServices services;

// They come up over the layers dialog, when LISP was called from there.
QWidget* parentOfOptions() {
    QWidget* const open =
        QApplication::instance() != nullptr ? QApplication::activeModalWidget() : nullptr;
    return open != nullptr ? open : sgMainWindow();
}

class Dialogs final : public StandardsDialogs {
  public:
    intptr_t customizeLayers(CDBConnection& connection, bool openedByPath) override {
        CLayerCustomization dialog(sgMainWindow());
        dialog.AttachConnection(connection, openedByPath);
        return dialog.DoModal();
    }

    intptr_t layerSystemOptions(Discipline discipline, CDBConnection& connection, int32_t system,
                                bool showSolid) override {
        switch (discipline) {
            case Discipline::electrical: {
                CLayerSystemOptionsElec dialog(parentOfOptions(), showSolid);
                dialog.AttachConnection(connection, system);
                return dialog.DoModal();
            }
            case Discipline::plumbing: {
                CLayerSystemOptionsPlumb dialog(parentOfOptions());
                dialog.AttachConnection(connection, system);
                return dialog.DoModal();
            }
            case Discipline::hvac: {
                CLayerSystemOptionsHVAC dialog(parentOfOptions());
                dialog.AttachConnection(connection, system);
                return dialog.DoModal();
            }
        }
        return -1;
    }

    intptr_t customizeTextStyles(CDBConnection& connection, bool isDocuments,
                                 const std::wstring& key) override {
        const auto isThere = [&connection, isDocuments] {
            return !isDocuments || services.isDocuments(&connection);
        };
        CTextStyleCustomization dialog(sgMainWindow(), connection, isThere, key);
        return dialog.DoModal();
    }

    intptr_t customizeLabelGroup(CDBConnection& connection,
                                 const LabelGroupRequest& request) override {
        LabelOrderCustomization dialog(sgMainWindow(), connection, request);
        return dialog.DoModal();
    }
};

}  // namespace

// The module keeps the text of the last error; this library has its functions through it.
bool reportDialogDatabaseError(const CDBConnection* connection) {
    return services.reportError(connection);
}

}  // namespace sg

extern "C" SG_API sg::StandardsDialogs* swiftgateStandardsDialogs(
    const sg::DialogServices& services) {
    static sg::Dialogs dialogs;
    sg::services = services;
    return &dialogs;
}
