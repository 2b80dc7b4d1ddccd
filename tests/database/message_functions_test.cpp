#include <gmock/gmock.h>

#include <memory>

#include "host/editor/command_line_output.h"
#include "host/system/random.h"
#include "module/module_fixture.h"

namespace sg::test {
namespace {

class MessageFunctionsTest : public ModuleTest {
  protected:
    MessageFunctionsTest() {
        start();
        printed();
    }
};

TEST_F(MessageFunctionsTest, KeywordsMakeTheBox) {
    const struct {
        const char* keywords;
        unsigned flags;
    } cases[] = {
        {"", 0},
        {"nil", 0},
        {"'(\"ABORT\")", 2},
        {"'(\"OK\")", 0},
        {"'(\"OKCANCEL\")", 1},
        {"'(\"RETRYCANCEL\")", 5},
        {"'(\"YESNO\")", 4},
        {"'(\"YESNOCANCEL\")", 3},
        {"'(\"!\")", 0x30},
        {"'(\"i\")", 0x40},
        {"'(\"?\")", 0x20},
        {"'(\"STOP\")", 0x10},
        {"'(\"YESNOCANCEL\" \"DEF1\")", 3},
        {"'(\"YESNOCANCEL\" \"DEF2\")", 0x103},
        {"'(\"YESNOCANCEL\" \"DEF3\" \"?\")", 0x223},
        // Buttons replace what stands ahead of them, modifiers add up.
        {"'(\"STOP\" \"YESNO\")", 4},
        {"'(\"YESNO\" \"STOP\")", 0x14},
        {"'(\"YESNO\" \"OKCANCEL\" \"!\")", 0x31},
        {"'(\"?\" \"STOP\")", 0x30},
        // Unknown ones are nothing; what is no string ends the reading.
        {"'(\"yesno\" \"I\" \"x\")", 0},
        {"'(\"YESNO\" 1 \"STOP\")", 4},
        {"\"YESNO\" \"STOP\"", 0x14},
        {"'((\"YESNO\") \"STOP\")", 0},
    };
    host().setInput({std::make_shared<Buttons>(log, std::vector<int>(std::size(cases), IDOK))});
    for (const auto& c : cases) {
        log.clear();
        EXPECT_EQ(eval(std::string("(sg_message_box \"a\" \"b\" ") + c.keywords + ")"), "\"OK\"");
        EXPECT_EQ(log, Log{"box " + std::to_string(c.flags) + " b: a"}) << c.keywords;
    }
}

TEST_F(MessageFunctionsTest, TheButtonIsTheAnswer) {
    host().setInput(
        {std::make_shared<Buttons>(log, std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 0})});
    for (const char* answer : {"\"OK\"", "\"CANCEL\"", "\"ABORT\"", "\"RETRY\"", "\"IGNORE\"",
                               "\"YES\"", "\"NO\"", "nil", "nil", "nil", "nil"}) {
        EXPECT_EQ(eval("(sg_message_box \"a\" \"b\")"), answer);
    }
}

TEST_F(MessageFunctionsTest, ABoxNeedsItsTexts) {
    for (const char* call : {"(sg_message_box)", "(sg_message_box \"a\")",
                             "(sg_message_box \"a\" nil)", "(sg_message_box 1 \"b\")"}) {
        EXPECT_EQ(eval(call), "; error: ADS request error") << call;
        EXPECT_EQ(printed(), "\nWrong type of arguments passed.\n") << call;
    }
}

TEST_F(MessageFunctionsTest, BeepsAnswerTAndAreSilentInAPipe) {
    for (const char* call :
         {"(sg_beep)", "(sg_message_beep)", "(sg_message_beep \"?\")", "(sg_message_beep \"*\")",
          "(sg_message_beep \"HAND\")", "(sg_message_beep \"!\")", "(sg_message_beep \"OK\")",
          "(sg_message_beep \"hand\")", "(sg_message_beep 1)", "(sg_message_beep nil)"}) {
        EXPECT_EQ(eval(call), "T") << call;
    }
    EXPECT_EQ(printed(), "");
}

TEST_F(MessageFunctionsTest, RandomNumbersAreTheHosts) {
    host().random().seed(1);
    RandomGenerator same;
    same.seed(1);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(eval("(sg_random)"), std::to_string(same.next()));
}

TEST(Bell, RingsOnATerminalOnly) {
    for (const bool terminal : {false, true}) {
        std::string shown;
        const auto sink = [&](std::string_view bytes) {
            shown += bytes;
            return true;
        };
        Output output(sink, sink, true, terminal);
        output.print(L"a\n");
        output.bell();
        EXPECT_TRUE(output.atLineStart()) << "the cursor stays where it is";
        output.flush();
        EXPECT_EQ(shown, terminal ? "a\n\a" : "a\n");
    }
}

}  // namespace
}  // namespace sg::test
