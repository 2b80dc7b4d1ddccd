#include "support/report_dialog.h"
#include "support/settings.h"

namespace sg {

ReportSender storedSender() {
    constexpr const wchar_t* kSection = L"Shared";
    return {GetRegistryText(kSection, L"Name"), GetRegistryText(kSection, L"Email"),
            GetRegistryText(kSection, L"Phone"),
            GetRegistryText(kSection, L"bSendToDesktop2") == L"1"};
}

ReportField ReportSender::firstFocus() const {
    if (name.empty()) return ReportField::name;
    return email.empty() ? ReportField::email : ReportField::text;
}

}  // namespace sg
