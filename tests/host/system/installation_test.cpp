#include "host/system/installation.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "host/system/registry.h"
#include "host/system/temporary_folder.h"

namespace sg {
namespace {

using testing::ElementsAre;
using testing::Optional;

constexpr const wchar_t* kProduct = L"HKEY_CURRENT_USER\\Software\\Quillon Software";

class InstallationTest : public FolderTest {
  protected:
    int reports_ = 0;
    RegistryStore registry_{path("conf/registry"), [this](const std::wstring&) { ++reports_; }};
};

TEST_F(InstallationTest, SectionsAreMadeOnce) {
    installSections(registry_);
    const auto all = Optional(ElementsAre(L"Electrical", L"HVAC", L"Plumbing", L"Shared"));
    EXPECT_THAT(registry_.subkeys(kProduct), all);

    registry_.deleteKey(std::wstring(kProduct) + L"\\HVAC");
    installSections(registry_);
    EXPECT_THAT(registry_.subkeys(kProduct),
                Optional(ElementsAre(L"Electrical", L"Plumbing", L"Shared")));
}

TEST_F(InstallationTest, WhatTheRegistryHasStays) {
    registry_.write(L"HKEY_CURRENT_USER\\Software\\Other", L"a", RegistryText{L"1"}, true);
    installSections(registry_);
    EXPECT_EQ(registry_.read(L"HKEY_CURRENT_USER\\Software\\Other", L"a"),
              RegistryData(RegistryText{L"1"}));
    EXPECT_TRUE(registry_.keyExists(kProduct));
}

TEST_F(InstallationTest, NothingIsSaidWhereNothingCanBeWritten) {
    write("conf");  // a file where the folder would be
    installSections(registry_);
    EXPECT_FALSE(registry_.keyExists(kProduct));
    EXPECT_EQ(reports_, 0);
}

}  // namespace
}  // namespace sg
