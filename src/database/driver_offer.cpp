#include "database/driver_offer.h"

#include <string>

#include "platform/ed/command_line.h"
#include "platform/win/message_box.h"
#include "platform/win/shell.h"
#include "platform/win/window.h"

namespace sg {
namespace {

constexpr const wchar_t* kDownloadFolder = L"https://downloads.quillon.example/repair/";
constexpr const wchar_t* kBoxTitle = L"Quillon Error";
constexpr const wchar_t* kSupportPhone = L"1-800-555-0100";
constexpr intptr_t kShellFailure = 32;  // results above it are successes

struct RepairOffer {
    const wchar_t* question;
    const wchar_t* installer;
};

constexpr RepairOffer kDatabaseDrivers = {
    L"Error loading database drivers.\nWould you like to download a fix to this error?",
    L"QNRepairDrivers.exe"};

constexpr RepairOffer kDialogComponents = {
    L"Dialog box could not be created.\nComponents need to be installed.\n"
    L"Would you like to download a fix to this error?",
    L"QNComponents.exe"};

bool isAccepted(const RepairOffer& offer) {
    HWND const active = GetActiveWindow();
    const int answer = MessageBoxW(active, offer.question, kBoxTitle, MB_YESNO | MB_ICONERROR);
    SetActiveWindow(active);
    return answer == IDYES;
}

void showBox(const std::wstring& text) {
    MessageBoxW(GetActiveWindow(), text.c_str(), kBoxTitle, MB_OK);
}

void reportDownload(const std::wstring& installer, const std::wstring& url) {
    acutPrintf(L"\nDownloading %s", url.c_str());
    showBox(L"Finish downloading " + installer + L".\nClose AutoCAD.\nRun " + installer +
            L".\nRestart AutoCAD.\n\nIf you continue to have problems, contact Quillon Software "
            L"technical support.\n    " +
            kSupportPhone);
}

void reportFailure(const std::wstring& installer, const std::wstring& url) {
    acutPrintf(L"\nError downloading %s", url.c_str());
    acutPrintf(L"\nContact Quillon Software technical support: %s", kSupportPhone);
    showBox(L"Error downloading " + installer +
            L".\nContact Quillon Software technical support.\n" + kSupportPhone);
}

void makeOffer(const RepairOffer& offer) {
    if (!isAccepted(offer)) return;
    const std::wstring installer = offer.installer;
    const std::wstring url = kDownloadFolder + installer;
    const intptr_t result =
        ShellExecuteW(adsw_acadMainWnd(), L"OPEN", url.c_str(), nullptr, nullptr, SW_SHOWNA);
    if (result > kShellFailure) {
        reportDownload(installer, url);
    } else {
        reportFailure(installer, url);
    }
}

}  // namespace

void offerDatabaseDrivers() {
    makeOffer(kDatabaseDrivers);
}

void offerDialogComponents() {
    makeOffer(kDialogComponents);
}

intptr_t checkDialogResult(intptr_t result) {
    constexpr intptr_t kNotCreated = -1;
    constexpr intptr_t kAborted = 3;
    if (result == kNotCreated || result == kAborted) offerDialogComponents();
    return result;
}

}  // namespace sg
