#include "support/report_rules.h"

#include <gmock/gmock.h>

#include "base/encoding.h"

namespace sg {
namespace {

TEST(ReportRulesTest, Modes) {
    struct Case {
        int32_t mode;
        const wchar_t *title, *prefix;
    };
    const Case cases[] = {
        {0, L"Send Project to Quillon Support", L"QN Project"},
        {1, L"Send Bug to Quillon Support", L"QN Bug"},
        {2, L"Send to Quillon Support", L"QN Email"},
        {4, L"Send Master and Standards Databases to Quillon Support", L"QN Email"},
        {5, L"Send Standards Databases to Quillon Support", L"QN Email"},
        {-1, L"Send to Quillon Support", L"QN Email"},
    };
    for (const Case& each : cases) {
        const ReportMode mode = reportMode(each.mode);
        EXPECT_STREQ(mode.dialogTitle, each.title);
        EXPECT_STREQ(mode.subjectPrefix, each.prefix);
        EXPECT_EQ(mode.attachmentsCanBeEdited, each.mode == 0);
    }
    EXPECT_EQ(attachmentCountText(0), L"");
    EXPECT_EQ(attachmentCountText(1), L"(1 file)");
    EXPECT_EQ(attachmentCountText(12), L"(12 files)");
}

TEST(ReportRulesTest, Subjects) {
    const std::wstring x99(99, L'x'), x100(100, L'x');
    const std::pair<std::wstring, std::wstring> cases[] = {
        {L"It stops. Always.", L"It stops"},
        {L"Does it? No!", L"Does it"},
        {L"No end", L"No end"},
        {L"First line\r\nSecond.", L"First line"},
        {L"End.\r\nSecond", L"End"},
        {L"\r\nSecond", L""},
        {L"\nSecond", L""},
        {L".", L""},
        {x100 + L"y", x100},
        {x99 + L".y", x99},
        {x100 + L".y", x100},
        {x99 + L"\r\ny", x99 + L"\r"},
        {x99 + L"\ny", x99.substr(1)},
        {std::wstring(60, L'\U0001F600'), std::wstring(50, L'\U0001F600')},
    };
    for (const auto& [text, subject] : cases)
        EXPECT_EQ(BuildSubject(L"QN Bug", text, 100), L"QN Bug: " + subject) << toUtf8(text);
    EXPECT_EQ(BuildSubject(L"QN Bug", L"", 100), L"QN Bug");
}

TEST(ReportRulesTest, Bodies) {
    EXPECT_EQ(BuildBody(L" 555 ", L" text\r\n", L"sys"), L"555\n\n text\r\n\n\nsys\n");
    EXPECT_EQ(BuildBody(L" ", L"", L""), L"\n\n\n\n");
}

TEST(ReportRulesTest, Addresses) {
    struct Case {
        const wchar_t *address, *repetition;
        int code;
    };
    const Case cases[] = {
        {L"", L"", 2},
        {L"", L"a@b.c", 2},
        {L"Joe_X-1.y@B.c", L"Joe_X-1.y@B.c", 0},
        {L"a@.", L"a@.", 0},
        {L"@.", L"@.", 0},
        {L"joe@b.c", L"Joe@b.c", 3},
        {L"joe@b.c", L"", 3},
        {L"joe", L"joe", 1},
        {L"a@b@c.d", L"a@b@c.d", 1},
        {L"a.b@c", L"a.b@c", 1},
        {L"a@c", L"a@c", 1},
        {L"a+b@c.d", L"a+b@c.d", 1},
        {L"a b@c.d", L"a b@c.d", 1},
        {L"j\u00f6@c.d", L"j\u00f6@c.d", 1},
        {L"x@Desk.Example", L"x@desk.example", 4},
        {L"+@DESK.EXAMPLE", L"", 4},
        {L"@desk.example", L"", 4},
        {L"x@y.desk.example", L"x@y.desk.example", 0},
        {L"x@@desk.example", L"", 1},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(ValidateAddresses(each.address, each.repetition, L"desk.Example"), each.code)
            << toUtf8(each.address);
    }
}

TEST(ReportRulesTest, ArchiveNames) {
    struct Case {
        const wchar_t *name, *suffix, *archive;
    };
    const Case cases[] = {
        {L"a/b:c", L"Job 12", L"abc Job 12.zip"}, {L"  Joe Smith ", L"", L"Joe Smith.zip"},
        {L"", L"", L"QN Attachment.zip"},         {L" \\/?:*\"<>| ", L"x", L"QN Attachment x.zip"},
        {L"/ a", L"a/b?", L" a a/b?.zip"},
    };
    for (const Case& each : cases)
        EXPECT_EQ(BuildArchiveName(each.name, each.suffix), each.archive);
    EXPECT_TRUE(isFileName(L"Send to a@b.c--Joe.zip"));
    for (const wchar_t* const bad : {L"", L"a/b", L"a\\b", L"a:b", L"a*b", L"a\nb"})
        EXPECT_FALSE(isFileName(bad));
}

TEST(ReportRulesTest, PercentSignsArePrintedWithoutArguments) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"plain", L"plain"},
        {L"", L""},
        {L"%", L"%"},
        {L"100%", L"100%"},
        {L"100%\nnext", L"100%\nnext"},
        {L"%%", L"%"},
        {L"%%s%%%d", L"%s%"},
        {L"a%sb%nc%dd", L"abcd"},
        {L"%-+ #010.*lldx", L"x"},
        {L"%I64dx%I32ux%hsx%zux", L"xxxx"},
        {L"%999999999999999999999dx", L"x"},
        {L"%y%", L"%y%"},
        {L"50% sure", L"50ure"},
        {L"%.", L"%."},
    };
    for (const auto& [format, printed] : cases)
        EXPECT_EQ(printedWithoutArguments(format), printed) << toUtf8(format);
}

}  // namespace
}  // namespace sg
