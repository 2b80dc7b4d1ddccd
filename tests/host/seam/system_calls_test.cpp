#include <gmock/gmock.h>
#include <sys/stat.h>

#include "host/seam/host_fixture.h"
#include "host/system/registry.h"
#include "platform/win/folders.h"
#include "platform/win/identifiers.h"
#include "platform/win/profile.h"
#include "platform/win/registry.h"
#include "platform/win/shell.h"
#include "platform/win/system.h"
#include "platform/win/window.h"

namespace sg {
namespace {

using testing::HasSubstr;

class SystemCallsTest : public test::HostTest {
  protected:
    SystemCallsTest() { make(); }
    std::string folderOf(int number) {
        wchar_t path[MAX_PATH] = L"unset";
        const int32_t answer = SHGetFolderPathW(nullptr, number, nullptr, 0, path);
        return answer == S_OK ? toUtf8(path) : "failed:" + toUtf8(path);
    }
    std::string full(const char* name) { return (folder_ / name).string(); }

    const WithEnvironment home_{"HOME", folder_.string()};
    const WithEnvironment noConfiguration_{"XDG_CONFIG_HOME", ""};
    const WithEnvironment noData_{"XDG_DATA_HOME", ""};
    const WithEnvironment noCache_{"XDG_CACHE_HOME", ""};
    const WithEnvironment noState_{"XDG_STATE_HOME", ""};
};

TEST_F(SystemCallsTest, BaseFoldersAreMadeForTheUserAlone) {
    const std::pair<int, const char*> folders[] = {
        {CSIDL_APPDATA, ".config"},       {CSIDL_LOCAL_APPDATA, ".local/share"},
        {CSIDL_INTERNET_CACHE, ".cache"}, {CSIDL_HISTORY, ".local/state"},
        {CSIDL_COOKIES, ".local/state"},
    };
    for (const auto& [number, folder] : folders)
        EXPECT_EQ(folderOf(number), full(folder));
    struct stat info;
    ASSERT_EQ(stat(full(".local/share").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);
}

TEST_F(SystemCallsTest, OtherFoldersAreMadeWhenThatIsAsked) {
    write(".config/user-dirs.dirs",
          "XDG_PICTURES_DIR=\"$HOME/Bilder\"\nXDG_PUBLICSHARE_DIR=\"/none/at/all\"\n");
    const std::pair<int, const char*> folders[] = {
        {CSIDL_DESKTOPDIRECTORY, "Desktop"},
        {CSIDL_PERSONAL, "Documents"},
        {CSIDL_MYPICTURES, "Bilder"},
        {CSIDL_ADMINTOOLS, ".local/share/applications"},
    };
    for (const auto& [number, folder] : folders) {
        EXPECT_EQ(folderOf(number), "failed:") << folder;
        EXPECT_EQ(folderOf(number | CSIDL_FLAG_CREATE), full(folder));
        EXPECT_EQ(folderOf(number), full(folder));
    }
    EXPECT_EQ(folderOf(CSIDL_FLAG_CREATE), full("Desktop"));
    EXPECT_EQ(folderOf(CSIDL_COMMON_DOCUMENTS), "failed:");
    EXPECT_EQ(folderOf(4711), "failed:");
    const WithEnvironment shared("XDG_DATA_DIRS", folder_.string() + ":/usr/share");
    EXPECT_EQ(folderOf(CSIDL_COMMON_APPDATA), folder_.string());
}

TEST_F(SystemCallsTest, AccessByMode) {
    write("file");
    chmod(full("file").c_str(), 0444);
    EXPECT_EQ(_waccess(path("FILE").c_str(), 0), 0);
    EXPECT_EQ(_waccess(path("none").c_str(), 0), -1);
    EXPECT_EQ(GetLastError(), uint32_t{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(_waccess(nullptr, 0), -1);
}

TEST_F(SystemCallsTest, SubkeysAreCountedUp) {
    for (const wchar_t* const name : {L"b", L"A", L"a long name"})
        host().registry().createKey(std::wstring(L"HKEY_CURRENT_USER\\K\\") + name);
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"K", 0, KEY_READ, &key), 0);
    wchar_t name[12];
    const auto at = [&](uint32_t index, uint32_t room) {
        const int32_t error =
            RegEnumKeyExW(key, index, name, &room, nullptr, nullptr, nullptr, nullptr);
        return error == 0 ? toUtf8(name) + " " + std::to_string(room) : std::to_string(error);
    };
    EXPECT_EQ(at(0, 12), "A 1");
    EXPECT_EQ(at(1, 12), "a long name 11");
    EXPECT_EQ(at(1, 11), std::to_string(ERROR_MORE_DATA));
    EXPECT_EQ(at(2, 2), "b 1");
    EXPECT_EQ(at(3, 12), std::to_string(ERROR_NO_MORE_ITEMS));
    host().registry().deleteKey(L"HKEY_CURRENT_USER\\K\\b");
    EXPECT_EQ(at(2, 12), std::to_string(ERROR_NO_MORE_ITEMS)) << "as the registry is now";
    RegCloseKey(key);
    EXPECT_EQ(at(0, 12), std::to_string(ERROR_INVALID_HANDLE));
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"K", 0, KEY_SET_VALUE, &key), 0);
    EXPECT_EQ(at(0, 12), std::to_string(ERROR_ACCESS_DENIED));
    RegCloseKey(key);
}

TEST_F(SystemCallsTest, TheProfileMakesItsSections) {
    CWinApp& profile = *AfxGetApp();
    EXPECT_EQ(profile.GetProfileString(L"S", L"a", L"none"), L"none");
    EXPECT_TRUE(profile.WriteProfileString(L"S", L"a", nullptr));
    EXPECT_TRUE(profile.WriteProfileString(L"S", L"a", L"1"));
    EXPECT_EQ(profile.GetProfileString(L"s", L"A"), L"1");
    EXPECT_TRUE(profile.WriteProfileString(L"S", L"a", nullptr));
    EXPECT_EQ(profile.GetProfileString(L"S", L"a"), L"");
    host().registry().write(L"HKEY_CURRENT_USER\\Software\\Swift Gate\\S", L"n", uint32_t{5});
    EXPECT_EQ(profile.GetProfileString(L"S", L"n", L"no text"), L"no text");
}

TEST_F(SystemCallsTest, WindowsAreStates) {
    const HWND main = adsw_acadMainWnd();
    EXPECT_EQ(GetActiveWindow(), main);
    EXPECT_EQ(SetActiveWindow(nullptr), main);
    EXPECT_EQ(SetActiveWindow(main), nullptr);
    EXPECT_TRUE(IsWindowEnabled(main));
    EXPECT_FALSE(EnableWindow(main, false)) << "it was not disabled";
    EXPECT_FALSE(IsWindowEnabled(main));
    EXPECT_TRUE(EnableWindow(main, true));
    EXPECT_FALSE(EnableWindow(nullptr, true));
    std::wstring text;
    acedGetAcadFrame()->GetWindowText(text);
    EXPECT_EQ(text, L"Swift Gate") << "no drawing is open";
    acedGetAcadFrame()->SetWindowText(nullptr);
    acedGetAcadFrame()->GetWindowText(text);
    EXPECT_EQ(text, L"");
    EXPECT_EQ(GetSystemMetrics(4711), 0);
}

TEST_F(SystemCallsTest, IdentifiersAreRandom) {
    GUID one = {}, two = {};
    EXPECT_EQ(CoCreateGuid(&one), S_OK);
    EXPECT_EQ(CoCreateGuid(&two), S_OK);
    EXPECT_NE(std::make_tuple(one.Data1, one.Data2), std::make_tuple(two.Data1, two.Data2));
    EXPECT_EQ(one.Data3 >> 12, 4);
    EXPECT_EQ(one.Data4[0] >> 6, 2);
    EXPECT_LT(CoCreateGuid(nullptr), 0);
}

TEST_F(SystemCallsTest, ItemsAreLookedForInTheirFolder) {
    write("record", "#!/bin/sh\nprintf '%s\\n' \"$@\" > '" + full("log") + "'\n");
    chmod(full("record").c_str(), 0755);
    const WithEnvironment substitute("SWIFTGATE_SHELL", full("record"));
    write("jobs/a.dxf");
    write("other/b.dxf");
    const std::wstring names[] = {L"A.DXF", path("other/b.dxf"), L"none"};
    SgShellItem* const folder = ILCreateFromPathW(path("Jobs").c_str());
    std::vector<SgShellItem*> items = {ILCreateFromPathW(L""), nullptr};
    for (const std::wstring& name : names)
        items.push_back(ILCreateFromPathW(name.c_str()));
    const auto count = static_cast<uint32_t>(items.size());
    EXPECT_EQ(SHOpenFolderAndSelectItems(folder, count, items.data(), 0), S_OK);
    EXPECT_EQ(read("log"), "select\n" + full("jobs") + "\n" + full("jobs/a.dxf") + "\n" +
                               full("other/b.dxf") + "\n");
    EXPECT_EQ(SHOpenFolderAndSelectItems(folder, 1, items.data(), 0), S_OK);
    EXPECT_EQ(read("log"), "open\n" + full("jobs") + "\n");
    EXPECT_LT(SHOpenFolderAndSelectItems(items.back(), count, items.data(), 0), 0);
    EXPECT_LT(SHOpenFolderAndSelectItems(nullptr, 0, nullptr, 0), 0);
    for (SgShellItem* const item : items)
        ILFree(item);
    ILFree(folder);
}

TEST_F(SystemCallsTest, HelpOpensAPage) {
    stop();
    write("record", "#!/bin/sh\nprintf '%s\\n' \"$@\" > '" + full("log") + "'\nexit $STATUS\n");
    chmod(full("record").c_str(), 0755);
    const WithEnvironment substitute("SWIFTGATE_SHELL", full("record"));
    options.helpFolder = path("help");
    make();
    EXPECT_EQ(HtmlHelpW(nullptr, L"create", HH_DISPLAY_TOC, 0), nullptr);
    EXPECT_THAT(errors(), HasSubstr("help: the product's documents are not in"));
    write("help/guide.md", "# Guide");
    write("help/functions/layers.md", "# Layers\n### `create`\ntext");
    const WithEnvironment works("STATUS", "0");
    EXPECT_NE(HtmlHelpW(nullptr, L"create", HH_DISPLAY_TOC, 0), nullptr);
    EXPECT_EQ(read("log"), "open\n" + full("help/functions/layers.md") + "\n");
    EXPECT_NE(HtmlHelpW(nullptr, nullptr, HH_DISPLAY_TOC, 0), nullptr);
    EXPECT_EQ(read("log"), "open\n" + full("help/guide.md") + "\n");
    EXPECT_EQ(errors(), "");
    const WithEnvironment fails("STATUS", "31");
    EXPECT_EQ(HtmlHelpW(nullptr, L"create", HH_DISPLAY_TOC, 0), nullptr);
    EXPECT_EQ(errors(), "help: " + full("help/functions/layers.md") + "\n");
}

}  // namespace
}  // namespace sg
