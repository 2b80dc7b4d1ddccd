#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/editor/input_source.h"

namespace sg {

// A point as a script writes it.
struct ScriptPoint {
    enum class Form {
        absolute,       // x,y or x,y,z
        relative,       // @x,y or @x,y,z: from the last point
        polar,          // distance<angle: from the origin
        relativePolar,  // @distance<angle: from the last point
    };
    Form form = Form::absolute;
    double x = 0, y = 0, z = 0;      // drawing units
    double distance = 0, angle = 0;  // drawing units; the current angular units
    bool hasZ = false;
};

// One line of an input script.
struct ScriptItem {
    enum class Kind {
        point,    // 10,20
        entity,   // entity HANDLE
        pick,     // pick POINT
        number,   // 45.5, or an angle such as 45d30'
        keyword,  // keyword Middle
        text,     // text ...
        enter,    // ENTER
        escape,   // ESC
        sample,   // sample POINT
        box,      // box yes
        file,     // file PATH; an empty path for CANCEL
        dialog,   // press, set, check, choose, row, cell, key, dblclick, show, shot, ok, cancel
    };
    Kind kind = Kind::text;
    size_t line = 0;      // 1-based
    std::wstring source;  // the line without blanks around it and without its comment
    std::wstring word;    // the first word in lower case, for dialog lines
    std::wstring value;   // what is behind the word; the whole line where there is no word
    ScriptPoint point;    // of point, pick and sample
    double number =
        0;  // of number, up to its first unit mark; 0 for an angle that starts with N or S
    uint64_t handle = 0;  // of entity
    int button = 0;       // of box
};

// Answers requests from a script, one line each in their order; when no line is left the next
// source is asked. The format, a line at a time:
//
//   #  starts a comment, at the start of a line or behind a blank; in lines of free text (text,
//   file
//      and the dialog's) at the start only. Blank lines mean nothing.
//   Words are found ignoring case. What follows "text" and one blank is taken as it stands.
//
// A text request takes text, keyword, number and point lines, ENTER (an empty answer) and ESC; a
// prompt takes pick and entity lines too, a drag sample lines; a message box takes box lines, a
// file or folder chooser file lines. A dialog takes its lines until it is closed; what comes up
// meanwhile takes the lines that follow. Any other line, and a button that the box does not have,
// is used up, reported, and stands for Esc. Boxes, choosers and dialogs are reported with their
// answers.
class SG_API ScriptInput : public InputSource {
  public:
    using Report = std::function<void(const std::wstring&)>;

    // Reads a script. On a malformed line nothing is answered, and `error` tells file, line and
    // what was expected.
    static std::shared_ptr<ScriptInput> parse(std::wstring_view content, std::wstring file,
                                              Report report, std::wstring& error);

    Answer<std::wstring> text(const TextRequest& request) override;
    Answer<PromptAnswer> prompt(const PromptRequest& request) override;
    Answer<DragAnswer> drag(const DragRequest& request) override;
    Answer<int> messageBox(const BoxRequest& request) override;
    bool dialog(const DialogRequest& request) override;
    Answer<std::wstring> file(const FileRequest& request) override;

    const std::vector<ScriptItem>& items() const { return items_; }
    size_t used() const { return next_; }  // items that have answered a request

  private:
    ScriptInput(std::vector<ScriptItem> items, std::wstring file, Report report);
    const ScriptItem* take();
    void report(const std::wstring& what) const;
    void reportAt(const ScriptItem& item, const std::wstring& what) const;
    void reportMismatch(const ScriptItem& item, const std::wstring& asked) const;

    const std::vector<ScriptItem> items_;
    const std::wstring file_;
    const Report report_;
    size_t next_ = 0;
};

}  // namespace sg
