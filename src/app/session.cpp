#include "app/session.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "app/exit_codes.h"
#include "app/process.h"
#include "app/progress_bar.h"
#include "base/encoding.h"
#include "base/text.h"
#include "host/editor/command_line_output.h"
#include "host/editor/documents.h"
#include "host/editor/script_input.h"
#include "host/editor/status_bar.h"
#include "host/editor/terminal_input.h"
#include "host/lisp/interpreter.h"
#include "host/seam/file_error.h"
#include "host/system/files.h"
#include "host/system/paths.h"
#include "host/system/timers.h"

namespace sg::app {
namespace {

constexpr const wchar_t* kModule = L"SwiftGate2017.arx";

HostOptions hostOptions(const Arguments& arguments) {
    HostOptions options;
    options.supportPath = arguments.folders;
    options.supportPath.push_back(joinPath(shareFolder(), L"support"));
    options.helpFolder = shareFolder();
    options.moduleFolder = moduleFolder();
    if (!arguments.noModule) options.modules = {kModule};
    options.failEngine = arguments.failEngine;
    options.locale = arguments.locale;
    options.memoryLimit = arguments.memoryLimit;
    options.drawing = arguments.drawing;
    options.arguments = arguments.programArguments;
    return options;
}

// The symbols of the active document that have a value and begin with the word, in the word's case.
std::vector<std::wstring> symbolsThatBegin(Host& host, std::wstring_view word) {
    std::vector<std::wstring> found;
    Document* const document = host.documents().active();
    if (document == nullptr) return found;
    const lisp::Interpreter& interpreter = host.interpreter();
    const std::wstring start = upperCased(word);
    const bool lower = start != word;
    for (uint32_t slot = 0; slot < interpreter.symbols().size(); ++slot) {
        const std::wstring& name = interpreter.symbols().name(slot);
        if (!name.starts_with(start)) continue;
        if (interpreter.valueIn(document->variables(), slot).isNil()) continue;
        found.push_back(lower ? lowerCased(name) : name);
    }
    std::sort(found.begin(), found.end());
    return found;
}

// What modules print while they load ends without a line end; a person at a terminal sees the next
// text on a line of its own.
void finishErrorLine(Output& output) {
    if (isatty(STDERR_FILENO) != 1 || output.errorAtLineStart()) return;
    const Output::LoadingScope toStandardError(output);
    output.print(L"\n");
}

// The progress meter of programs as a bar on the terminal. Where other text stands at the cursor
// there is none, since it would be overwritten.
class TerminalMeter final : public ProgressDisplay {
  public:
    explicit TerminalMeter(const Output& output) : output_(output) {}
    void begin(const std::wstring& label) override { bar_.emplace(label); }
    void show(uint64_t done, uint64_t total) override {
        if (bar_ && output_.errorAtLineStart()) bar_->show(done, total);
    }
    void hide() override {
        if (bar_) bar_->erase();
    }

  private:
    const Output& output_;
    std::optional<ProgressBar> bar_;
};

}  // namespace

Session::Session(const Arguments& arguments, bool interactive)
    : host_(hostOptions(arguments)),
      signals_(host_.interpreter()),
      terminal_(interactive && isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1) {
    setInput(arguments);
    host_.statusBar().setDisplay(std::make_unique<TerminalMeter>(host_.output()));
}

void Session::start() {
    host_.start();
    finishErrorLine(host_.output());
}

void Session::setInput(const Arguments& arguments) {
    std::vector<std::shared_ptr<InputSource>> sources;
    if (!arguments.script.empty()) {
        const auto bytes = readFile(arguments.script);
        if (!bytes)
            throw FileError(L"the input script cannot be read: " + arguments.script + L": " +
                            fromUtf8(std::strerror(errno)));
        std::wstring error;
        auto script = ScriptInput::parse(
            decodeTextFile(*bytes), arguments.script,
            [this](const std::wstring& text) { host_.output().reportError(text); }, error);
        if (script == nullptr) throw FileError(error);
        sources.push_back(std::move(script));
    }
    sources.push_back(std::make_shared<DisplayInput>());
    if (terminal_) {
        sources.push_back(std::make_shared<TerminalInput>(
            [this](const std::wstring& prompt) -> Answer<std::wstring> {
                if (!host_.output().atLineStart()) host_.output().print(L"\n");
                editor().completing = false;
                const LineEditor::Line line = editor().read(prompt);
                editor().completing = true;
                if (line.ending == LineEditor::Ending::Closed) return {};
                if (line.ending == LineEditor::Ending::Entered) {
                    return Answer<std::wstring>::of(line.text);
                }
                host_.interpreter().clearInterrupt();
                return Answer<std::wstring>::cancel();
            },
            [this](const std::wstring& text) { host_.output().print(text); }));
    }
    host_.setInput(sources);
}

Document& Session::document() {
    Document* const document = host_.documents().active();
    if (document == nullptr) throw FileError(L"no drawing is open");
    return *document;
}

LineEditor& Session::editor() {
    host_.statusBar().hide();  // the line is read where the bar may show
    if (editor_ == nullptr) {
        const std::wstring folder = stateFolder();
        editor_ = std::make_unique<LineEditor>(
            host_.interpreter(), folder.empty() ? folder : folder + L"/history",
            [this](std::wstring_view word) { return symbolsThatBegin(host_, word); },
            [this] {
                host_.timers().runDue();
                return host_.timers().untilDue();
            });
    }
    return *editor_;
}

int Session::conclude(const std::function<int()>& body) {
    int code = kFileError;
    try {
        code = body();
    } catch (const FileError& error) {
        complain(error.text());
    }
    Output& output = host_.output();
    if (isatty(STDOUT_FILENO) == 1 && !output.atLineStart()) output.print(L"\n");
    finishErrorLine(output);
    if (output.flush()) return code;
    complain(L"standard output cannot be written");
    return kFileError;
}

void Session::complain(const std::wstring& text) {
    host_.output().reportError(L"swiftgate: " + text);
}

}  // namespace sg::app
