#include "host/system/registry.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/system/temporary_folder.h"

namespace sg {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Optional;

constexpr const wchar_t* kShared = L"HKEY_CURRENT_USER\\Software\\Quillon Software\\Shared";

RegistryData text(const wchar_t* value, bool expandable = false) {
    return RegistryText{value, expandable};
}

class RegistryTest : public FolderTest {
  protected:
    RegistryStore open() {
        return RegistryStore(path("conf/registry"), [this](const std::wstring& message) {
            reports_.push_back(toUtf8(message));
        });
    }
    std::vector<std::string> reports_;
};

TEST_F(RegistryTest, NothingIsTouchedByReading) {
    RegistryStore store = open();
    EXPECT_FALSE(store.keyExists(kShared));
    EXPECT_EQ(store.read(kShared, L"Name"), std::nullopt);
    EXPECT_EQ(store.subkeys(kShared), std::nullopt);
    EXPECT_EQ(store.write(kShared, L"Name", text(L"x")), RegistryError::notFound);
    EXPECT_EQ(store.deleteKey(kShared), RegistryError::notFound);
    EXPECT_EQ(store.deleteValue(kShared, L"Name"), RegistryError::notFound);
    EXPECT_FALSE(exists("conf"));
}

TEST_F(RegistryTest, EveryTypeSurvivesTheFile) {
    const std::pair<const wchar_t*, RegistryData> values[] = {
        {L"", text(L"default")},
        {L"plain", text(L"a \"quoted\" \\ path\\")},
        {L"control", text(L"line\nreturn\rtab\tzero\x01 \x7f")},
        {L"wide", text(L"\u00e9\u20ac\U0001F600 \xD800")},
        {L"empty", text(L"")},
        {L"expandable", text(L"%TEMP%\\x", true)},
        {L"na\"me=\\", uint32_t{0xFFFFFFFF}},
        {L"zero", uint32_t{0}},
        {L"bytes", std::vector<uint8_t>{0, 0x7f, 0xff}},
        {L"none", std::vector<uint8_t>{}},
        {L"texts", std::vector<std::wstring>{L"a", L"", L"b,\"c\""}},
        {L"no texts", std::vector<std::wstring>{}},
        {L"odd text", RegistryRaw{1, {'a', 0, 0, 0, 0}}},
        {L"a type without a form", RegistryRaw{0xFFFFFFFF, {}}},
    };
    for (const auto& [name, data] : values) {
        ASSERT_EQ(open().write(kShared, name, data, true), RegistryError::none);
    }
    RegistryStore store = open();
    for (const auto& [name, data] : values)
        EXPECT_EQ(store.read(kShared, name), data) << toUtf8(name);
    EXPECT_EQ(store.valueNames(kShared)->size(), std::size(values));
    EXPECT_THAT(reports_, IsEmpty());
}

TEST_F(RegistryTest, CaseIsIgnoredAndTheFirstSpellingKept) {
    RegistryStore store = open();
    ASSERT_EQ(store.createKey(L"hkey_current_user\\Software\\Zed"), RegistryError::none);
    ASSERT_EQ(store.createKey(L"HKEY_CURRENT_USER\\SOFTWARE\\alpha\\\\"), RegistryError::none);
    EXPECT_THAT(store.subkeys(L"HKEY_CURRENT_USER"), Optional(ElementsAre(L"Software")));
    EXPECT_THAT(store.subkeys(L"HKEY_Current_User\\software"),
                Optional(ElementsAre(L"alpha", L"Zed")));
    store.write(kShared, L"Name", text(L"1"), true);
    store.write(kShared, L"NAME", text(L"2"));
    EXPECT_THAT(store.valueNames(kShared), Optional(ElementsAre(L"Name")));
    EXPECT_EQ(store.read(kShared, L"name"), text(L"2"));
}

TEST_F(RegistryTest, KeysAreDeletedFromBelow) {
    RegistryStore store = open();
    store.write(kShared, L"Name", text(L"x"), true);
    EXPECT_EQ(store.deleteKey(L"HKEY_CURRENT_USER\\Software\\Quillon Software"),
              RegistryError::accessDenied);
    EXPECT_EQ(store.deleteValue(kShared, L"NAME"), RegistryError::none);
    EXPECT_EQ(store.deleteValue(kShared, L"Name"), RegistryError::notFound);
    EXPECT_EQ(store.deleteKey(kShared), RegistryError::none);
    EXPECT_TRUE(open().keyExists(L"HKEY_CURRENT_USER\\Software\\Quillon Software"))
        << "the key above stays, also in the file";
    EXPECT_EQ(store.deleteKey(L"HKEY_CURRENT_USER"), RegistryError::accessDenied);
}

TEST_F(RegistryTest, PathsThatAreRefused) {
    std::wstring deep = L"HKEY_CURRENT_USER";
    for (int i = 0; i < 512; ++i)
        deep += L"\\x";
    for (const std::wstring& key :
         {std::wstring(L""), std::wstring(L"\\"), std::wstring(L"Software\\X"),
          std::wstring(L"HKEY_CURRENT_USER\\a\nb"), deep}) {
        EXPECT_EQ(open().createKey(key), RegistryError::invalidParameter) << toUtf8(key);
    }
    EXPECT_EQ(open().createKey(deep.substr(0, deep.size() - 2)), RegistryError::none);
}

TEST_F(RegistryTest, TwoStoresSeeEachOther) {
    RegistryStore one = open(), two = open();
    for (int i = 0; i < 20; ++i) {
        const std::wstring number = std::to_wstring(i);
        ASSERT_EQ(one.write(kShared, L"a", text(number.c_str()), true), RegistryError::none);
        EXPECT_EQ(two.read(kShared, L"a"), text(number.c_str()));
        ASSERT_EQ(two.write(kShared, L"b", text(number.c_str())), RegistryError::none);
        EXPECT_EQ(one.read(kShared, L"b"), text(number.c_str()));
    }
}

TEST_F(RegistryTest, ProcessesThatWriteAtOnceLoseNothing) {
    constexpr int kProcesses = 4, kValues = 25;
    std::vector<pid_t> children;
    for (int process = 0; process < kProcesses; ++process) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            RegistryStore store(path("conf/registry"));
            bool good = true;
            for (int i = 0; i < kValues; ++i) {
                const std::wstring name = std::to_wstring(process * kValues + i);
                good = store.write(kShared, name, uint32_t(i), true) == RegistryError::none && good;
            }
            _exit(good ? 0 : 1);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(open().valueNames(kShared)->size(), size_t{kProcesses * kValues});
}

// A writer is killed at places all over its work; each time the registry is whole, has every value
// that the writer had been told is stored, and is not kept locked.
TEST_F(RegistryTest, AKilledWriterLeavesTheRegistryWhole) {
    constexpr int kKills = 16;
    int stored = 0;
    for (int kill = 0; kill < kKills; ++kill) {
        int ready[2];
        ASSERT_EQ(pipe(ready), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            RegistryStore store(path("conf/registry"));
            for (uint32_t i = static_cast<uint32_t>(stored) + 1;; ++i) {
                const std::wstring filling(100 + i % 700, L'x');
                store.write(kShared, L"filling", text(filling.c_str()), true);
                store.write(kShared, L"count", i, true);
                if (::write(ready[1], &i, sizeof(i)) != sizeof(i)) _exit(1);
            }
        }
        close(ready[1]);
        uint32_t told = 0, next = 0;
        for (int rounds = kill % 4; rounds >= 0; --rounds)
            ASSERT_EQ(::read(ready[0], &told, sizeof(told)), ssize_t{sizeof(told)});
        usleep(static_cast<useconds_t>(kill * 53 % 700));  // where in the next round it is killed
        ::kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        while (::read(ready[0], &next, sizeof(next)) == ssize_t{sizeof(next)})
            told = next;
        close(ready[0]);

        RegistryStore store = open();
        const auto count = store.read(kShared, L"count");
        ASSERT_TRUE(count && std::holds_alternative<uint32_t>(*count));
        EXPECT_GE(std::get<uint32_t>(*count), told);
        EXPECT_LE(std::get<uint32_t>(*count), told + 1);
        EXPECT_THAT(reports_, IsEmpty());
        ASSERT_EQ(store.write(kShared, L"count", uint32_t{told}), RegistryError::none);
        stored = static_cast<int>(told);
    }
    size_t files = 0;
    for ([[maybe_unused]] const auto& each : std::filesystem::directory_iterator(folder_ / "conf"))
        ++files;
    EXPECT_LE(files, size_t{2 + kKills}) << "a kill leaves one file at most beside the registry";
}

TEST_F(RegistryTest, EditsByHandAreSeen) {
    RegistryStore store = open();
    store.write(kShared, L"a", text(L"1"), true);
    std::string content = read("conf/registry");
    write("conf/registry", content.replace(content.find("\"1\""), 3, "\"22\""));
    EXPECT_EQ(store.read(kShared, L"a"), text(L"22"));
    std::filesystem::remove(folder_ / "conf/registry");
    EXPECT_FALSE(store.keyExists(kShared));
}

TEST_F(RegistryTest, DamageIsReportedOnceAndKept) {
    write("conf/registry",
          "# my own comment\r\n"
          "\"early\"=\"no key yet\"\n"
          "[HKEY_CURRENT_USER\\A]\n"
          "\"good\"=\"1\"\r\n"
          "\"open\"=\"no end\n"
          "\"tail\"=\"x\"y\n"
          "\"number\"=dword:12\n"
          "\"bytes\"=hex:1,2\n"
          "\"escape\"=\"\\q\"\n"
          "\"bytes\xFF\"=\"x\"\n"
          "[HKEY_NOWHERE\\B]\n"
          "\"lost\"=\"must not come under A\"\n"
          "[HKEY_CURRENT_USER\\C]\n"
          "\"good\"=\"2\"\n"
          "[HKEY_CURRENT_USER\\A\n"
          "\"lost\"=\"nor under C\"");
    RegistryStore store = open();
    EXPECT_EQ(store.read(L"HKEY_CURRENT_USER\\A", L"good"), text(L"1"));
    EXPECT_EQ(store.read(L"HKEY_CURRENT_USER\\C", L"good"), text(L"2"));
    EXPECT_EQ(reports_.size(), 11u);
    EXPECT_THAT(reports_[0], HasSubstr("conf/registry:2: a value without a key"));
    EXPECT_THAT(reports_[1], HasSubstr("conf/registry:5: not a value"));
    for (const wchar_t* const key : {L"HKEY_CURRENT_USER\\A", L"HKEY_CURRENT_USER\\C"}) {
        EXPECT_THAT(store.valueNames(key), Optional(ElementsAre(L"good")));
    }

    const size_t reports = reports_.size();
    ASSERT_EQ(store.write(L"HKEY_CURRENT_USER\\C", L"new", text(L"3")), RegistryError::none);
    ASSERT_EQ(store.deleteKey(L"HKEY_CURRENT_USER\\A"), RegistryError::none);
    const std::string content = read("conf/registry");
    for (const char* const kept : {"# my own comment\n", "\"early\"", "no end\n", "dword:12\n",
                                   "\xFF\"=\"x\"\n", "come under A\"\n", "nor under C\"\n"}) {
        EXPECT_THAT(content, HasSubstr(kept));
    }
    EXPECT_EQ(store.read(L"HKEY_CURRENT_USER\\C", L"new"), text(L"3"));
    EXPECT_THAT(store.valueNames(L"HKEY_CURRENT_USER\\C"), Optional(ElementsAre(L"good", L"new")));
    RegistryTree again, andAgain;
    again.parse(content);
    andAgain.parse(again.format());
    EXPECT_EQ(again.format(), andAgain.format());
    EXPECT_GE(reports_.size(), reports);
}

TEST_F(RegistryTest, AFileThatCannotBeReadIsNotReplaced) {
    std::filesystem::create_directories(folder_ / "conf/registry");  // a folder in its place
    RegistryStore store = open();
    EXPECT_FALSE(store.keyExists(kShared));
    EXPECT_NE(store.createKey(kShared), RegistryError::none);
    EXPECT_EQ(reports_.size(), 1u);
    write("plain");
    EXPECT_NE(RegistryStore(path("plain/registry")).createKey(kShared), RegistryError::none);
}

TEST_F(RegistryTest, DefaultFileFollowsTheEnvironment) {
    const WithEnvironment configuration("XDG_CONFIG_HOME", toUtf8(path()));
    const WithEnvironment none("SWIFTGATE_REGISTRY", "");
    EXPECT_EQ(RegistryStore::defaultFile(), path("swiftgate/registry"));
    const WithEnvironment named("SWIFTGATE_REGISTRY", "/x/y");
    EXPECT_EQ(RegistryStore::defaultFile(), L"/x/y");
}

}  // namespace
}  // namespace sg
