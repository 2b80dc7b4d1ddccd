#include <gmock/gmock.h>

#include "host/editor/script_input.h"
#include "host/seam/host_fixture.h"

// What initget allows, and what prompts make of answers.
namespace sg {
namespace {

class PromptsTest : public test::HostTest {
  protected:
    PromptsTest() { start(); }
    // What a program answers when the script answers it.
    std::string ask(const std::string& program, const wchar_t* script) {
        std::wstring error;
        host().setInput({ScriptInput::parse(script, L"script", nullptr, error)});
        EXPECT_EQ(error, L"");
        return eval(program);
    }
};

TEST_F(PromptsTest, WhatInitgetAllows) {
    const struct {
        const char* program;
        const wchar_t* script;
        const char *answer, *complaint;
    } cases[] = {
        {"(getint)", L"ENTER", "nil", ""},
        {"(progn (initget 1) (getint))", L"ENTER\n7", "7", "Requires an integer value."},
        {"(progn (initget 2) (getint))", L"0\n7", "7", "Value must be nonzero."},
        {"(progn (initget 4) (getreal))", L"-1\n0", "0.0", "Value must be positive."},
        {"(progn (initget 6) (getdist))", L"0\n-1\n2", "2.0",
         "Value must be positive and nonzero.\nValue must be positive and nonzero."},
        {"(progn (initget 7) (getdist))", L"ENTER\n2", "2.0",
         "Requires numeric distance or two points."},
        {"(progn (initget 2) (getangle))", L"0\n90", "1.5708", "Value must be nonzero."},
        {"(progn (initget 1) (getangle) (getangle))", L"90\nENTER", "nil", ""},
        {"(progn (initget 64) (getdist))", L"0,0,0\n3,4,9", "5.0", ""},
        {"(getdist)", L"0,0,0\n0,0,9", "9.0", ""},
        {"(progn (initget 1 \"Yes No\") (getkword))", L"ENTER\nkeyword maybe\nkeyword y", "\"Yes\"",
         "Invalid option keyword.\nInvalid option keyword."},
        {"(progn (initget \"eXit\") (getpoint))", L"keyword x", "\"eXit\"", ""},
        {"(progn (initget \"eXit\") (getpoint))", L"keyword ex", "\"eXit\"", ""},
        {"(progn (initget \"LTYPE,LT\") (getint))", L"keyword lt", "\"LTYPE\"", ""},
        {"(progn (initget \"LTYPE,LT\") (getint))", L"keyword l\n5", "5",
         "Requires an integer value."},
        {"(progn (initget \"Mitte Ende _Middle End\") (getreal))", L"keyword e", "\"End\"", ""},
        {"(progn (initget \"Mitte Ende _Middle End\") (getreal))", L"keyword _middle", "\"Middle\"",
         ""},
        {"(progn (initget 128) (getpoint))", L"keyword anything", "\"anything\"", ""},
        {"(progn (initget 128 \"Any\") (getint))", L"keyword a", "\"Any\"", ""},
        {"(progn (initget 128) (getreal))", L"2.5", "2.5", ""},
        {"(progn (initget 129) (getpoint))", L"ENTER\n1,2", "(1.0 2.0 0.0)", "Invalid point."},
        {"(progn (initget 1 \"A\") (getstring) (getkword))", L"text x",
         "; error: getkword: no keywords, see initget", ""},
        {"(progn (initget \"A\") (getint) (getint))", L"5\nkeyword a\n6", "6",
         "Requires an integer value."},
        {"(getint)", L"2.5\n70000\n3", "3",
         "Requires an integer value.\nRequires an integer between -32768 and 32767."},
        {"(getpoint '(1 1))", L"@2,3", "(3.0 4.0 0.0)", ""},
        {"(getorient '(0 0))", L"0,5", "1.5708", ""},
        {"(getcorner '(0 0))", L"4,5", "(4.0 5.0 0.0)", ""},
        {"(getstring)", L"text two words", "\"two words\"", ""},
        {"(getreal)", L"ESC", "; error: Function cancelled", ""},
        {"(getreal)", L"", "; error: Function cancelled", ""},
    };
    for (const auto& c : cases) {
        type("(setvar \"LASTPOINT\" '(1 1 0))");
        EXPECT_EQ(ask(c.program, c.script), c.answer) << c.program;
        const std::string complaint = c.complaint;
        EXPECT_EQ(printed(), complaint.empty() ? "" : complaint + "\n") << c.program;
    }
}

TEST_F(PromptsTest, ErrnoTellsWhatCameOfIt) {
    type("(entmake '((0 . \"LINE\") (10 0 0 0) (11 9 0 0)))");
    const struct {
        const char* program;
        const wchar_t* script;
        const char* number;
    } cases[] = {
        {"(getpoint)", L"1,1", "0"},    {"(getpoint)", L"ENTER", "52"},
        {"(entsel)", L"pick 5,0", "0"}, {"(entsel)", L"pick 5,5", "7"},
        {"(entsel)", L"ENTER", "52"},   {"(nentsel)", L"pick 5,5", "7"},
        {"(getreal)", L"1.5", "0"},
    };
    for (const auto& c : cases) {
        ask(c.program, c.script);
        EXPECT_EQ(eval("(getvar \"ERRNO\")"), c.number) << c.program;
    }
}

TEST_F(PromptsTest, PointsInATurnedSystem) {
    type("(setvar \"CMDECHO\" 0)");
    type("(command \"_.UCS\" \"_O\" '(10 0) \"_.UCS\" \"_Z\" 90)");
    EXPECT_EQ(ask("(getpoint)", L"text *10,5"), "(5.0 0.0 0.0)") << "world coordinates";
    EXPECT_EQ(ask("(getpoint)", L"3<90"), "(1.83697e-16 3.0 0.0)");
    type("(command \"_.LINE\" '(0 0) '(4 0) \"\")");
    EXPECT_EQ(ask("(mapcar 'fix (getpoint))", L"text end\n3.99,0"), "(4 0 0)");
    EXPECT_EQ(ask("(cadr (entsel))", L"pick 2,0"), "(2.0 0.0 0.0)");
    EXPECT_EQ(ask("(car (entsel))", L"pick 10,2"), "nil");
}

}  // namespace
}  // namespace sg
