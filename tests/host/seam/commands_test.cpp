#include <gmock/gmock.h>

#include "host/editor/script_input.h"
#include "host/seam/host_fixture.h"

// Built-in commands as programs and people run them.
namespace sg {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

class CommandsTest : public test::HostTest {
  protected:
    CommandsTest() {
        start();
        type(R"((progn (setvar "CMDECHO" 0)
            (defun group (code) (cdr (assoc code (entget (entlast)))))
            (defun count (/ s) (if (setq s (ssget "_X")) (sslength s) 0))
            (defun kind () (group 0))))");
    }
    // Answers prompts by the lines of a script.
    void answer(const wchar_t* lines) {
        std::wstring error;
        host().setInput({ScriptInput::parse(lines, L"script", nullptr, error)});
        ASSERT_EQ(error, L"");
    }
};

TEST_F(CommandsTest, WhatTheyDraw) {
    const struct {
        const char *command, *shown, *expected;
    } cases[] = {
        {"(command \"LINE\" '(0 0) '(4 0) '(4 3) \"C\")", "(list (group 10) (group 11))",
         "((4.0 3.0 0.0) (0.0 0.0 0.0))"},
        {"(command \"LINE\" \"1,1\" \"@2<90\" \"U\" \"@3,0\" \"\")", "(group 11)", "(4.0 1.0 0.0)"},
        {"(command \"CIRCLE\" '(1 2) \"D\" 6)", "(group 40)", "3.0"},
        {"(command \"CIRCLE\" \"3P\" '(0 0) '(4 0) '(4 3))", "(list (group 10) (group 40))",
         "((2.0 1.5 0.0) 2.5)"},
        {"(command \"ARC\" '(4 0) \"C\" '(0 0) \"A\" 90)", "(list (group 50) (group 51))",
         "(0.0 1.5708)"},
        {"(command \"ARC\" \"C\" '(0 0) '(4 0) '(0 9))", "(list (group 40) (group 51))",
         "(4.0 1.5708)"},
        {"(command \"ARC\" '(0 0) \"E\" '(4 0) \"A\" 180)", "(list (group 10) (group 40))",
         "((2.0 0.0 0.0) 2.0)"},
        {"(command \"ARC\" '(0 0) \"E\" '(4 0) \"D\" -90)", "(list (group 10) (group 50))",
         "((2.0 0.0 0.0) 3.14159)"},
        {"(command \"ARC\" '(4 0) \"C\" '(0 0) \"L\" 4)", "(group 51)", "1.0472"},
        {"(command \"ARC\" '(-2 0) '(0 2) '(2 0))", "(list (group 50) (group 51))",
         "(0.0 3.14159)"},
        {"(command \"PLINE\" '(0 0) '(4 0) \"A\" '(4 4) \"CL\")",
         "(list (group 90) (group 70) (group 42))", "(3 1 0.0)"},
        {"(command \"PLINE\" '(0 0) \"A\" \"S\" '(2 2) '(4 0) \"\")",
         "(equal (group 42) -1.0 1e-9)", "T"},
        {"(command \"PLINE\" '(0 0) \"A\" \"CE\" '(2 0) '(4 0) \"\")",
         "(equal (group 42) 1.0 1e-9)", "T"},
        {"(command \"PLINE\" '(0 0) \"A\" \"R\" 2 '(4 0) \"\")", "(equal (group 42) 1.0 1e-9)",
         "T"},
        {"(command \"PLINE\" '(0 0) \"W\" 1 0.5 '(4 0) \"L\" 2 \"\")",
         "(list (group 40) (group 41) (group 90))", "(1.0 0.5 3)"},
        {"(command \"TEXT\" \"R\" '(4 1) 0.5 0 \"abc\")", "(list (group 72) (group 11))",
         "(2 (4.0 1.0 0.0))"},
        {"(command \"TEXT\" \"F\" '(0 0) '(9 0) 0.5 \"fit\")", "(list (group 72) (group 40))",
         "(5 0.5)"},
        {"(command \"MTEXT\" '(0 4) \"J\" \"BR\" \"H\" 2 \"R\" 90 '(8 0) \"one\" \"two\" \"\")",
         "(list (group 71) (group 1) (group 10) (group 41))",
         "(9 \"one\\\\Ptwo\" (8.0 0.0 0.0) 8.0)"},
    };
    for (const auto& c : cases) {
        type(c.command);
        EXPECT_EQ(eval(c.shown), c.expected) << c.command;
        EXPECT_EQ(eval("(getvar \"CMDACTIVE\")"), "0") << c.command;
    }
    EXPECT_EQ(printed(), "");
    EXPECT_EQ(errors(), "");
}

