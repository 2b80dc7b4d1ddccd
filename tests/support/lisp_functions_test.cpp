#include "support/lisp_functions.h"

#include <gmock/gmock.h>

#include "module/module_fixture.h"
#include "support/signatures/vectors.h"

namespace sg {
namespace {

using namespace test;
using testing::StartsWith;

class LispFunctionsTest : public ModuleTest {
  protected:
    LispFunctionsTest() {
        start();
        set("here", toUtf8(path()) + "/");
        write("a.txt", "a");
        write("b.txt", "b");
    }
    void set(const std::string& name, const std::string& text) {
        eval("(setq " + name + " \"" + text + "\")");
    }
    // The call with "@" standing for the test's folder.
    std::string call(const std::string& program) {
        std::string whole = program;
        for (size_t at; (at = whole.find('@')) != std::string::npos;)
            whole.replace(at, 1, toUtf8(path()) + "/");
        return eval(whole);
    }
};

TEST_F(LispFunctionsTest, ArgumentsOfTheWrongKindGiveNothing) {
    for (const char* const program :
         {"(CreateZip)", "(CreateZip 1 '(\"@a.txt\"))", "(CreateZip nil)",
          "(CreateZip \"@none/x.zip\" '(\"@a.txt\"))", "(CreateZip \"@\" '(\"@a.txt\"))",
          "(ExtractZip)", "(ExtractZip \"@x.zip\")", "(ExtractZip 1 \"@out\")",
          "(ExtractZip \"@x.zip\" nil)", "(DownloadFile)", "(DownloadFile \"file://@a.txt\")",
          "(DownloadFile 1 2)", "(signString)", "(signString 1)", "(signString '(\"a\"))",
          "(verifyString)", "(verifyString \"a\")", "(verifyString \"a\" \"0\" 1)"}) {
        EXPECT_EQ(call(program), "nil") << program;
    }
    EXPECT_FALSE(exists("x.zip"));
}

TEST_F(LispFunctionsTest, ArchivesTakePatternsWithAndWithoutAList) {
    const struct {
        const char *patterns, *answer;
    } cases[] = {
        {"'(\"@a.txt\" \"@b.txt\")", "T"},
        {"'(\"@?.txt\")", "T"},
        {"\"@a.txt\" \"@b.txt\"", "T"},
        {"'(\"@a.txt\" 1 \"@none\")", "T"},  // reading ends at what is no string
        {"nil", "T"},
        {"", "T"},
        {"'(\"@a.txt\" \"@none*\")", "nil"},
        {"'(\"\")", "nil"},
    };
    for (const auto& c : cases) {
        const std::string program = std::string("(CreateZip \"@x.zip\" ") + c.patterns + ")";
        EXPECT_EQ(call(program), c.answer) << program;
        EXPECT_EQ(exists("x.zip"), c.answer == std::string("T")) << program;
        std::filesystem::remove(folder_ / "x.zip");
    }
}

TEST_F(LispFunctionsTest, AFailedWriteStillAnswersT) {
    // The archive's place is taken by a folder after it was begun, and has its name.
    std::filesystem::create_directory(folder_ / "sub");
    EXPECT_EQ(call("(CreateZip \"@sub\" nil)"), "nil");
    write("big.txt", std::string(1000, 'x'));
    EXPECT_EQ(call("(CreateZip \"@y.zip\" '(\"@big.txt\"))"), "T");
    EXPECT_EQ(call("(ExtractZip \"@y.zip\" \"@sub\")"), "T");
    EXPECT_EQ(read("sub/big.txt"), read("big.txt"));
    EXPECT_EQ(call("(ExtractZip \"@y.zip\" \"@a.txt\")"), "nil");
    EXPECT_EQ(call("(ExtractZip \"@a.txt\" \"@sub\")"), "nil");
    EXPECT_EQ(call("(ExtractZip \"@none.zip\" \"@sub\")"), "nil");
}

TEST_F(LispFunctionsTest, DownloadsAnswerNothing) {
    EXPECT_EQ(call("(DownloadFile \"file://@a.txt\" \"@got\")"), "nil");
    EXPECT_EQ(read("got"), "a");
    EXPECT_EQ(call("(DownloadFile \"file://@none\" \"@got\")"), "nil");
    EXPECT_EQ(read("got"), "a");
}

TEST_F(LispFunctionsTest, SignaturesOfAnotherProgramAreVerified) {
    set("key", signatureTexts().at("public1024"));
    set("sign", signatureTexts().at("plain1024"));
    set("clipped", signatureTexts().at("clipped1024"));
    const char* const message = "\"The quick brown fox jumps over the lazy dog\"";
    const struct {
        std::string call, answer;
    } cases[] = {
        {std::string("(verifyString ") + message + " key sign)", "T"},
        {"(verifyString \"the quick brown fox jumps over the lazy dog\" key sign)", "nil"},
        {std::string("(verifyString ") + message + " sign key)", "nil"},
        {std::string("(verifyString ") + message + " key (strcat sign \",9,9\"))", "T"},
        {std::string("(verifyString ") + message + " (strcat \"2\" key) sign)", "T"},
        {std::string("(verifyString ") + message + " key (substr sign 3))", "nil"},
        {"(verifyString \"\u03a9\u03bc \u20ac\" key clipped)", "T"},
        {"(verifyString \"\u20ac\u20ac \u03a9\" key clipped)", "T"},
        {"(verifyString \"\u20ac\u20ac  \u03a9\" key clipped)", "nil"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(eval(c.call), c.answer) << c.call;
}

TEST_F(LispFunctionsTest, GeneratedSignatures) {
    eval("(setq s (signString \"text\") u (signString \"text\") e (signString \"\" \"\"))");
    EXPECT_EQ(eval("(mapcar 'car s)"), "(\"sPublicKey\" \"sPrivateKey\" \"sSign\")");
    EXPECT_EQ(eval("(mapcar '(lambda (p) (atoi (cdr p))) s)"), "(148 596 128)");
    EXPECT_EQ(eval("(equal (car s) (car u))"), "nil") << "every pair is another one";
    EXPECT_EQ(eval("(verifyString \"text\" (cdar s) (cdaddr s))"), "T");
    EXPECT_EQ(eval("(verifyString \"text\" (cdar u) (cdaddr s))"), "nil");
    EXPECT_EQ(eval("(verifyString \"\" (cdar e) (cdaddr e))"), "T");
    EXPECT_EQ(eval("(signString \"text\" (cdadr s))"), "nil")
        << "the key is read byte per character";
    EXPECT_EQ(eval("(length (signString \"text\" 5))"), "3") << "what is no string is no key";
}

}  // namespace
}  // namespace sg
