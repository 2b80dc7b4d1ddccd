#include <string>

#include "base/encoding.h"
#include "platform/lisp/external_functions.h"
#include "platform/win/files.h"
#include "platform/win/folders.h"
#include "platform/win/message_box.h"
#include "support/archive.h"
#include "support/deployment.h"
#include "support/report.h"
#include "support/report_rules.h"
#include "support/scramble.h"
#include "support/settings.h"

// A report as an archive on the desktop, for the user to send.
namespace sg {
namespace {

constexpr const wchar_t* kNotSent = L"EMAIL NOT SENT!";

// A desktop that is not there yet is made.
std::wstring desktopFolder() {
    wchar_t path[MAX_PATH] = L"";
    const int32_t answer =
        SHGetFolderPathW(nullptr, CSIDL_DESKTOPDIRECTORY | CSIDL_FLAG_CREATE, nullptr, 0, path);
    return answer == S_OK ? path : L"";
}

// Opens a file browser with the file selected.
void showInBrowser(const std::wstring& path) {
    const std::wstring command = L"explorer.exe /select," + path;
    resbuf* const call = acutBuildList(RTSTR, L"startapp", RTSTR, command.c_str(), 0);
    resbuf* result = nullptr;
    acedInvoke(call, &result);
    acutRelRb(result);
    acutRelRb(call);
}

}  // namespace

std::wstring SupportReport::WriteErrorText() const {
    std::wstring folder;
    if (!GetTempFolder(folder)) return {};
    const std::wstring body = BuildBody();
    if (body.empty()) return {};
    const std::wstring path = folder + L"qn_error.txt";
    std::FILE* const file = std::fopen(toUtf8(sgResolvePath(path)).c_str(), "w+");
    if (file == nullptr) return {};
    const std::string bytes = toUtf8(printedWithoutArguments(body));
    std::fwrite(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
    return path;
}

void SupportReport::SaveReportToDesktop() {
    const std::wstring fileName =
        L"Send to " + UnscrambleText(deployment::kSupportAddress) + L"--" + BuildArchiveName();
    if (const std::wstring path = WriteErrorText(); !path.empty()) attachments.push_back(path);
    std::wstring path;
    const std::wstring error = writeDesktopArchive(fileName, path);
    if (error.empty()) {
        announceDesktopArchive(fileName, path);
    } else {
        dialog_.showBox(error, L"Quillon", MB_OK | MB_ICONERROR);
    }
}

// Answers the error text, empty when the archive at `path` is whole.
std::wstring SupportReport::writeDesktopArchive(const std::wstring& fileName, std::wstring& path) {
    Archive archive;
    archive.SetDiscardPaths(true);
    const auto failed = [&](const wchar_t* text) {
        archive.SaveLastError(L"qn_ziperror.xml");
        return text;
    };
    const std::wstring desktop = desktopFolder();
    if (desktop.empty()) return failed(L"Unable to locate desktop path.");
    path = desktop + L'/' + fileName;
    if (!isFileName(fileName) || !archive.NewArchive(path))
        return failed(L"Failed to create new zip folder.");
    for (const std::wstring& attachment : attachments) {
        if (!attachment.empty() && !archive.AppendFileOrFolder(attachment, true))
            return failed(L"An error occurred while compressing attachments.");
    }
    if (!archive.WriteAndClose()) return failed(L"An error occurred while closing the zip file.");
    return {};
}

void SupportReport::announceDesktopArchive(const std::wstring& fileName, const std::wstring& path) {
    const std::wstring text = std::wstring(kNotSent) + L"\n\nFile \"" + fileName +
                              L"\" was saved to the desktop but has not been sent.\n\n" +
                              L"Manually send the file to \"" +
                              UnscrambleText(deployment::kSupportAddress) + L"\".";
    dialog_.showBox(text, kNotSent, MB_OK | MB_ICONWARNING);
    showInBrowser(path);
}

}  // namespace sg
