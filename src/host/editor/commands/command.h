#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/editor/prompts/prompter.h"
#include "host/editor/selection/selection_sets.h"
#include "platform/db/entity.h"
#include "platform/ge/matrix3d.h"

namespace sg {

class Document;

// What commands on drawing files need of the program around them. Each throws std::exception with
// a text for the user.
struct CommandFiles {
    std::function<void(const std::wstring& path)> open;
    // An empty path is the drawing's own; an empty release the one that it has.
    std::function<void(Document& document, const std::wstring& path, const std::wstring& release)>
        save;
};

// What a built-in command sees while it runs: the drawing, the user, and the ways to ask.
//
// A prompt names its options in brackets ("[Close/Undo]"), in the form of keywords; that is how
// they are asked for. Points are in the user coordinate system. Esc at any prompt ends the command:
// the operations that ask throw Cancelled.
class SG_API Command {
  public:
    struct Cancelled {};

    struct Setting {
        Document& document;
        Prompter::Place place;
        CommandFiles files;
        bool fromProgram = false;  // not typed by a person
        // Runs what may start programs of any kind, which need the stack of the main program.
        std::function<void(const std::function<void()>&)> outside;
    };

    explicit Command(const Setting& setting);

    Document& document() { return setting_.document; }
    AcDbDatabase& database() { return setting_.place.database; }
    SystemVariables& variables() { return setting_.place.variables; }
    // Both throw std::exception with a text for the user.
    void openFile(const std::wstring& path);
    void saveFile(const std::wstring& path, const std::wstring& release);
    bool isFromProgram() const { return setting_.fromProgram; }

    // ---- Asking

    enum class Reply { value, enter, keyword };

    struct Ask {
        std::wstring prompt;
        Prompter::Point base = std::nullopt;
        int bits = 0;                   // of Prompter::Allowed
        const wchar_t* more = nullptr;  // keywords that the prompt does not show
    };

    Reply point(const Ask& ask, AcGePoint3d& result);
    Reply corner(const Ask& ask, AcGePoint3d& result);  // with a base
    Reply distance(const Ask& ask, double& result);
    Reply angle(const Ask& ask, double& result);      // as getangle measures
    Reply direction(const Ask& ask, double& result);  // from the x axis
    Reply integer(const Ask& ask, int32_t& result);
    Reply real(const Ask& ask, double& result);
    // A line of text; Enter is an empty one.
    std::wstring text(const std::wstring& prompt);
    // A name: no blanks in it unless a program gives it.
    std::wstring word(const std::wstring& prompt);
    // One of the prompt's options; empty for Enter.
    std::wstring option(const std::wstring& prompt, const wchar_t* more = nullptr);
    bool yes(const std::wstring& prompt, bool byDefault);  // [Yes/No]
    // The option that was answered last, as the prompt writes it.
    const std::wstring& keyword() const { return prompter_.keyword(); }
    bool is(std::wstring_view option) const { return keyword() == option; }

    // A point without which the command cannot go on: Enter is not taken.
    AcGePoint3d needPoint(const Ask& ask);

    // Asks for entities until Enter; the ones on locked layers are told and left out.
    SelectionSet select(const wchar_t* prompt = L"Select objects: ", bool single = false);
    AcDbObjectId pick(const std::wstring& prompt);  // null for none

    // ---- Telling

    void print(const std::wstring& line);  // on a line of its own
    std::wstring lengthText(double length) const;
    std::wstring angleText(double angle) const;

    // ---- Drawing

    AcGeMatrix3d userToWorld() const;
    AcGePoint3d world(const AcGePoint3d& user) const { return userToWorld() * user; }
    AcGeVector3d world(const AcGeVector3d& user) const { return userToWorld() * user; }
    // Gives the entity the drawing's current properties and puts it into the current space.
    AcDbObjectId add(std::unique_ptr<AcDbEntity> entity);
    // Puts it there as it is.
    AcDbObjectId append(std::unique_ptr<AcDbEntity> entity);
    // Copies in the space of each, in this order.
    std::vector<AcDbObjectId> copy(const std::vector<AcDbObjectId>& ids);
    void transform(const std::vector<AcDbObjectId>& ids, const AcGeMatrix3d& matrix);
    void erase(const std::vector<AcDbObjectId>& ids);

    AcGePoint3d lastPoint() const { return prompter_.lastPoint(); }
    void setLastPoint(const AcGePoint3d& point) { prompter_.setLastPoint(point); }
    double number(const wchar_t* variable) const;
    int32_t whole(const wchar_t* variable) const;
    std::wstring textOf(const wchar_t* variable) const;

    Prompter& prompter() { return prompter_; }

  private:
    void allow(const Ask& ask);
    static Reply replyOf(PromptResult result);

    Setting setting_;
    Prompter::Allowed allowed_;
    Prompter prompter_;
};

}  // namespace sg
