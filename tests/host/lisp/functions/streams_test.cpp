#include <gmock/gmock.h>

#include "host/lisp/functions/program_test.h"

namespace sg::lisp {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class StreamsTest : public ProgramTest {
  protected:
    // Every line of the file, each with a "|" behind it.
    std::wstring lines(const std::wstring& name, const std::wstring& more = L"") {
        run(L"(setq f (open \"" + name + L"\" \"r\"" + more + L"))");
        run(L"(while (setq line (read-line f)) (princ line) (princ \"|\"))");
        EXPECT_EQ(run(L"(close f)"), L"nil");
        return printed();
    }
    // Every character code of the file, each with a blank behind it.
    std::wstring characters(const std::wstring& name) {
        run(L"(setq f (open \"" + name + L"\" \"r\"))");
        run(L"(while (setq c (read-char f)) (princ c) (princ \" \"))");
        EXPECT_EQ(run(L"(close f)"), L"nil");
        return printed();
    }
};

TEST_F(StreamsTest, PrintsToTheUser) {
    const struct {
        const wchar_t* program;
        const wchar_t* printed;
        const wchar_t* value;
    } cases[] = {
        {L"(princ \"a\\\"b\\n\")", L"a\"b\n", L"\"a\\\"b\\n\""},
        {L"(prin1 \"a\\\"b\\n\")", L"\"a\\\"b\\n\"", L"\"a\\\"b\\n\""},
        {L"(print '(1 . \"x\"))", L"\n(1 . \"x\") ", L"(1 . \"x\")"},
        {L"(princ '(\"x\" nil 1.5))", L"(x nil 1.5)", L"(\"x\" nil 1.5)"},
        {L"(princ nil nil)", L"nil", L"nil"},
        {L"(princ)", L"", L""},
        {L"(prin1)", L"", L""},
        {L"(print)", L"", L""},
        {L"(terpri)", L"\n", L"nil"},
        {L"(prompt \"go\")", L"go", L"nil"},
        {L"(prompt 1)", L"", L"; error: bad argument type: stringp 1"},
        {L"(write-line \"one\")", L"one\n", L"\"one\""},
        {L"(write-line \"one\" nil)", L"one\n", L"\"one\""},
        {L"(write-char 65)", L"A", L"65"},
        {L"(write-char 0)", L"", L"; error: bad argument value: character code: 0"},
        {L"(write-char 1114112)", L"", L"; error: bad argument value: character code: 1114112"},
        {L"(vl-princ-to-string '(\"a\" B))", L"", L"\"(a B)\""},
        {L"(vl-prin1-to-string '(\"a\" B))", L"", L"\"(\\\"a\\\" B)\""},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(run(each.program), each.value) << toUtf8(each.program);
        EXPECT_EQ(printed(), each.printed) << toUtf8(each.program);
    }
}

TEST_F(StreamsTest, ReadsWhatTheUserTypes) {
    typed = {L"ab", L"", L"cd", L"line"};
    EXPECT_EQ(run(L"(read-char)"), L"97");
    EXPECT_EQ(run(L"(read-char)"), L"98");
    EXPECT_EQ(run(L"(read-char)"), L"10");
    EXPECT_EQ(run(L"(read-line)"), L"\"\"");
    EXPECT_EQ(run(L"(read-char)"), L"99");
    EXPECT_EQ(run(L"(read-line)"), L"\"d\"") << "the rest of a line that was begun";
    EXPECT_EQ(run(L"(read-line nil)"), L"\"line\"");
    EXPECT_EQ(run(L"(read-line)"), L"nil") << "nobody is left to type";
    EXPECT_EQ(run(L"(read-char)"), L"nil");
}

TEST_F(StreamsTest, TellsEncodingsAndLineEnds) {
    const struct {
        const char* what;
        std::string content;
        const wchar_t* lines;
        const wchar_t* characters;
    } cases[] = {
        {"empty", "", L"", L""},
        {"an empty line", "\n", L"|", L"10 "},
        {"no end", "a\nb", L"a|b|", L"97 10 98 "},
        {"CRLF", "a\r\n\r\nb\r\n", L"a||b|", L"97 10 10 98 10 "},
        {"a carriage return alone", "a\rb\n", L"a\rb|", L"97 13 98 10 "},
        {"UTF-8", "\xC3\xA4\n", L"\u00E4|", L"228 10 "},
        {"UTF-8 with a mark", "\xEF\xBB\xBF\xC3\xA4\n", L"\u00E4|", L"228 10 "},
        {"code page 1252", "\xE4\x80\nb", L"\u00E4\u20AC|b|", L"228 8364 10 98 "},
        {"1252, told by the last line", "\xC3\xA4\n\xE4", L"\u00C3\u00A4|\u00E4|",
         L"195 164 10 228 "},
        {"UTF-16, little", std::string("\xFF\xFE\xE4\0\r\0\n\0\x0A\x0A", 10), L"\u00E4|\u0A0A|",
         L"228 10 2570 "},
        {"UTF-16, big, half a character at the end", std::string("\xFE\xFF\0\xE4\0\n\0", 7),
         L"\u00E4|", L"228 10 "},
    };
    for (const auto& each : cases) {
        write("f.txt", each.content);
        EXPECT_EQ(lines(L"f.txt"), each.lines) << each.what;
        EXPECT_EQ(characters(L"f.txt"), each.characters) << each.what;
    }
    write("f.txt", "\xE4\n");
    EXPECT_EQ(lines(L"f.txt", L" \"utf8\""), L"\uFFFD|") << "as the program says";
}

TEST_F(StreamsTest, LongFilesAreReadInParts) {
    // Two-byte characters lie across every boundary of a power of two.
    std::string content = "x";
    while (content.size() < (5u << 20))
        content += "\xC3\xA4";
    write("long.txt", content + "\nlast\xE4line\n");
    EXPECT_EQ(run(L"(progn (setq f (open \"long.txt\" \"r\")) (setq s (read-line f)) 1)"), L"1");
    const Value text = in.valueOf(in.intern(L"S"));
    ASSERT_TRUE(text.isString());
    EXPECT_EQ(text.asString()->view().size(), content.size() / 2 + 1);
    EXPECT_EQ(text.asString()->view().find(L'\uFFFD'), std::wstring_view::npos);
    EXPECT_EQ(run(L"(read-line f)"), L"\"last\u00E4line\"") << "1252, far behind the start";

    in.heap().setLimit(size_t{16} << 20);
    run(L"(setq s nil f (open \"long.txt\" \"r\"))");
    EXPECT_THAT(toUtf8(run(L"(read-line f)")), HasSubstr("out of memory"));
}

TEST_F(StreamsTest, CharactersAndLinesMix) {
    write("f.txt", "abc\nd\nef");
    run(L"(setq f (open \"f.txt\" \"r\"))");
    EXPECT_EQ(run(L"(read-char f)"), L"97");
    EXPECT_EQ(run(L"(read-line f)"), L"\"bc\"");
    EXPECT_EQ(run(L"(read-char f)"), L"100");
    EXPECT_EQ(run(L"(read-line f)"), L"\"\"");
    EXPECT_EQ(run(L"(read-line f)"), L"\"ef\"");
    EXPECT_EQ(run(L"(read-line f)"), L"nil");
    EXPECT_EQ(run(L"(read-char f)"), L"nil");
}

TEST_F(StreamsTest, WritesAndAppends) {
    run(L"(setq f (open \"f.txt\" \"w\"))");
    EXPECT_EQ(run(L"(write-line \"\u00E4\" f)"), L"\"\u00E4\"");
    EXPECT_EQ(run(L"(write-char 8364 f)"), L"8364");
    run(L"(progn (princ \"p\" f) (prin1 \"q\" f) (print 1 f) (close f))");
    EXPECT_EQ(printed(), L"");
    EXPECT_EQ(read("f.txt"), "\xC3\xA4\n\xE2\x82\xACp\"q\"\n1 ");

    const struct {
        const char* what;
        std::string before;
        const wchar_t* mode;
        std::string after;
    } cases[] = {
        {"writing replaces", "old", L"\"W\"", "\xC3\xA4"},
        {"a mark", "old", L"\"w\" \"utf8-bom\"", "\xEF\xBB\xBF\xC3\xA4"},
        {"appending", "old", L"\"a\"", "old\xC3\xA4"},
        {"no mark in the middle", "old", L"\"a\" \"utf8-bom\"", "old\xC3\xA4"},
        {"a mark in an empty file", "", L"\"a\" \"utf8-bom\"", "\xEF\xBB\xBF\xC3\xA4"},
        {"1252 goes on", "\xF6", L"\"a\"", "\xF6\xE4"},
        {"unless told", "\xF6", L"\"a\" \"UTF8\"", "\xF6\xC3\xA4"},
        {"UTF-16 goes on", std::string("\xFE\xFF\0a", 4), L"\"a\"",
         std::string("\xFE\xFF\0a\0\xE4", 6)},
    };
    for (const auto& each : cases) {
        write("f.txt", each.before);
        run(L"(setq f (open \"f.txt\" " + std::wstring(each.mode) + L"))");
        run(L"(progn (princ \"\u00E4\" f) (close f))");
        EXPECT_EQ(read("f.txt"), each.after) << each.what;
    }
}

TEST_F(StreamsTest, NamesAreFoundAsOnTheSystemOfOrigin) {
    write("Folder/File.TXT", "here\n");
    EXPECT_EQ(lines(L"folder\\\\file.txt"), L"here|");
    run(L"(progn (setq f (open \"FOLDER/new.txt\" \"w\")) (princ 1 f) (close f))");
    EXPECT_EQ(read("Folder/new.txt"), "1");
    run(L"(progn (setq f (open \"FOLDER/NEW.TXT\" \"w\")) (princ 2 f) (close f))");
    EXPECT_EQ(read("Folder/new.txt"), "2");
    for (const wchar_t* program :
         {L"(open \"none.txt\" \"r\")", L"(open \"none/x\" \"w\")", L"(open \"\" \"w\")",
          L"(open \"Folder\" \"r\")", L"(open \"Folder\" \"w\")", L"(open \"/dev/zero\" \"r\")"}) {
        EXPECT_EQ(run(program), L"nil") << toUtf8(program);
    }
}

TEST_F(StreamsTest, HandlesAreIndependent) {
    write("f.txt", "1\n2\n");
    run(L"(setq a (open \"f.txt\" \"r\") b (open \"f.txt\" \"r\"))");
    EXPECT_EQ(run(L"(read-line a)"), L"\"1\"");
    EXPECT_EQ(run(L"(read-line a)"), L"\"2\"");
    EXPECT_EQ(run(L"(read-line b)"), L"\"1\"");
    EXPECT_EQ(run(L"(close a)"), L"nil");
    EXPECT_EQ(run(L"(read-line b)"), L"\"2\"");

    run(L"(progn (setq w (open \"f.txt\" \"a\")) (princ \"3\\n\" w) (setq r (open \"f.txt\" "
        L"\"r\")))");
    EXPECT_EQ(run(L"(read-line r)"), L"\"1\"") << "a file that is being written can be read";
    run(L"(close w)");
    EXPECT_EQ(lines(L"f.txt"), L"1|2|3|");
}

TEST_F(StreamsTest, MisuseNamesTheFile) {
    write("f.txt", "x");
    const std::wstring file = L"\"" + path("f.txt") + L"\"";
    run(L"(setq r (open \"f.txt\" \"r\") w (open \"g.txt\" \"w\") closed (open \"f.txt\" \"r\"))");
    run(L"(close closed)");
    const struct {
        const wchar_t* program;
        std::wstring message;
    } cases[] = {
        {L"(open \"f.txt\" \"x\")", L"bad argument value: open mode: \"x\""},
        {L"(open \"f.txt\" \"r\" \"utf7\")", L"bad argument value: file encoding: \"utf7\""},
        {L"(open \"f\\000g\" \"w\")", L"bad argument value: file name: \"f\\000g\""},
        {L"(open 1 \"r\")", L"bad argument type: stringp 1"},
        {L"(close nil)", L"bad argument type: streamp nil"},
        {L"(close \"f.txt\")", L"bad argument type: streamp \"f.txt\""},
        {L"(close closed)", L"file is not open: " + file},
        {L"(read-line closed)", L"file is not open: " + file},
        {L"(princ 1 closed)", L"file is not open: " + file},
        {L"(write-line \"x\" r)", L"file is not open for writing: " + file},
        {L"(read-char w)", L"file is not open for reading: \"" + path("g.txt") + L"\""},
        {L"(read-line 1)", L"bad argument type: streamp 1"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(run(each.program), L"; error: " + each.message);
    }
    EXPECT_EQ(run(L"r"), L"#<file " + file + L">");
}

TEST_F(StreamsTest, AFullDiskIsReportedOnce) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "this system has no /dev/full";
    const std::string message = "; error: cannot write to file: \"/dev/full\": ";
    run(L"(setq f (open \"/dev/full\" \"w\"))");
    EXPECT_EQ(run(L"(write-line \"short\" f)"), L"\"short\"") << "it waits in a buffer";
    EXPECT_THAT(toUtf8(run(L"(close f)")), StartsWith(message));

    run(L"(setq f (open \"/dev/full\" \"w\"))");
    EXPECT_THAT(toUtf8(run(L"(repeat 100000 (write-line \"filling the buffer\" f))")),
                StartsWith(message));
    EXPECT_EQ(run(L"(close f)"), L"nil");
}

TEST_F(StreamsTest, FilesThatNobodyHoldsAreClosed) {
    run(L"(repeat 3000 (progn (setq f (open \"f.txt\" \"w\")) (princ \"x\" f) (setq f nil) (gc)))");
    EXPECT_EQ(run(L"(progn (setq f (open \"f.txt\" \"r\")) (read-line f))"), L"\"x\"");
}

}  // namespace
}  // namespace sg::lisp
