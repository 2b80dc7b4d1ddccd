#include "host/editor/command_line_output.h"

#include <gtest/gtest.h>

#include "host/system/temporary_folder.h"

namespace sg {
namespace {

// Two sinks whose bytes come together in the order of writing: "1" and "2" mark the stream.
struct Recorder {
    std::string out, err, order;
    bool failing = false;

    Output::Sink output() {
        return [this](std::string_view bytes) {
            if (failing) return false;
            out += bytes;
            order += '1';
            return true;
        };
    }
    Output::Sink error() {
        return [this](std::string_view bytes) {
            err += bytes;
            order += '2';
            return true;
        };
    }
};

TEST(OutputTest, PrintsUtf8WhenFlushed) {
    Recorder recorder;
    Output output(recorder.output(), recorder.error());
    output.print(L"caf\u00e9");
    output.print(L"");
    EXPECT_EQ(recorder.out, "");
    EXPECT_TRUE(output.flush());
    output.flush();
    EXPECT_EQ(recorder.out, "caf\xC3\xA9");
    EXPECT_EQ(recorder.order, "1") << "nothing is written twice, nor empty";
    output.print(std::wstring(100000, L'x'));
    EXPECT_EQ(recorder.out.size(), 100005u) << "a full buffer writes itself";
}

TEST(OutputTest, EndFlushesAndImmediateHoldsNothingBack) {
    Recorder recorder;
    { Output(recorder.output(), recorder.error()).print(L"a"); }
    EXPECT_EQ(recorder.out, "a");
    Output output(recorder.output(), recorder.error(), false, true);
    output.print(L"b");
    EXPECT_EQ(recorder.out, "ab");
}

TEST(OutputTest, LoadingScopesCount) {
    Recorder recorder;
    Output output(recorder.output(), recorder.error());
    output.print(L"1\n");
    {
        const Output::LoadingScope outer(output);
        {
            const Output::LoadingScope inner(output);
            output.print(L"2\n");
        }
        output.print(L"3\n");
    }
    output.print(L"4\n");
    output.flush();
    EXPECT_EQ(recorder.out, "1\n4\n");
    EXPECT_EQ(recorder.err, "2\n3\n");
    EXPECT_EQ(recorder.order, "1221") << "what was printed before is written before";
}

TEST(OutputTest, ErrorsStandOnLinesOfTheirOwn) {
    Recorder recorder;
    Output output(recorder.output(), recorder.error());
    output.reportError(L"first");
    {
        const Output::LoadingScope loading(output);
        output.print(L"half a line");
    }
    output.print(L"prompt");
    output.reportError(L"second\n");
    output.reportError(L"");
    EXPECT_EQ(recorder.err, "first\nhalf a line\nsecond\n\n");
    EXPECT_EQ(recorder.out, "prompt");
    EXPECT_FALSE(output.atLineStart());
}

TEST(OutputTest, OneTerminalHasOneCursor) {
    Recorder recorder;
    Output output(recorder.output(), recorder.error(), true);
    output.print(L"prompt");
    output.reportError(L"error");
    EXPECT_EQ(recorder.err, "\nerror\n");
    EXPECT_TRUE(output.atLineStart());
    const Output::LoadingScope loading(output);
    output.print(L"x");
    EXPECT_FALSE(output.atLineStart());
}

TEST(OutputTest, CapturesNestAndLeaveErrorsAlone) {
    Recorder recorder;
    Output output(recorder.output(), recorder.error());
    {
        const Output::Capture outer(output);
        output.print(L"a");
        {
            const Output::Capture inner(output);
            const Output::LoadingScope loading(output);
            output.print(L"b");
            output.reportError(L"e");
            EXPECT_EQ(inner.text(), L"b");
        }
        output.print(L"c");
        EXPECT_EQ(outer.text(), L"ac");
    }
    output.print(L"d");
    output.flush();
    EXPECT_EQ(recorder.out, "d");
    EXPECT_EQ(recorder.err, "e\n");
}

TEST(OutputTest, AFailedSinkIsNotedAndLeftAlone) {
    Recorder recorder;
    Output output(recorder.output(), recorder.error());
    recorder.failing = true;
    output.print(L"lost");
    EXPECT_FALSE(output.flush());
    recorder.failing = false;
    output.print(L"late");
    EXPECT_FALSE(output.flush());
    EXPECT_EQ(recorder.out, "");
}

TEST(OutputTest, ATitleGoesToTerminalsWithWindows) {
    const struct {
        const char* terminal;
        bool immediate;
        const char* written;
    } cases[] = {
        {"xterm-256color", true, "\033[22;2t\033]2;Job 12\a\033]2; ]2;x  \u00e9\a\033[23;2t"},
        {"xterm", false, ""},
        {"linux", true, ""},
        {"dumb", true, ""},
        {"", true, ""},
    };
    for (const auto& [terminal, immediate, written] : cases) {
        const WithEnvironment set("TERM", terminal);
        Recorder recorder;
        {
            Output output(recorder.output(), recorder.error(), false, immediate);
            output.setTitle(L"Job 12");
            output.setTitle(L"\033]2;x\a\u009c\u00e9");
            EXPECT_TRUE(output.atLineStart());
        }
        EXPECT_EQ(recorder.out, written) << terminal;
    }
}

TEST(OutputTest, WhatIsInTheWayIsToldBeforeBytesGoOut) {
    Recorder recorder;
    Output output(recorder.output(), recorder.error());
    output.setBeforeWrite([&] { recorder.order += '!'; });
    output.print(L"a");
    output.print(L"b");
    EXPECT_EQ(recorder.order, "");
    output.reportError(L"c");
    output.flush();
    EXPECT_EQ(recorder.order, "!1!2");
}

}  // namespace
}  // namespace sg
