#include <gmock/gmock.h>

#include "host/lisp/functions/program_state.h"
#include "host/lisp/functions/program_test.h"

namespace sg::lisp {
namespace {

using testing::HasSubstr;

using ProgramsTest = ProgramTest;

TEST_F(ProgramsTest, LoadAnswersTheLastValue) {
    write("one.lsp", "(setq a 1)\n'(last)");
    write("void.lsp", "(princ)");
    write("empty.lsp", "; nothing\n");
    write("menu.mnl", "'menu");
    write("v1.2.lsp", "'dotted");
    write("plain", "'plain");
    write("both", "'both");
    write("both.lsp", "'both.lsp");
    std::filesystem::create_directory("folder.lsp");
    write("folder", "'not-the-folder");
    const struct {
        const wchar_t* program;
        const wchar_t* value;
    } cases[] = {
        {L"(load \"one\")", L"(LAST)"},
        {L"(load \"one.lsp\")", L"(LAST)"},
        {L"(load \"ONE.LSP\")", L"(LAST)"},
        {L"a", L"1"},
        {L"(load \"void\")", L""},
        {L"(load \"empty\")", L"nil"},
        {L"(load \"menu.mnl\")", L"MENU"},
        {L"(load \"menu\" \"none\")", L"\"none\""},
        {L"(load \"v1.2\")", L"DOTTED"},
        {L"(load \"plain\")", L"PLAIN"},
        {L"(load \"both\")", L"BOTH.LSP"},
        {L"(load \"folder\")", L"NOT-THE-FOLDER"},
        {L"(load 1)", L"; error: bad argument type: stringp 1"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(run(each.program), each.value) << toUtf8(each.program);
    }
}

TEST_F(ProgramsTest, WhatHappensWhenAFileIsMissing) {
    write("compiled.lsp", "FAS4-FILE ; not text");
    run(L"(defun answer () 42)");
    const struct {
        const wchar_t* program;
        const wchar_t* value;
    } cases[] = {
        {L"(load \"none\")", L"; error: LOAD failed: \"none\""},
        {L"(load \"\")", L"; error: LOAD failed: \"\""},
        {L"(load \"none\" nil)", L"nil"},
        {L"(load \"none\" \"failed\")", L"\"failed\""},
        {L"(load \"none\" 'failed)", L"FAILED"},
        {L"(load \"none\" '(1 2))", L"(1 2)"},
        {L"(load \"none\" answer)", L"42"},
        {L"(load \"none\" 'answer)", L"42"},
        {L"(load \"none\" '(lambda () 43))", L"43"},
        {L"(load \"none\" (lambda () 44))", L"44"},
        {L"(load \"compiled\" \"failed\")", L"\"failed\""},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(run(each.program), each.value) << toUtf8(each.program);
    }
}

TEST_F(ProgramsTest, ProgramsMayBeEncodedInAnyWay) {
    const std::string program = "\"\xC3\xA4\"";
    for (const std::string& content :
         {program, "\xEF\xBB\xBF" + program, std::string("; \xE4\r\n\"\xE4\""),
          std::string("\xFF\xFE\"\0\xE4\0\"\0", 8), std::string("\xFE\xFF\0\"\0\xE4\0\"", 8)}) {
        write("p.lsp", content);
        EXPECT_EQ(run(L"(load \"p\")"), L"\"\u00E4\"");
    }
}

TEST_F(ProgramsTest, ErrorsInAProgramAreItsOwn) {
    write("bad.lsp", "(setq a 1)\n(setq b\n");
    EXPECT_THAT(toUtf8(run(L"(load \"bad\" \"not answered\")")), HasSubstr("bad.lsp:3"));
    EXPECT_EQ(run(L"a"), L"1") << "what stood before the mistake has run";
    write("fails.lsp", "(setq a 2)\n(no-such-function)\n(setq a 3)\n");
    EXPECT_EQ(run(L"(load \"fails\" \"not answered\")"),
              L"; error: no function definition: NO-SUCH-FUNCTION");
    EXPECT_EQ(run(L"a"), L"2");
    write("self.lsp", "(load \"self\")");
    EXPECT_THAT(toUtf8(run(L"(load \"self\")")), HasSubstr("files load one another"));
    EXPECT_EQ(run(L"(progn (vl-catch-all-apply 'load '(\"self\")) (load \"self\" 1))").substr(0, 8),
              L"; error:")
        << "the count of nested loads starts anew";
    EXPECT_EQ(run(L"(vl-list-loaded-lisp)"), L"nil") << "none of them was loaded to its end";
}

TEST_F(ProgramsTest, LoadedProgramsAreListedOnce) {
    write("a.lsp", "1");
    write("sub/b.lsp", "2");
    run(L"(progn (load \"a\") (load \"sub/b\") (load \"A.LSP\"))");
    EXPECT_EQ(run(L"(vl-list-loaded-lisp)"), L"(\"a.lsp\" \"b.lsp\")");
    EXPECT_EQ(run(L"(vl-list-loaded-vlx)"), L"nil");
    EXPECT_EQ(run(L"(vl-vlx-loaded-p \"a\")"), L"nil");
}

TEST_F(ProgramsTest, AutoloadWaitsForTheFirstCall) {
    write("tools.lsp",
          "(princ \"loaded \") (gc)\n(defun c:one () 'first)\n(defun c:two () (c:one))\n");
    run(L"(defun c:old () 'old)");
    EXPECT_EQ(run(L"(autoload \"tools\" '(\"one\" \"Two\" \"three\" \"old\"))"), L"nil");
    EXPECT_EQ(printed(), L"");
    EXPECT_EQ(run(L"(c:old)"), L"OLD") << "a definition is kept";
    run(L"(setq held c:one)");
    EXPECT_EQ(run(L"(c:two)"), L"FIRST");
    EXPECT_EQ(run(L"(c:one)"), L"FIRST");
    EXPECT_EQ(run(L"(apply held nil)"), L"FIRST") << "also when it was kept elsewhere";
    EXPECT_EQ(printed(), L"loaded ");
    EXPECT_EQ(run(L"(c:three)"), L"; error: the program \"tools\" does not define C:THREE");
    EXPECT_EQ(run(L"(c:three)"), L"; error: the program \"tools\" does not define C:THREE");

    run(L"(autoload \"none\" '(\"missing\"))");
    EXPECT_EQ(run(L"(c:missing)"), L"; error: LOAD failed: \"none\"");
    EXPECT_EQ(run(L"(autoload \"none\" '(1))"), L"; error: bad argument type: stringp 1");
    EXPECT_EQ(run(L"(autoload \"none\" 1)"), L"; error: bad argument type: listp 1");
}

TEST_F(ProgramsTest, LoadAllReachesEveryNamespace) {
    write("all.lsp", "(setq shared 'seen)");
    const auto first = in.newNamespace(L"first");
    const auto second = in.newNamespace(L"second");
    const uint32_t shared = in.intern(L"SHARED");
    in.enterNamespace(first.get());
    EXPECT_EQ(run(L"(vl-load-all \"all\")"), L"nil");
    EXPECT_EQ(in.currentNamespace(), first.get());
    EXPECT_EQ(in.valueIn(*first, shared), in.symbol(L"SEEN"));
    EXPECT_EQ(in.valueIn(*second, shared), in.symbol(L"SEEN"));

    const auto third = in.newNamespace(L"third");
    EXPECT_TRUE(in.valueIn(*third, shared).isNil());
    in.enterNamespace(third.get());
    in.runProtected([&] {
        loadProgramsForNewNamespace(in);
        return Value::nil();
    });
    EXPECT_EQ(in.valueIn(*third, shared), in.symbol(L"SEEN"));
    EXPECT_EQ(run(L"(vl-load-all \"none\")"), L"; error: LOAD failed: \"none\"");
    for (const auto* each : {&first, &second, &third})
        in.forgetNamespace(each->get());
}

TEST_F(ProgramsTest, AFailureElsewhereLeavesTheNamespaceInPlace) {
    write("all.lsp", "(if mine nil (no-such-function))");
    const auto first = in.newNamespace(L"first");
    const auto second = in.newNamespace(L"second");
    in.enterNamespace(first.get());
    run(L"(setq mine 'yes x 'outer)");
    EXPECT_EQ(run(L"((lambda (x) (vl-load-all \"all\")) 'inner)"),
              L"; error: no function definition: NO-SUCH-FUNCTION");
    EXPECT_EQ(in.currentNamespace(), first.get());
    EXPECT_EQ(run(L"x"), L"OUTER");
    for (const auto* each : {&first, &second})
        in.forgetNamespace(each->get());
}

}  // namespace
}  // namespace sg::lisp
