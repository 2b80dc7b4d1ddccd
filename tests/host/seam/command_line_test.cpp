#include "host/seam/command_line.h"

#include <gmock/gmock.h>

#include "host/editor/input_source.h"
#include "host/seam/host_fixture.h"
#include "platform/ed/command_line.h"

namespace sg {
namespace {

using testing::HasSubstr;
using Echo = CommandLine::Echo;

class CommandLineTest : public test::HostTest {
  protected:
    CommandLineTest() { start(); }
};

// Answers every prompt with one text.
class OneAnswer : public InputSource {
  public:
    Answer<std::wstring> text(const TextRequest&) override {
        return Answer<std::wstring>::of(L"asked");
    }
};

TEST_F(CommandLineTest, WhatALineIs) {
    host().setInput({std::make_shared<OneAnswer>()});
    eval(
        "(defun c:two () (princ (list (getstring) (getstring))))"
        "(defun c:line () (princ (list (getstring) (getstring t))))"
        "(defun two () (princ \"not this\"))"
        "(defun c:nested () (c:two))");
    const struct {
        const char *line, *printed;
    } cases[] = {
        {"(princ (+ 1 2))", "3"},
        {"  !(princ 4)", "4"},
        {"two a b", "(a b)"},
        {"TWO\ta   b c", "(a b)"},
        {"two a", "(a asked)"},
        {"two", "(asked asked)"},
        {"line a  b c  ", "(a b c)"},
        {"nested x y", "(x y)"},
        {"(princ 1)(princ 2) two a b", "12(a b)"},
        {"two a b\n(princ 5)\n\ntwo c d", "(a b)5(c d)"},
        {"(princ\n  6)", "6"},
        {"", ""},
        {" \n ", ""},
        {"c:two a b", "Unknown command \"C:TWO\".\n"},
        {"nosuch a b", "Unknown command \"NOSUCH\".\n"},
    };
    for (const auto& c : cases) {
        const auto result = type(c.line);
        EXPECT_EQ(printed(), c.printed) << c.line;
        EXPECT_EQ(result.failed, std::string(c.printed).starts_with("Unknown")) << c.line;
        EXPECT_FALSE(result.exited) << c.line;
        type("(terpri)");  // an unknown command would start a line of its own
        EXPECT_EQ(printed(), "\n");
    }
    EXPECT_EQ(errors(), "");
}

TEST_F(CommandLineTest, LeftoverWordsDoNotAnswerTheNextCommand) {
    eval("(defun c:none () (princ)) (defun c:one () (princ (getstring)))");
    type("none left over");
    EXPECT_TRUE(type("one").failed) << "nobody answers, so the prompt is cancelled";
    EXPECT_THAT(errors(), HasSubstr("; error: Function cancelled"));
    eval("(defun c:none () (car 1))");
    EXPECT_TRUE(type("none left over").failed);
    EXPECT_TRUE(host().typedWords().empty());
}

TEST_F(CommandLineTest, AnUnknownCommandStartsALine) {
    type("(princ \"x\") nosuch");
    EXPECT_EQ(printed(), "x\nUnknown command \"NOSUCH\".\n");
}

TEST_F(CommandLineTest, ValuesAreEchoedOnLinesOfTheirOwn) {
    type("(+ 1 2) \n(strcat \"a\" \"b\")", Echo::Values);
    EXPECT_EQ(printed(), "3\n\"ab\"\n");
    type("(princ \"x\")", Echo::Values);
    EXPECT_EQ(printed(), "x\n\"x\"\n");
    type("(princ)", Echo::Values);
    EXPECT_EQ(printed(), "");
}

TEST_F(CommandLineTest, ErrorsAndExits) {
    const struct {
        const char* line;
        bool failed, exited;
        const char* printed;
    } cases[] = {
        {"(princ 1) (car 2) (princ 3)", true, false, "13"},
        {"(princ 1) (princ", true, false, "1"},
        {"(princ 1) (exit) (princ 2)", false, true, "1"},
        {"(princ 1) ) (princ 2)", true, false, "1\nUnknown command \")\".\n"},
    };
    for (const auto& c : cases) {
        const auto result = type(c.line);
        EXPECT_EQ(result.failed, c.failed) << c.line;
        EXPECT_EQ(result.exited, c.exited) << c.line;
        EXPECT_EQ(printed(), c.printed) << c.line;
    }
    EXPECT_EQ(eval("(setq a 1)"), "1");
    type("((lambda (a) (car 2)) 5)");
    EXPECT_EQ(eval("a"), "1") << "variables are put back";
}

TEST_F(CommandLineTest, LoadedTextIsNamedInItsErrors) {
    const auto result =
        host().commandLine().load(active(), L"(setq a 1)\n(defun f () (car 1))\n(f)", L"plan.lsp");
    EXPECT_TRUE(result.failed);
    EXPECT_THAT(errors(),
                testing::AllOf(HasSubstr("; error: bad argument type"), HasSubstr("plan.lsp:3")));
    EXPECT_EQ(eval("a"), "1");
}

TEST_F(CommandLineTest, FormatsTakeWideStrings) {
    const std::wstring longText(5000, L'x');
    acutPrintf(L"%s|%-4s|%4s|%.2s|%c|%d|%5.2f|%u|%%|%hs|%ls|%x", L"a\u00e9\u4e2d", L"b", L"c",
               L"def", L'g', -7, 2.5, 8u, "narrow", L"wide", 255u);
    EXPECT_EQ(printed(), "a\u00e9\u4e2d|b   |   c|de|g|-7| 2.50|8|%|narrow|wide|ff");
    acutPrintf(L"%s", longText.c_str());
    EXPECT_EQ(printed(), std::string(5000, 'x'));
    EXPECT_EQ(acutPrintf(L"ends in %"), RTERROR);
    EXPECT_EQ(acutPrintf(nullptr), RTERROR);
    EXPECT_EQ(acedPrompt(L"%s as it stands"), RTNORM);
    EXPECT_EQ(acedPrompt(nullptr), RTERROR);
    EXPECT_EQ(printed(), "%s as it stands");
}

TEST_F(CommandLineTest, SystemVariablesCrossAsNodes) {
    const auto get = [](const wchar_t* name) {
        resbuf node{};
        EXPECT_EQ(acedGetVar(name, &node), RTNORM);
        return node;
    };
    EXPECT_EQ(get(L"luprec").restype, RTSHORT);
    resbuf name = get(L"DWGNAME");
    ASSERT_EQ(name.restype, RTSTR);
    EXPECT_STREQ(name.resval.rstring, L"Drawing1.dwg");
    acutDelString(name.resval.rstring);
    EXPECT_EQ(get(L"DATE").restype, RTREAL);

    resbuf six{};
    six.restype = RTSHORT;
    six.resval.rint = 6;
    EXPECT_EQ(acedSetVar(L"LUPREC", &six), RTNORM);
    EXPECT_EQ(eval("(getvar 'luprec)"), "6");
    six.restype = RTLONG;
    six.resval.rlong = 5;
    EXPECT_EQ(acedSetVar(L"LUPREC", &six), RTNORM);
    six.resval.rlong = 99;
    EXPECT_EQ(acedSetVar(L"LUPREC", &six), RTERROR) << "outside the range";
    EXPECT_EQ(acedSetVar(L"DWGNAME", &six), RTERROR) << "read-only";
    EXPECT_EQ(acedSetVar(L"NOSUCH", &six), RTERROR);
    six.restype = RTNIL;
    EXPECT_EQ(acedSetVar(L"LUPREC", &six), RTERROR) << "no value at all";
    EXPECT_EQ(acedSetVar(L"LUPREC", nullptr), RTERROR);
    EXPECT_EQ(acedGetVar(L"NOSUCH", &six), RTERROR);
    EXPECT_EQ(acedGetVar(L"LUPREC", nullptr), RTERROR);
    EXPECT_EQ(eval("(getvar \"LUPREC\")"), "5");
}

}  // namespace
}  // namespace sg
