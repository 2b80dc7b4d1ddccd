#include "support/deployment.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

#include "base/encoding.h"
#include "base/text.h"
#include "support/scramble.h"

namespace sg {
namespace {

std::string contentOf(const char* file) {
    std::ostringstream content;
    content << std::ifstream(file, std::ios::binary).rdbuf();
    return content.str();
}

// What the values' file says, by name.
std::wstring valueOf(const std::wstring& name) {
    std::wistringstream lines(fromUtf8(contentOf(SWIFTGATE_DEPLOYMENT)));
    for (std::wstring line; std::getline(lines, line);) {
        if (line.starts_with(name + L" ="))
            return std::wstring(trimmed(line.substr(name.size() + 2)));
    }
    ADD_FAILURE() << "no value " << toUtf8(name);
    return {};
}

struct StoredValue {
    const wchar_t* name;
    std::u16string_view stored;
};
const StoredValue kValues[] = {
    {L"smtp_host", deployment::kSmtpHost},
    {L"smtp_user", deployment::kSmtpUser},
    {L"smtp_password", deployment::kSmtpPassword},
    {L"support_address", deployment::kSupportAddress},
    {L"support_domain", deployment::kSupportDomain},
};

TEST(DeploymentTest, ValuesAreThoseOfTheFile) {
    for (const auto& [name, stored] : kValues)
        EXPECT_EQ(UnscrambleText(stored), valueOf(name));
}

#ifdef SWIFTGATE_MODULE
template <class Unit>
std::string bytesOf(const std::basic_string<Unit>& text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(Unit)};
}

TEST(DeploymentTest, TheModuleHoldsThemScrambledAndNowherePlain) {
    const std::string module = contentOf(SWIFTGATE_MODULE);
    const auto found = [&](const std::string& bytes) {
        return module.find(bytes) != std::string::npos;
    };
    for (const auto& [name, stored] : kValues) {
        const std::wstring plain = valueOf(name);
        EXPECT_TRUE(found(bytesOf(std::u16string(stored)))) << "the search finds what is there";
        EXPECT_FALSE(found(toUtf8(plain))) << toUtf8(plain);
        EXPECT_FALSE(found(bytesOf(toUtf16(plain)))) << toUtf8(plain);
        EXPECT_FALSE(found(bytesOf(plain))) << toUtf8(plain);
    }
}
#endif

TEST(DeploymentTest, ScramblingAddsOneToEachUnit) {
    EXPECT_EQ(ScrambleText(L"a\u00e9\xFFFF"), std::u16string(u"b\u00ea\0", 3));
    for (const wchar_t* const text : {L"", L"not-a-secret", L"\xFFFF\x01", L"\U0001F600\U0001F7FF"})
        EXPECT_EQ(UnscrambleText(ScrambleText(text)), text);
}

}  // namespace
}  // namespace sg