TEST_F(CommandsTest, WhatTheyChange) {
    const struct {
        const char *command, *expected;
    } cases[] = {
        {"(command \"MOVE\" \"L\" \"\" '(1 1) '(3 4))", "((2.0 3.0 0.0) (6.0 3.0 0.0))"},
        {"(command \"MOVE\" \"L\" \"\" '(1 1) \"\")", "((1.0 1.0 0.0) (5.0 1.0 0.0))"},
        {"(command \"MOVE\" \"L\" \"\" \"D\" '(0 5))", "((0.0 5.0 0.0) (4.0 5.0 0.0))"},
        {"(command \"COPY\" \"L\" \"\" '(0 0) '(0 1))", "((0.0 1.0 0.0) (4.0 1.0 0.0))"},
        {"(command \"ROTATE\" \"L\" \"\" '(4 0) 180)", "((8.0 0.0 0.0) (4.0 0.0 0.0))"},
        {"(command \"ROTATE\" \"L\" \"\" '(0 0) \"R\" 0 180)", "((0.0 0.0 0.0) (-4.0 0.0 0.0))"},
        {"(command \"ROTATE\" \"L\" \"\" '(4 0) \"C\" 180)", "((8.0 0.0 0.0) (4.0 0.0 0.0))"},
        {"(command \"SCALE\" \"L\" \"\" '(0 0) 2)", "((0.0 0.0 0.0) (8.0 0.0 0.0))"},
        {"(command \"SCALE\" \"L\" \"\" '(0 0) \"R\" 4 1)", "((0.0 0.0 0.0) (1.0 0.0 0.0))"},
        {"(command \"MIRROR\" \"L\" \"\" '(2 2) '(9 2) \"Y\")", "((0.0 4.0 0.0) (4.0 4.0 0.0))"},
        {"(command \"STRETCH\" \"C\" '(3 -1) '(5 1) \"\" '(0 0) '(0 7))",
         "((0.0 0.0 0.0) (4.0 7.0 0.0))"},
        {"(command \"STRETCH\" (ssget \"_C\" '(3 -1) '(5 1)) \"\" '(0 0) '(1 0))",
         "((0.0 0.0 0.0) (5.0 0.0 0.0))"},
        {"(command \"STRETCH\" line \"\" '(0 0) '(0 7))", "((0.0 7.0 0.0) (4.0 7.0 0.0))"},
    };
    for (const auto& c : cases) {
        type("(command \"LINE\" '(0 0) '(4 0) \"\")");
        type("(setq line (entlast))");
        type(c.command);
        EXPECT_EQ(
            eval(std::string("(equal (list (group 10) (group 11)) '") + c.expected + " 1e-9)"), "T")
            << c.command << " gives " << eval("(list (group 10) (group 11))");
        type("(command \"ERASE\" \"ALL\" \"\")");
    }
}

TEST_F(CommandsTest, TextsStayReadableWhenTheyAreMirrored) {
    const struct {
        const char *axis, *angle;
    } cases[] = {{"'(0 0) '(0 1)", "0.0"}, {"'(0 0) '(1 0)", "0.0"}, {"'(0 0) '(1 1)", "1.5708"}};
    for (const auto& [axis, angle] : cases) {
        type("(command \"TEXT\" '(10 0) 1 0 \"text\")");
        type(std::string("(command \"MIRROR\" \"L\" \"\" ") + axis + " \"Y\")");
        EXPECT_EQ(eval("(list (group 50) (group 71))"), "(" + std::string(angle) + " 0)") << axis;
    }
    type("(setvar \"MIRRTEXT\" 1)");
    type("(command \"MIRROR\" \"L\" \"\" '(0 0) '(0 1) \"Y\")");
    EXPECT_EQ(eval("(caddr (group 210))"), "-1.0") << "seen from behind";
}

