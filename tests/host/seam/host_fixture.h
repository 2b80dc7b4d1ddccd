#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/encoding.h"
#include "host/editor/command_line_output.h"
#include "host/editor/documents.h"
#include "host/lisp/interpreter.h"
#include "host/seam/command_line.h"
#include "host/seam/host.h"
#include "host/system/temporary_folder.h"
#include "platform/lisp/resbuf.h"

namespace sg::test {

// A test with a host of its own, a registry in an empty folder, and what is printed kept aside.
// Every test ends with as many result-buffer nodes as it began with.
class HostTest : public FolderTest {
  protected:
    HostTest() {
        options.registryFile = path("registry");
        options.locale = L"en-US";
        options.standardOutput = [this](std::string_view bytes) {
            printed_ += bytes;
            return true;
        };
        options.standardError = [this](std::string_view bytes) {
            errors_ += bytes;
            if (onError) onError(bytes);
            return true;
        };
    }
    ~HostTest() override {
        stop();
        EXPECT_EQ(acutLiveNodeCount(), nodes_);
    }

    // What a drawing file holds that has nothing in it.
    static constexpr const char* kEmptyDrawing =
        "  0\nSECTION\n  2\nENTITIES\n  0\nENDSEC\n  0\nEOF\n";

    // A host with `options`, with one new drawing and the modules loaded.
    void start() {
        make();
        host().start();
    }
    void make() { host_ = std::make_unique<Host>(options); }
    void stop() { host_.reset(); }

    Host& host() { return *host_; }
    DocumentManager& documents() { return host().documents(); }
    Document& active() { return *documents().active(); }
    Document& documentAt(size_t index) { return *documents().all().at(index); }

    // What a program answers in the current drawing, as prin1 writes it, or "; error: <message>".
    std::string eval(std::string_view program) {
        lisp::Interpreter& in = host().interpreter();
        std::wstring answer;
        lisp::Namespace* const before = in.enterNamespace(&documents().current()->variables());
        const lisp::Interpreter::Outcome outcome = in.runProtected([&] {
            answer = in.toQuotedText(in.loadText(fromUtf8(program), L"test"));
            return lisp::Value::nil();
        });
        in.enterNamespace(in.isAlive(before) ? before : nullptr);
        return outcome.failed ? "; error: " + toUtf8(outcome.error.message) : toUtf8(answer);
    }
    // Types a line at the active drawing's command line.
    CommandLine::Result type(std::string_view line,
                             CommandLine::Echo echo = CommandLine::Echo::None) {
        return host().commandLine().run(active(), fromUtf8(line), echo);
    }

    // What went to standard output, and to standard error, since the last call.
    std::string printed() {
        if (host_ != nullptr) host().output().flush();
        return std::exchange(printed_, {});
    }
    std::string errors() { return std::exchange(errors_, {}); }

    HostOptions options;
    std::function<void(std::string_view)> onError;

  private:
    std::string printed_, errors_;
    const size_t nodes_ = acutLiveNodeCount();
    std::unique_ptr<Host> host_;
};

}  // namespace sg::test
