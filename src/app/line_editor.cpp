#include "app/line_editor.h"

#include <histedit.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cwchar>
#include <utility>

#include "app/columns.h"
#include "app/process.h"
#include "base/encoding.h"
#include "base/text.h"
#include "host/lisp/interpreter.h"

namespace sg::app {
namespace {

constexpr int kRememberedLines = 1000;
constexpr size_t kMostShownCompletions = 200;

bool endsWord(wchar_t c) {
    return isBlank(c) || c == L'(' || c == L')' || c == L'\'' || c == L'"' || c == L';' ||
           c == L'!';
}

std::wstring commonStart(const std::vector<std::wstring>& words) {
    std::wstring common = words.front();
    for (const std::wstring& word : words) {
        const auto end = std::mismatch(common.begin(), common.end(), word.begin(), word.end());
        common.erase(end.first, common.end());
    }
    return common;
}

}  // namespace

struct LineEditor::Library {
    EditLine* editor = nullptr;
    HistoryW* history = nullptr;
    std::wstring prompt;
    bool atFirst = false;  // no character of the line has been read yet

    static LineEditor& of(EditLine* editor) {
        LineEditor* self = nullptr;
        el_wget(editor, EL_CLIENTDATA, &self);
        return *self;
    }

    static wchar_t* promptOf(EditLine* editor) { return of(editor).library_->prompt.data(); }

    // The library's own reading would go on after a signal.
    static int readCharacter(EditLine* editor, wchar_t* character) {
        LineEditor& self = of(editor);
        std::mbstate_t state = {};
        for (;;) {
            char byte = 0;
            const bool typedAhead = std::exchange(self.library_->atFirst, false) && hasInput();
            if (!waitForInput(self.interpreter_, self.work_)) return -1;
            const ssize_t count = ::read(STDIN_FILENO, &byte, 1);
            if (count <= 0) return static_cast<int>(count);
            // A Ctrl-D that was typed before this line editor took the terminal over has become a
            // zero.
            if (typedAhead && byte == 0) return 0;
            const size_t used = std::mbrtowc(character, &byte, 1, &state);
            if (used <= 1) return 1;
            // A byte that fits into no character is left out.
            if (used == static_cast<size_t>(-1)) state = {};
        }
    }

    static unsigned char completeWord(EditLine* editor, int) {
        LineEditor& self = of(editor);
        const LineInfoW* const line = el_wline(editor);
        const wchar_t* start = line->cursor;
        while (start != line->buffer && !endsWord(start[-1]))
            --start;
        const std::wstring_view word(start, static_cast<size_t>(line->cursor - start));
        if (!self.completing || word.empty()) return CC_ERROR;
        const std::vector<std::wstring> words = self.complete_(word);
        if (words.empty()) return CC_ERROR;
        const std::wstring common = commonStart(words);
        if (common.size() > word.size()) {
            return el_winsertstr(editor, common.c_str() + word.size()) == 0 ? CC_REFRESH : CC_ERROR;
        }
        if (words.size() == 1) return CC_NORM;
        const bool all = words.size() <= kMostShownCompletions;
        printOut(L"\n" + (all ? inColumns(words, terminalColumns())
                              : std::to_wstring(words.size()) + L" possibilities\n"));
        return CC_REDISPLAY;
    }
};

LineEditor::LineEditor(const lisp::Interpreter& interpreter, std::wstring historyFile,
                       Complete complete, WaitingWork work)
    : interpreter_(interpreter),
      historyFile_(std::move(historyFile)),
      complete_(std::move(complete)),
      work_(std::move(work)),
      library_(std::make_unique<Library>()) {
    // The library converts characters by the process's locale; nothing else here depends on it.
    if (std::setlocale(LC_CTYPE, "C.UTF-8") == nullptr) std::setlocale(LC_CTYPE, "");
    HistEventW event;
    library_->history = history_winit();
    history_w(library_->history, &event, H_SETSIZE, kRememberedLines);
    history_w(library_->history, &event, H_SETUNIQUE, 1);
    if (!historyFile_.empty()) {
        history_w(library_->history, &event, H_LOAD, toUtf8(historyFile_).c_str());
    }
    EditLine* const editor = el_init("swiftgate", stdin, stdout, stderr);
    library_->editor = editor;
    el_wset(editor, EL_CLIENTDATA, this);
    el_wset(editor, EL_SIGNAL, 0);
    el_wset(editor, EL_PROMPT, Library::promptOf);
    el_wset(editor, EL_EDITOR, L"emacs");
    el_wset(editor, EL_HIST, history_w, library_->history);
    el_wset(editor, EL_GETCFN, Library::readCharacter);
    el_wset(editor, EL_ADDFN, L"complete-word", L"Complete the word before the cursor",
            Library::completeWord);
    el_wset(editor, EL_BIND, L"^I", L"complete-word", nullptr);
    el_wset(editor, EL_BIND, L"^R", L"em-inc-search-prev", nullptr);
    el_source(editor, nullptr);
}

LineEditor::~LineEditor() {
    HistEventW event;
    if (!historyFile_.empty()) {
        history_w(library_->history, &event, H_SAVE, toUtf8(historyFile_).c_str());
    }
    el_end(library_->editor);
    history_wend(library_->history);
}

LineEditor::Line LineEditor::read(const std::wstring& prompt) {
    library_->prompt = prompt;
    library_->atFirst = true;
    el_resize(library_->editor);
    int count = 0;
    const wchar_t* const typed = el_wgets(library_->editor, &count);
    if (interpreter_.interruptPending()) {
        printOut(L"^C\n");
        flushOutput();
        return {Ending::Cancelled, {}};
    }
    if (typed == nullptr || count <= 0) {
        printOut(L"\n");
        flushOutput();
        return {Ending::Closed, {}};
    }
    std::wstring text(typed, static_cast<size_t>(count));
    while (text.ends_with(L'\n') || text.ends_with(L'\r'))
        text.pop_back();
    return {Ending::Entered, std::move(text)};
}

void LineEditor::remember(const std::wstring& text) {
    HistEventW event;
    history_w(library_->history, &event, H_ENTER, text.c_str());
}

}  // namespace sg::app
