#include "host/render/linetype.h"

#include <algorithm>
#include <cmath>

#include "platform/db/text_style_table.h"

namespace sg::render {
namespace {

constexpr int kUpright = 1;
constexpr int kHasText = 2;

void takeText(const AcDbLinetypeTableRecord::Dash& dash, Linetype::Element& element) {
    AcDbTextStyleTableRecord* style = nullptr;
    if (acdbOpenObject(style, dash.style) != Acad::eOk) return;
    element.style = style->giTextStyle();
    style->close();
    element.text = dash.text;
    element.style.height *= dash.scale;
    element.offset = dash.offset;
    element.rotation = dash.rotation;
    element.isUpright = (dash.flags & kUpright) != 0;
}

}  // namespace

Linetype linetypeOf(const AcDbLinetypeTableRecord& record) {
    Linetype linetype;
    for (const AcDbLinetypeTableRecord::Dash& dash : record.dashes()) {
        Linetype::Element& element = linetype.elements.emplace_back();
        element.length = std::isfinite(dash.length) ? dash.length : 0;
        linetype.length += std::abs(element.length);
        if ((dash.flags & kHasText) != 0) takeText(dash, element);
    }
    return linetype;
}

LaidPattern::LaidPattern(const Linetype& linetype, double scale, double length, bool isClosed)
    : linetype_(linetype), scale_(scale), length_(length) {
    const double first = linetype.elements.empty() ? 0 : linetype.elements.front().length;
    startsWithDash_ = first > 0;
    double pattern = linetype.length * scale_;
    if (!linetype.isBroken() || !(pattern > 0) || !(length >= pattern)) {
        unbroken_ = true;
        return;
    }
    if (isClosed) {
        scale_ *= length / (pattern * std::round(length / pattern));
        shift_ = std::max(first, 0.0) * scale_ / 2;
        return;
    }
    // The line has whole patterns from the end of its first dash to the start of its last one.
    const double dash = std::max(first, 0.0) * scale_;
    head_ = (length - std::floor(length / pattern) * pattern + dash) / 2;
    shift_ = dash - head_;
}

void LaidPattern::visit(double from, double to, const Stroke& stroke, const Text& text) const {
    if (unbroken_) {
        stroke(from, to);
        return;
    }
    const double tail = length_ - head_;
    if (startsWithDash_ && from < head_) stroke(from, std::min(to, head_));
    visitMiddle(std::max(from, head_), std::min(to, tail), stroke, text);
    if (startsWithDash_ && head_ > 0 && to > tail) stroke(std::max(from, tail), to);
}

void LaidPattern::visitMiddle(double from, double to, const Stroke& stroke,
                              const Text& text) const {
    if (!(from <= to)) return;
    const double pattern = linetype_.length * scale_;
    double start = std::floor((from + shift_) / pattern) * pattern - shift_;
    while (start <= to) {
        for (const Linetype::Element& element : linetype_.elements) {
            const double end = start + std::abs(element.length) * scale_;
            if (element.length > 0 && end > from && start < to) {
                stroke(std::max(start, from), std::min(end, to));
            } else if (element.length == 0 && start >= from && start <= to) {
                stroke(start, start);
            }
            if (!element.text.empty() && end >= from && end < to) text(element, end);
            start = end;
        }
    }
}

}  // namespace sg::render
