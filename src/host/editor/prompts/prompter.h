#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/export.h"
#include "host/editor/input_source.h"
#include "host/editor/prompts/keywords.h"
#include "host/editor/prompts/typed_values.h"
#include "platform/db/database.h"

namespace sg {

class DrawingSelection;
class Output;
class SystemVariables;

// What a prompt came to.
enum class PromptResult {
    value,
    null,       // Enter, where it is allowed
    keyword,    // keyword() tells which; also text that was allowed in a value's place
    cancelled,  // Esc, or nobody is there to answer
    missed,     // a pick that hit nothing
    refused,    // the prompt makes no sense: a choice among no keywords
};

// Asks the user for values in one drawing. What does not fit is told and asked for again; every
// prompt sets "ERRNO" anew: 0, 7 for a pick that hit nothing, 52 for Enter. Points are in the user
// coordinate system, angles in radians from its x axis.
class SG_API Prompter {
  public:
    // What the next prompt allows, by the bits of initget. The prompt that uses them forgets them.
    struct Allowed {
        enum Bits {
            noNull = 1,
            noZero = 2,
            noNegative = 4,
            noLimits = 8,
            dashed = 32,
            flatDistance = 64,  // without z
            anyText = 128,      // text in place of a value comes back as a keyword
        };
        int bits = 0;
        Keywords keywords;
    };

    // Where prompts lead, each of which must live as long as this.
    struct Place {
        InputChain& input;
        Output& output;
        SystemVariables& variables;
        AcDbDatabase& database;
        DrawingSelection& selection;
    };

    using Point = std::optional<AcGePoint3d>;

    // `allowed` outlives this; it is emptied by the prompt.
    Prompter(const Place& place, Allowed& allowed) : place_(place), allowed_(allowed) {}

    PromptResult point(const std::wstring& prompt, const Point& base, AcGePoint3d& result);
    PromptResult corner(const std::wstring& prompt, const AcGePoint3d& base, AcGePoint3d& result);
    // A number, or the distance between two points; one when there is a base.
    PromptResult distance(const std::wstring& prompt, const Point& base, double& result);
    // An angle, or the direction from one point to another. getangle measures from the direction
    // ANGBASE, getorient from the x axis.
    PromptResult angle(const std::wstring& prompt, const Point& base, bool fromXAxis,
                       double& result);
    PromptResult integer(const std::wstring& prompt, int32_t& result);  // of 16 bits
    PromptResult real(const std::wstring& prompt, double& result);
    // A line; without `wholeLine` a blank ends it. Enter is an empty text.
    PromptResult string(const std::wstring& prompt, bool wholeLine, std::wstring& result);
    PromptResult choice(const std::wstring& prompt);  // the keyword is the value
    // An entity, and where it was picked.
    PromptResult entity(const std::wstring& prompt, AcDbObjectId& id, AcGePoint3d& at);

    // What a selection takes next: an entity, a place or a word.
    // A place without an entity counts as a miss for "ERRNO".
    struct Pick {
        AcDbObjectId id;                          // where one was picked
        AcGePoint3d at;                           // where
        bool isNamed = false;                     // by its handle, not by its place
        bool isPoint = false;                     // a place with nothing at it
        std::wstring word;                        // that is no keyword
        std::shared_ptr<const SelectionSet> set;  // a whole set in place of one entity
    };
    // Enter is null. A keyword without a word in `pick` is one of `keywords`.
    PromptResult pick(const std::wstring& prompt, const Keywords& keywords, Pick& pick);

    const std::wstring& keyword() const { return keyword_; }
    // Half of the side of the square that picking looks at, in drawing units.
    double pickReach() const;

    // --- Parts of a prompt, for what asks in a way of its own.

    PromptResult finish(PromptResult result);  // sets "ERRNO"
    void tell(const std::wstring& message);    // on a line of its own
    // False when the answer is no point.
    bool pointOf(const PromptAnswer& answer, AcGePoint3d& point);
    TypedContext context() const;
    AcGePoint3d lastPoint() const;
    void setLastPoint(const AcGePoint3d& point);
    int number(const wchar_t* variable) const;  // of a system variable that is an integer

  private:
    enum class Parsed { done, wrong, cancelled };

    template <class Take>
    PromptResult ask(PromptRequest request, const Allowed& allowed, const wchar_t* complaint,
                     const Take& take);
    std::optional<AcGePoint3d> snapped(const std::wstring& modes, bool& isSnap);
    bool fits(double value, const Allowed& allowed);
    bool isWithinLimits(const AcGePoint3d& point) const;
    AcDbObjectId entityOf(const PromptAnswer& answer, AcGePoint3d& at);
    PromptResult askPoint(const std::wstring& prompt, const Point& base, bool isCorner,
                          const Allowed& allowed, AcGePoint3d& result);
    Allowed takeAllowed();

    Place place_;
    Allowed& allowed_;
    std::wstring keyword_;
};

// What lasts from one prompt to the next.
struct PromptState {
    Prompter::Allowed allowed;  // what initget has said
    std::wstring keyword;       // the one that was answered last
};

}  // namespace sg
