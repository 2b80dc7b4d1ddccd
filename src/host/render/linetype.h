#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/db/linetype_table.h"
#include "platform/ge/vector2d.h"
#include "platform/gi/draw.h"

namespace sg::render {

// A pattern of dashes, dots and gaps.
struct Linetype {
    struct Element {
        double length = 0;  // a gap is negative, a dot 0
        // A text that stands at the element's end, empty for none: its style has the height, and
        // its place is from there, along the line and to its left.
        std::wstring text;
        AcGiTextStyle style;
        AcGeVector2d offset;
        double rotation = 0;
        bool isUpright = false;  // the rotation is the drawing's, not the line's
    };
    std::vector<Element> elements;
    double length = 0;  // of all of them

    // False for a pattern that shows as an unbroken line.
    bool isBroken() const { return length > 0 && elements.size() > 1; }
};

// What a record of the table comes to.
SG_API Linetype linetypeOf(const AcDbLinetypeTableRecord& record);

// A pattern laid along a line. An open line begins and ends in its first dash, of which at least
// half shows at either end; where not even one pattern has room, the line is unbroken. Around a
// closed line the pattern is stretched so that it comes out even.
class SG_API LaidPattern {
  public:
    LaidPattern(const Linetype& linetype, double scale, double length, bool isClosed);

    // Calls `stroke` with each dash between two places along the line, cut there, in rising order;
    // a dot has no length. `text` gets the elements with a text that stand between.
    using Stroke = std::function<void(double from, double to)>;
    using Text = std::function<void(const Linetype::Element& element, double at)>;
    void visit(double from, double to, const Stroke& stroke, const Text& text) const;
    double scale() const { return scale_; }

  private:
    void visitMiddle(double from, double to, const Stroke& stroke, const Text& text) const;

    const Linetype& linetype_;
    double scale_;
    double length_;
    bool unbroken_ = false;
    bool startsWithDash_ = true;
    double head_ = 0;   // how long the first dash is, or what is blank before the first dot
    double shift_ = 0;  // what is added to a place to come to the pattern's
};

}  // namespace sg::render
