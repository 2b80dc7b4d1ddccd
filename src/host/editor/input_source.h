#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/editor/jig/drag_input.h"
#include "platform/ge/point3d.h"

namespace sg::ui {
class ScriptedDialog;
}

namespace sg {

class SelectionSet;

// What becomes of a request.
enum class Outcome {
    answered,
    cancelled,  // Esc
    none,       // this source has nothing for it: the next one is asked
};

template <class Value>
struct Answer {
    Outcome outcome = Outcome::none;
    Value value{};

    static Answer of(Value value) { return {Outcome::answered, std::move(value)}; }
    static Answer cancel() { return {Outcome::cancelled, {}}; }
};

// A line at the command line. An empty answer is Enter.
struct TextRequest {
    std::wstring prompt;     // as it was printed, with its leading line feed
    bool wholeLine = false;  // blanks belong to the answer; otherwise a blank ends it
};

// What a program asks for at the command line, beside text.
struct PromptRequest {
    enum class Kind { value, point, entity, selection };
    Kind kind = Kind::value;
    std::wstring prompt;                   // as it was printed, with its leading line feed
    std::optional<AcGePoint3d> basePoint;  // where a rubber band starts, in user coordinates
    bool isCorner = false;                 // the band is a rectangle
};

struct PromptAnswer {
    enum class Kind {
        text,    // as typed: a value, a point, a keyword; empty for Enter
        point,   // a place on the display, in user coordinates
        pick,    // an entity is picked where `text` says, as a point is typed
        entity,  // the entity of a handle
        set,     // the entities of a selection set
    };
    Kind kind = Kind::text;
    std::wstring text;
    AcGePoint3d point;
    uint64_t handle = 0;
    bool hasPoint = false;  // an entity's: where it is picked, in user coordinates
    std::shared_ptr<const SelectionSet> set;
};

// A step of a drag.
struct DragAnswer {
    bool isConfirmed = true;  // otherwise the place is only pointed at, and shown
    PromptAnswer answer;      // a text or a point
};

struct BoxRequest {
    std::wstring title;
    std::wstring text;
    unsigned flags = 0;  // of MessageBoxW
};

// A dialog that is shown.
struct DialogRequest {
    ui::ScriptedDialog& dialog;
    std::function<void(const std::wstring&)> print;  // to standard output
};

// A file or folder chooser.
struct FileRequest {
    enum class Kind { open, save, folder };
    Kind kind = Kind::open;
    std::wstring title;
    std::wstring folder;               // in which it opens; empty: the current folder
    std::wstring name;                 // what stands in its field at first
    std::wstring filter;               // of a file: "DWG Files (*.dwg)|*.dwg||"; empty: any file
    std::vector<std::wstring> recent;  // earlier answers that are offered again, the latest first
    // What the one who asks does about an answer, with message boxes where it has to; true takes
    // it. A chooser that stays open asks before it closes. May be empty: every answer is taken.
    std::function<bool(const std::wstring& answer)> takes{};
};

// Where answers come from: a script, the words behind a command, a terminal. Every kind of request
// is one operation, and a source answers Outcome::none to the kinds that it does not know, so that
// a new kind needs a line in those sources only that can answer it.
class SG_API InputSource {
  public:
    virtual ~InputSource() = default;
    virtual Answer<std::wstring> text(const TextRequest& request);
    // The base version answers with text.
    virtual Answer<PromptAnswer> prompt(const PromptRequest& request);
    // The base version confirms what prompt() answers.
    virtual Answer<DragAnswer> drag(const DragRequest& request);
    virtual Answer<int> messageBox(const BoxRequest& request);  // the button's id
    // Does to the dialog what there is to do; true when that has closed it. A source that leaves it
    // open leaves it to the next one.
    virtual bool dialog(const DialogRequest& request);
    // A path as it was given, which may be relative to the request's folder, and empty.
    virtual Answer<std::wstring> file(const FileRequest& request);
};

// Asks its sources in their order until one has an answer. The last one should be an
// UnattendedInput, which always has; without it a request that nobody answers is cancelled.
class SG_API InputChain {
  public:
    void add(std::shared_ptr<InputSource> source) { sources_.push_back(std::move(source)); }
    // What is done ahead of each request: a program that waits for input hears its messages.
    void setBeforeWaiting(std::function<void()> work) { beforeWaiting_ = std::move(work); }

    std::optional<std::wstring> text(const TextRequest& request);      // nullopt: cancelled
    std::optional<PromptAnswer> prompt(const PromptRequest& request);  // nullopt: cancelled
    std::optional<DragAnswer> drag(const DragRequest& request);        // nullopt: cancelled
    int messageBox(const BoxRequest& request);
    void dialog(const DialogRequest& request);                     // until it is closed
    std::optional<std::wstring> file(const FileRequest& request);  // nullopt: cancelled

  private:
    template <class Value, class Ask>
    Answer<Value> firstAnswer(Ask ask);

    std::vector<std::shared_ptr<InputSource>> sources_;
    std::function<void()> beforeWaiting_;
};

// The words that remain on a command line answer the prompts of its command.
class SG_API TypedWords : public InputSource {
  public:
    void set(std::wstring_view line);  // replaces what is left
    // The same with the lines behind it: the end of a line ends an answer, and where none has begun
    // it is Enter. A LISP expression is one word.
    void setLines(std::wstring_view text);
    void clear() { rest_.clear(); }
    bool empty() const { return rest_.empty(); }
    size_t left() const { return rest_.size(); }  // characters that have not answered yet

    // The next word, or all that is left of a line for a whole line.
    Answer<std::wstring> text(const TextRequest& request) override;

  private:
    void skipBlanks();

    std::wstring rest_;  // without blanks in front
    bool hasLines_ = false;
};

// The person at the display, where there is one, closes dialogs, answers the boxes that come up
// before them, and chooses files and folders in a window.
class SG_API DisplayInput : public InputSource {
  public:
    Answer<int> messageBox(const BoxRequest& request) override;
    bool dialog(const DialogRequest& request) override;
    Answer<std::wstring> file(const FileRequest& request) override;

  private:
    std::vector<ui::ScriptedDialog*> open_;  // the last one is in front
};

// The lines that are reported of a box and a chooser that were answered without a person.
std::wstring boxReport(const BoxRequest& request, int button);
std::wstring fileReport(const FileRequest& request, const std::wstring& answer);

// Stands behind the last source: nobody is there. A prompt and a dialog are cancelled, a box gets
// its default button, a chooser is cancelled; all but prompts are reported with title, text and
// answer.
class SG_API UnattendedInput : public InputSource {
  public:
    explicit UnattendedInput(std::function<void(const std::wstring&)> report)
        : report_(std::move(report)) {}
    Answer<std::wstring> text(const TextRequest& request) override;
    Answer<int> messageBox(const BoxRequest& request) override;
    bool dialog(const DialogRequest& request) override;
    Answer<std::wstring> file(const FileRequest& request) override;

  private:
    const std::function<void(const std::wstring&)> report_;
};

}  // namespace sg
