#include "drawing/shell_keywords.h"

#include "platform/win/folders.h"
#include "platform/win/shell.h"

namespace sg {
namespace {

struct KeywordRow {
    std::wstring_view keyword;
    int number;
};

constexpr KeywordRow kFolders[] = {
    {L"ADMINTOOLS", CSIDL_ADMINTOOLS},
    {L"COMMON_ADMINTOOLS", CSIDL_COMMON_ADMINTOOLS},
    {L"APPDATA", CSIDL_APPDATA},
    {L"COMMON_APPDATA", CSIDL_COMMON_APPDATA},
    {L"COMMON_DOCUMENTS", CSIDL_COMMON_DOCUMENTS},
    {L"COOKIES", CSIDL_COOKIES},
    {L"DESKTOP", CSIDL_DESKTOPDIRECTORY},
    {L"FLAG_CREATE", CSIDL_FLAG_CREATE},
    {L"HISTORY", CSIDL_HISTORY},
    {L"INTERNET_CACHE", CSIDL_INTERNET_CACHE},
    {L"LOCAL_APPDATA", CSIDL_LOCAL_APPDATA},
    {L"MYPICTURES", CSIDL_MYPICTURES},
    {L"PERSONAL", CSIDL_PERSONAL},
    {L"PROGRAM_FILES", CSIDL_PROGRAM_FILES},
    {L"PROGRAM_FILES_COMMON", CSIDL_PROGRAM_FILES_COMMON},
    {L"SYSTEM", CSIDL_SYSTEM},
    {L"WINDOWS", CSIDL_WINDOWS},
};

constexpr KeywordRow kShowCommands[] = {
    {L"HIDE", SW_HIDE},
    {L"MAXIMIZE", SW_MAXIMIZE},
    {L"MINIMIZE", SW_MINIMIZE},
    {L"RESTORE", SW_RESTORE},
    {L"SHOW", SW_SHOW},
    {L"SHOWDEFAULT", SW_SHOWDEFAULT},
    {L"SHOWMAXIMIZED", SW_SHOWMAXIMIZED},
    {L"SHOWMINIMIZED", SW_SHOWMINIMIZED},
    {L"SHOWMINNOACTIVE", SW_SHOWMINNOACTIVE},
    {L"SHOWNA", SW_SHOWNA},
    {L"SHOWNOACTIVATE", SW_SHOWNOACTIVATE},
    {L"SHOWNORMAL", SW_SHOWNORMAL},
};

template <size_t Count>
std::optional<int> numberIn(const KeywordRow (&rows)[Count], std::wstring_view keyword) {
    for (const KeywordRow& row : rows) {
        if (row.keyword == keyword) return row.number;
    }
    return std::nullopt;
}

}  // namespace

std::optional<int> folderNumberOf(std::wstring_view keyword) {
    return numberIn(kFolders, keyword);
}

int showCommandOf(std::wstring_view keyword) {
    return numberIn(kShowCommands, keyword).value_or(SW_HIDE);
}

}  // namespace sg