TEST_F(CommandsTest, BlocksAndTheirAttributes) {
    type(R"((progn (command "LINE" '(10 10) '(12 10) "")
        (entmake '((0 . "ATTDEF") (10 10 11 0) (40 . 1.0) (1 . "none") (3 . "Size?") (2 . "SIZE") (70 . 0)))
        (command "-BLOCK" "door" '(10 10) "ALL" "")))");
    EXPECT_EQ(eval("(count)"), "0");
    type("(command \"-INSERT\" \"DOOR\" '(5 5) 2 3 90 \"big\")");
    EXPECT_EQ(eval("(mapcar 'group '(2 10 41 42 50 66))"),
              "(\"door\" (5.0 5.0 0.0) 2.0 3.0 1.5708 1)");
    EXPECT_EQ(eval("((lambda (a) (mapcar '(lambda (c) (cdr (assoc c (entget a)))) '(1 2)))"
                   "  (entnext (entlast)))"),
              "(\"big\" \"SIZE\")");
    type("(command \"-INSERT\" \"door\" \"S\" 4 \"R\" 0 '(0 0) \"\")");
    EXPECT_EQ(eval("(list (group 41) (group 43) (cdr (assoc 1 (entget (entnext (entlast))))))"),
              "(4.0 4.0 \"none\")");
    type("(command \"EXPLODE\" \"L\")");
    EXPECT_EQ(eval("(mapcar '(lambda (kind) (sslength (ssget \"_X\" (list (cons 0 kind)))))"
                   " '(\"LINE\" \"ATTDEF\" \"INSERT\"))"),
              "(1 1 1)");
    type("(command \"-INSERT\" \"*door\" '(0 0) 1 0)");
    EXPECT_EQ(eval("(getvar \"CMDACTIVE\")"), "0");
    printed();
    type("(setvar \"CMDECHO\" 1)");
    type("(command \"-INSERT\" \"no such block\")");
    EXPECT_THAT(printed(), HasSubstr("\"no such block.dwg\" cannot be found."));
    type("(command \"-BLOCK\" \"door\" \"Y\" '(0 0) \"P\" \"\")");
    EXPECT_EQ(eval("(getvar \"CMDACTIVE\")"), "0");
}

TEST_F(CommandsTest, Layers) {
    type(
        R"((command "-LAYER" "N" "a1,a2,b" "C" "red" "a*" "C" "-5" "b" "F" "a1" "LO" "a2" "LW" 0.5 "a2"
             "P" "N" "b" "S" "a2" "OFF" "*" "Y" ""))");
    EXPECT_EQ(eval("(mapcar '(lambda (n) (list (cdr (assoc 62 (tblsearch \"LAYER\" n)))"
                   " (cdr (assoc 70 (tblsearch \"LAYER\" n))))) '(\"a1\" \"a2\" \"b\" \"0\"))"),
              "((-1 1) (-1 4) (-5 0) (-7 0))");
    EXPECT_EQ(eval("(getvar \"CLAYER\")"), "\"a2\"");
    type(
        "(command \"-LAYER\" \"F\" \"a2\" \"ON\" \"a2\" \"U\" \"*\" \"T\" \"a1\" \"R\" \"b\" \"c\" "
        "\"\")");
    EXPECT_EQ(
        eval("(list (cdr (assoc 62 (tblsearch \"LAYER\" \"a2\")))"
             " (cdr (assoc 70 (tblsearch \"LAYER\" \"a1\"))) (null (tblsearch \"LAYER\" \"b\")))"),
        "(1 0 T)")
        << "the current layer is not frozen";
    type("(command \"ERASE\" \"ALL\" \"\" \"PURGE\" \"LA\" \"*\" \"N\")");
    EXPECT_EQ(eval("(list (null (tblsearch \"LAYER\" \"c\")) (null (tblsearch \"LAYER\" \"a2\")))"),
              "(T nil)");
}

TEST_F(CommandsTest, ACommandWaitsForFurtherCalls) {
    type(
        "(progn (command \"_.PLINE\") (foreach p '((0 0) (1 0) (1 1)) (command p)) (command "
        "\"\"))");
    EXPECT_EQ(eval("(group 90)"), "3");
    EXPECT_EQ(eval("(progn (command \"_.LINE\" '(0 0)) (list (getvar \"CMDACTIVE\") (getvar "
                   "\"CMDNAMES\")))"),
              "(1 \"LINE\")");
    EXPECT_EQ(eval("(progn (command '(9 0)) (entmakex '((0 . \"POINT\") (10 0 0 0))) (command)"
                   " (list (getvar \"CMDACTIVE\") (getvar \"CMDNAMES\")))"),
              "(0 \"\")");
    EXPECT_EQ(eval("(count)"), "3") << "what had been drawn stays";
    type("(command \"_.CIRCLE\" '(0 0) nil)");
    EXPECT_EQ(eval("(getvar \"CMDACTIVE\")"), "0");
    type("(progn (command \"_.CIRCLE\" '(0 0)) (car 1))");
    EXPECT_EQ(eval("(getvar \"CMDACTIVE\")"), "0") << "an error ends it";
}

TEST_F(CommandsTest, WhoeverSitsThereGoesOn) {
    answer(L"0,0\n5,0\nENTER\n2,2\n7\n");
    type("(command \"_.LINE\" pause pause \"\")");
    EXPECT_EQ(eval("(kind)"), "\"LINE\"");
    type("(command \"_.CIRCLE\")");
    EXPECT_EQ(eval("(list (kind) (group 40))"), "(\"CIRCLE\" 7.0)");
    answer(L"ESC\n");
    EXPECT_EQ(eval("(command \"_.LINE\" pause)"), "; error: Function cancelled");
    EXPECT_EQ(eval("(getvar \"CMDACTIVE\")"), "0");
}

TEST_F(CommandsTest, WhatFails) {
    EXPECT_EQ(eval("(vl-cmdf \"_.CIRCLE\" '(0 0) 1)"), "T");
    EXPECT_EQ(eval("(vl-cmdf \"_.NOSUCH\")"), "nil");
    EXPECT_EQ(printed(), "Unknown command \"_.NOSUCH\".\n");
    EXPECT_EQ(eval("(command-s \"_.CIRCLE\" '(0 0) 2)"), "nil");
    EXPECT_EQ(eval("(group 40)"), "2.0");
    EXPECT_EQ(eval("(command-s \"_.CIRCLE\" '(0 0))"),
              "; error: command-s: the command needs more arguments");
    EXPECT_EQ(eval("(command-s \"_.CIRCLE\" pause)"), "; error: command-s takes no pause");
    EXPECT_EQ(eval("(command-s \"_.NOSUCH\")"), "; error: command-s: unknown command");
    EXPECT_EQ(eval("(command \"_.CIRCLE\" 'x)"), "; error: bad argument type: lentityp X");
    eval("(command)");
    printed();
    EXPECT_EQ(eval("(command \"_.OPEN\" \"/no/such/file.dxf\")"), "nil");
    EXPECT_THAT(errors(), HasSubstr("no such drawing: /no/such/file.dxf"));
    EXPECT_EQ(eval("(getvar \"CMDACTIVE\")"), "0");
}

TEST_F(CommandsTest, AtTheCommandLine) {
    const struct {
        const char *line, *shown, *expected;
    } cases[] = {
        {"_line 0,0 5,0\n\n", "(group 11)", "(5.0 0.0 0.0)"},
        {"L 0,0 6,0 \n", "(group 11)", "(6.0 0.0 0.0)"},
        {"'c 1,1 2.5", "(group 40)", "2.5"},
        {"LINE 0,0\n7,0\n\nCIRCLE 0,0 8\n(setq x 9)", "(list (group 40) x)", "(8.0 9)"},
        {"-layer m new\n\n", "(getvar \"CLAYER\")", "\"new\""},
        {"text 0,0 1 0 several words  \n\n", "(group 1)", "\"several words\""},
        {"circle (list 1 2) (strcat \")\" \"\") (/ 9.0 2)", "(list (group 10) (group 40))",
         "((1.0 2.0 0.0) 4.5)"},
        {"circle 0,0 !radius (setq radius nil) !radius 6", "(group 40)", "6.0"},
        {"setvar osmode 3", "(getvar \"OSMODE\")", "3"},
        {"osmode 7", "(getvar \"OSMODE\")", "7"},
        {"m l\n\n0,0 1,0", "(getvar \"CMDACTIVE\")", "0"},
    };
    for (const auto& c : cases) {
        EXPECT_FALSE(type(c.line).failed) << c.line;
        EXPECT_EQ(eval(c.shown), c.expected) << c.line;
    }
    type("(defun c:line () (setq own T))");
    type("line");
    EXPECT_EQ(eval("own"), "T");
    type("(setq own nil)");
    type("l");
    EXPECT_EQ(eval("own"), "T") << "a short name stands for what the long one does";
    type("(setq own nil)");
    type(".line 0,0 3,0\n\n");
    EXPECT_EQ(eval("(list own (group 11))"), "(nil (3.0 0.0 0.0))");
    printed();
    type("circle 0,0");
    EXPECT_THAT(printed(), EndsWith("*Cancel*\n"));
    EXPECT_TRUE(type("nosuch 1 2").failed);
    EXPECT_THAT(printed(), EndsWith("Unknown command \"NOSUCH\".\n"));
}

TEST_F(CommandsTest, WhatIsPrinted) {
    type("(setvar \"CMDECHO\" 1)");
    type("(command \"_.LINE\" \"0,0\" '(5 0) \"\")");
    EXPECT_EQ(printed(),
              "_.LINE\nSpecify first point: 0,0\nSpecify next point or [Undo]: \n"
              "Specify next point or [Undo]: \n");
    type("(command \"_.ERASE\" \"_L\" \"\")");
    EXPECT_EQ(printed(), "_.ERASE\nSelect objects: _L\n1 found\nSelect objects: \n");
    type("u");
    EXPECT_EQ(printed(), "ERASE\n");
    type("undo 99");
    EXPECT_THAT(printed(), EndsWith("Everything has been undone\n"));
    type("u");
    EXPECT_EQ(printed(), "Nothing to undo\n");
}

TEST_F(CommandsTest, CoordinateSystems) {
    type("(command \"UCS\" \"O\" '(10 0) \"UCS\" \"Z\" 90 \"UCS\" \"S\" \"mine\")");
    EXPECT_EQ(eval("(list (trans '(1 0) 1 0) (getvar \"UCSNAME\"))"), "((10.0 1.0 0.0) \"mine\")");
    type("(command \"LINE\" '(0 0) '(4 0) \"\")");
    EXPECT_EQ(eval("(list (group 10) (mapcar 'fix (group 11)))"), "((10.0 0.0 0.0) (10 4 0))");
    type("(command \"UCS\" \"X\" 90 \"CIRCLE\" '(0 0) 2)");
    EXPECT_EQ(eval("(mapcar '(lambda (x) (fix (+ x 0.5))) (group 210))"), "(1 0 0)");
    type("(command \"UCS\" \"P\")");
    EXPECT_EQ(eval("(equal (trans '(1 0) 1 0) '(10.0 1.0 0.0) 1e-9)"), "T");
    type("(command \"UCS\" \"W\")");
    EXPECT_EQ(eval("(trans '(1 0) 1 0)"), "(1.0 0.0 0.0)");
    type("(command \"UCS\" \"R\" \"mine\")");
    EXPECT_EQ(eval("(equal (trans '(1 0) 1 0) '(10.0 1.0 0.0) 1e-9)"), "T");
    EXPECT_EQ(eval("(sslength (ssget \"_W\" '(-1 -1) '(5 1) '((0 . \"LINE\"))))"), "1")
        << "corners are in user coordinates";
    type("(command \"UCS\" \"3\" '(0 0) '(0 1) '(-1 0) \"UCS\" \"D\" \"mine\" \"UCS\" \"\")");
    EXPECT_EQ(eval("(list (trans '(1 0) 1 0) (tblsearch \"UCS\" \"mine\"))"),
              "((1.0 0.0 0.0) nil)");
}

TEST_F(CommandsTest, Views) {
    type("(command \"LINE\" '(0 0) '(40 30) \"\" \"ZOOM\" \"E\")");
    EXPECT_EQ(eval("(list (getvar \"VIEWCTR\") (getvar \"VIEWSIZE\"))"), "((20.0 15.0 0.0) 30.0)");
    type("(command \"ZOOM\" \"2x\")");
    EXPECT_EQ(eval("(getvar \"VIEWSIZE\")"), "15.0");
    type("(command \"ZOOM\" \"C\" '(1 2) 6 \"ZOOM\" '(0 0) '(8 1))");
    EXPECT_EQ(eval("(list (getvar \"VIEWCTR\") (getvar \"VIEWSIZE\"))"), "((4.0 0.5 0.0) 6.0)");
    type("(command \"ZOOM\" \"P\" \"ZOOM\" \"P\" \"ZOOM\" \"P\")");
    EXPECT_EQ(eval("(getvar \"VIEWSIZE\")"), "30.0");
}

TEST_F(CommandsTest, Files) {
    const std::string file = toUtf8(path("made.dxf"));
    type("(command \"CIRCLE\" '(0 0) 1 \"SAVEAS\" \"DXF\" \"\" \"" + file + "\")");
    EXPECT_EQ(errors(), "");
    EXPECT_EQ(eval("(getvar \"DWGNAME\")"), "\"made.dxf\"");
    type("(command \"CIRCLE\" '(0 0) 2 \"QSAVE\")");
    const std::string other = toUtf8(path("other.dxf"));
    type("(command \"SAVEAS\" \"2013\" \"" + other + "\" \"SAVEAS\" \"2018\" \"" + file +
         "\" \"N\")");
    EXPECT_EQ(eval("(getvar \"DWGNAME\")"), "\"other.dxf\"") << "not to be replaced";
    type("(command \"OPEN\" \"" + file + "\")");
    EXPECT_EQ(eval("(list (getvar \"DWGNAME\") (sslength (ssget \"_X\")))"), "(\"made.dxf\" 2)");
    EXPECT_EQ(documents().all().size(), 2u);
}

}  // namespace
}  // namespace sg
