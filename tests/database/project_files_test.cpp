#include "database/project_files.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/seam/host_fixture.h"

namespace sg::test {
namespace {

using ProjectFiles = HostTest;

TEST_F(ProjectFiles, OneFileOfThePrefixIsThePath) {
    struct Case {
        const char* name;
        std::vector<std::string> files;
        std::string found;  // of the extension "qn"
    };
    const Case cases[] = {
        {"none", {"Other.qn", "Job.mdb", "Job.qnx"}, ""},
        {"one", {"Job 12.qn", "Other.qn"}, "Job 12.qn"},
        {"prefix inside the name", {"The Job.qn"}, "The Job.qn"},
        {"two", {"Job 1.qn", "Job 2.qn"}, ""},
        {"the product's own beside it",
         {"52-qn Job.qn", "Job_Master.qn", "Job_STANDARDS 2.qn", "Job.qn"},
         "Job.qn"},
        {"the product's own alone", {"52-QN Job.qn"}, ""},
        {"in the middle it counts", {"Job 52-QN.qn"}, "Job 52-QN.qn"},
        {"a folder is no file", {"Job dir.qn/x", "Job.qn"}, "Job.qn"},
    };
    make();
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        for (const std::string& file : each.files)
            write(std::string(each.name) + "/" + file);
        const std::wstring folder = path(each.name);
        const std::wstring expected =
            each.found.empty() ? L"" : folder + L"/" + fromUtf8(each.found);
        EXPECT_EQ(findProjectFile(folder, L"Job", L"qn"), expected);
    }
}

TEST_F(ProjectFiles, TheOlderExtensionCountsWithoutTheNewOne) {
    make();
    write("both/Job.qn");
    write("both/Job.mdb");
    write("old/Job.mdb");
    write("two/Job 1.qn");
    write("two/Job 2.qn");
    write("two/Job.mdb");
    EXPECT_EQ(findProjectDatabase(path("both"), L"Job"), path("both/Job.qn"));
    EXPECT_EQ(findProjectDatabase(path("old"), L"Job"), path("old/Job.mdb"));
    EXPECT_EQ(findProjectDatabase(path("two"), L"Job"), path("two/Job.mdb"));
    EXPECT_EQ(findProjectDatabase(path("nowhere"), L"Job"), L"");
}

}  // namespace
}  // namespace sg::test
