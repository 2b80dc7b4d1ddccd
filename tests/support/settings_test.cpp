#include "support/settings.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include "host/seam/host_fixture.h"
#include "host/system/registry.h"
#include "host/system/registry_bytes.h"
#include "host/system/registry_handles.h"
#include "host/system/system_libraries.h"
#include "platform/win/system.h"
#include "support/settings_key.h"

namespace sg {
namespace {

constexpr const wchar_t* kShared = L"HKEY_CURRENT_USER\\Software\\Quillon Software\\Shared";

class SettingsTest : public test::HostTest {
  protected:
    SettingsTest() { make(); }
    RegistryStore& registry() { return host().registry(); }
    void setRaw(uint32_t type, std::vector<uint8_t> bytes) {
        registry().write(kShared, L"x", registryDataOf(type, bytes), true);
    }
};

TEST_F(SettingsTest, WhatIsSetIsRead) {
    registry().createKey(kShared);
    for (const wchar_t* const text : {L"Joe", L"", L"\u00e9\u20ac\U0001F600 \"\\\n", L"  "}) {
        EXPECT_EQ(SetRegistryText(text, L"Name", L"Shared"), 0);
        EXPECT_EQ(GetRegistryText(L"shared", L"NAME"), text);
    }
    EXPECT_EQ(registry().read(kShared, L"Name"), RegistryData(RegistryText{L"  "}));
    EXPECT_EQ(host().registryHandles().openKeys(), 0u);
}

TEST_F(SettingsTest, MissingSectionsAndValues) {
    EXPECT_EQ(GetRegistryText(L"Shared", L"Name"), L"");
    EXPECT_EQ(SetRegistryText(L"Joe", L"Name", L"Shared"), int{ERROR_FILE_NOT_FOUND});
    EXPECT_FALSE(registry().keyExists(kShared)) << "sections are never made";
    registry().createKey(kShared);
    EXPECT_EQ(GetRegistryText(L"Shared", L"Name"), L"");
}

TEST_F(SettingsTest, TypesAndSizes) {
    struct Case {
        const char* what;
        uint32_t type;
        std::vector<uint8_t> bytes;
        const wchar_t* text;
        int32_t code;
    };
    const Case cases[] = {
        {"text", REG_SZ, {'a', 0, 0, 0}, L"a", 0},
        {"expandable text, as it stands", REG_EXPAND_SZ, {'%', 0, 0, 0}, L"%", 0},
        {"no bytes", REG_SZ, {}, L"", 0},
        {"the zero alone", REG_SZ, {0, 0}, L"", 0},
        {"a zero inside", REG_SZ, {'a', 0, 0, 0, 'b', 0, 0, 0}, L"a", 0},
        {"half a pair of surrogates", REG_SZ, {0x00, 0xD8, 0, 0}, L"\xFFFD", 0},
        {"one byte", REG_SZ, {0}, L"", 13},
        {"an odd size", REG_SZ, {'a', 0, 0, 0, 0}, L"", 13},
        {"no zero at the end", REG_SZ, {'a', 0, 'b', 0}, L"", 13},
        {"half a zero at the end", REG_SZ, {'a', 0, 0, 1}, L"", 13},
        {"a number", REG_DWORD, {0, 0, 0, 0}, L"", 13},
        {"bytes", REG_BINARY, {'a', 0, 0, 0}, L"", 13},
        {"several texts", REG_MULTI_SZ, {'a', 0, 0, 0, 0, 0}, L"", 13},
        {"no type", REG_NONE, {'a', 0, 0, 0}, L"", 13},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.what);
        setRaw(each.type, each.bytes);
        EXPECT_EQ(GetRegistryText(L"Shared", L"x"), each.text);
        SettingsKey key;
        ASSERT_EQ(key.Open(HKEY_CURRENT_USER, L"Software\\Quillon Software\\Shared", KEY_READ), 0);
        std::wstring text = L"before";
        EXPECT_EQ(key.QueryText(L"x", text), each.code);
        EXPECT_EQ(text, each.text);
        std::vector<uint8_t> bytes(each.bytes.size() + 2);
        uint32_t type = 0, size = static_cast<uint32_t>(bytes.size());
        EXPECT_EQ(RegQueryValueExW(key.handle(), L"x", nullptr, &type, bytes.data(), &size), 0);
        bytes.resize(size);
        EXPECT_EQ(type, each.type);
        EXPECT_EQ(bytes, each.bytes) << "the store keeps the bytes, also in its file";
    }
}

TEST_F(SettingsTest, KeysAreOpenedForWhatTheyAreUsedFor) {
    setRaw(REG_SZ, {'a', 0, 0, 0});
    SettingsKey key;
    const std::wstring path = L"Software\\Quillon Software\\Shared";
    ASSERT_EQ(key.Open(HKEY_CURRENT_USER, path, KEY_READ | KEY_WOW64_64KEY), 0);
    EXPECT_EQ(key.viewFlags(), uint32_t{KEY_WOW64_64KEY});
    EXPECT_EQ(key.SetText(L"x", L"b"), int{ERROR_ACCESS_DENIED});
    const HKEY before = key.handle();
    EXPECT_EQ(key.Open(HKEY_CURRENT_USER, L"None", KEY_READ), int{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(key.handle(), before) << "the open key stays";
    uint8_t room[2];
    uint32_t size = sizeof(room);
    EXPECT_EQ(RegQueryValueExW(before, L"x", nullptr, nullptr, room, &size), int{ERROR_MORE_DATA});
    EXPECT_EQ(size, 4u);
    ASSERT_EQ(key.Open(HKEY_CURRENT_USER, path, KEY_WRITE | KEY_WOW64_32KEY), 0);
    EXPECT_EQ(key.viewFlags(), uint32_t{KEY_WOW64_32KEY});
    std::wstring text;
    EXPECT_EQ(key.QueryText(L"x", text), int{ERROR_ACCESS_DENIED});
    EXPECT_EQ(RegCloseKey(before), int{ERROR_INVALID_HANDLE}) << "it was closed";
    EXPECT_EQ(key.Close(), 0);
    EXPECT_EQ(key.viewFlags(), 0u);
    EXPECT_EQ(key.Close(), 0);
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), 0);
}

int32_t openTransacted(HKEY parent, const wchar_t* subkey, uint32_t options, uint32_t access,
                       HKEY* key, void* transaction, void* extended) {
    EXPECT_EQ(transaction, &openTransacted);
    EXPECT_EQ(extended, nullptr);
    return RegOpenKeyExW(parent, subkey, options, access, key);
}

TEST_F(SettingsTest, TransactionsNeedASystemThatHasThem) {
    setRaw(REG_SZ, {'a', 0, 0, 0});
    TransactionManager transactions{reinterpret_cast<void*>(&openTransacted)};
    SettingsKey key(&transactions);
    const auto open = [&] {
        return key.Open(HKEY_CURRENT_USER, L"Software\\Quillon Software\\Shared", KEY_READ);
    };
    EXPECT_EQ(open(), 1);
    host().libraries().provide(L"ADVAPI32.DLL", "RegOpenKeyTransactedW",
                               reinterpret_cast<FARPROC>(&openTransacted));
    EXPECT_EQ(open(), 0);
    std::wstring text;
    EXPECT_EQ(key.QueryText(L"x", text), 0);
    EXPECT_EQ(text, L"a");
}

TEST_F(SettingsTest, TemporaryFolder) {
    const WithEnvironment temporary("TMPDIR", folder_.string());
    std::wstring folder;
    EXPECT_TRUE(GetTempFolder(folder));
    EXPECT_EQ(folder, path() + L"//QN_temp/");
    EXPECT_TRUE(exists("QN_temp"));
    EXPECT_TRUE(GetTempFolder(folder)) << "it is there now";
}

TEST_F(SettingsTest, TemporaryFolderThatCannotBe) {
    std::wstring folder = L"before";
    write("file/QN_temp", "a file in its place");
    for (const std::string& parent : {(folder_ / "none").string(), (folder_ / "file").string(),
                                      (folder_ / std::string(255, 'x')).string()}) {
        const WithEnvironment temporary("TMPDIR", parent);
        EXPECT_FALSE(GetTempFolder(folder)) << parent;
        EXPECT_EQ(folder, L"");
    }
}

}  // namespace
}  // namespace sg
