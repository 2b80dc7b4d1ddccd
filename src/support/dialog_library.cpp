#include "support/dialog_library.h"

#include "platform/win/libraries.h"
#include "support/deployment.h"
#include "support/report.h"
#include "support/scramble.h"

namespace sg {
namespace {

std::unique_ptr<Report> newReport(ReportDialog& dialog, const ReportRequest& request) {
    auto report = std::make_unique<SupportReport>(dialog, request.mode, request.archiveSuffix,
                                                  request.logFolder, request.systemInfo);
    report->attachments = request.attachments;
    return report;
}

std::wstring supportAddress() {
    return UnscrambleText(deployment::kSupportAddress);
}

}  // namespace

SupportDialogs* supportDialogs() {
    static const SupportServices services{newReport, supportAddress};
    const FARPROC open =
        GetProcAddress(LoadLibraryW(L"libswiftgate-support.so"), "swiftgateSupportDialogs");
    if (open == nullptr) return nullptr;
    return reinterpret_cast<SupportDialogs* (*)(const SupportServices&)>(open)(services);
}

}  // namespace sg
