#include "host/model/core/text_measure.h"

namespace sg::model {
namespace {

TextBox measureSquares(const std::wstring& text, const AcGiTextStyle& style) {
    const double width = static_cast<double>(text.size()) * style.height * style.widthFactor;
    return {0, 0, width, style.height};
}

TextMeasure theMeasure = measureSquares;

}  // namespace

TextBox measureText(const std::wstring& text, const AcGiTextStyle& style) {
    return theMeasure(text, style);
}

void setTextMeasure(TextMeasure measure) {
    theMeasure = measure != nullptr ? measure : measureSquares;
}

}  // namespace sg::model
