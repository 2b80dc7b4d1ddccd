#include "host/editor/script_parser.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "base/encoding.h"
#include "base/text.h"
#include "host/editor/message_buttons.h"

namespace sg {
namespace {

using Kind = ScriptItem::Kind;

enum class Operand { none, text, freeText, point, handle, button };

struct WordRow {
    const wchar_t* word;
    Kind kind;
    Operand operand;
};

constexpr WordRow kWords[] = {
    {L"entity", Kind::entity, Operand::handle},     {L"pick", Kind::pick, Operand::point},
    {L"keyword", Kind::keyword, Operand::text},     {L"text", Kind::text, Operand::freeText},
    {L"enter", Kind::enter, Operand::none},         {L"esc", Kind::escape, Operand::none},
    {L"sample", Kind::sample, Operand::point},      {L"box", Kind::box, Operand::button},
    {L"file", Kind::file, Operand::freeText},       {L"press", Kind::dialog, Operand::freeText},
    {L"set", Kind::dialog, Operand::freeText},      {L"check", Kind::dialog, Operand::freeText},
    {L"choose", Kind::dialog, Operand::freeText},   {L"row", Kind::dialog, Operand::freeText},
    {L"cell", Kind::dialog, Operand::freeText},     {L"key", Kind::dialog, Operand::freeText},
    {L"show", Kind::dialog, Operand::none},         {L"shot", Kind::dialog, Operand::freeText},
    {L"ok", Kind::dialog, Operand::none},           {L"cancel", Kind::dialog, Operand::none},
    {L"dblclick", Kind::dialog, Operand::freeText},
};

const WordRow* findWord(std::wstring_view word) {
    for (const WordRow& row : kWords) {
        if (equalIgnoringCase(row.word, word)) return &row;
    }
    return nullptr;
}

std::wstring_view withoutComment(std::wstring_view line) {
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] == L'#' && (i == 0 || isBlank(line[i - 1]))) {
            return trimmedRight(line.substr(0, i));
        }
    }
    return trimmedRight(line);
}

// Takes a finite number off the left of `text`.
std::optional<double> takeNumber(std::wstring_view& text) {
    if (text.starts_with(L'+') && !text.starts_with(L"+-")) text.remove_prefix(1);
    const std::string bytes = toUtf8(text);
    const bool plain = !bytes.empty() &&
                       (bytes[0] == '-' || bytes[0] == '.' || (bytes[0] >= '0' && bytes[0] <= '9'));
    double value = 0;
    const auto [end, error] = std::from_chars(bytes.data(), bytes.data() + bytes.size(), value);
    if (!plain || error != std::errc() || !std::isfinite(value)) return std::nullopt;
    text.remove_prefix(static_cast<size_t>(end - bytes.data()));  // digits are one byte each
    return value;
}

bool take(std::wstring_view& text, wchar_t c) {
    if (!text.starts_with(c)) return false;
    text.remove_prefix(1);
    return true;
}

std::optional<ScriptPoint> parsePoint(std::wstring_view text) {
    using Form = ScriptPoint::Form;
    ScriptPoint point;
    const bool relative = take(text, L'@');
    const auto first = takeNumber(text);
    if (!first) return std::nullopt;
    const bool polar = take(text, L'<');
    if (!polar && !take(text, L',')) return std::nullopt;
    const auto second = takeNumber(text);
    if (!second) return std::nullopt;
    if (polar) {
        point.form = relative ? Form::relativePolar : Form::polar;
        point.distance = *first;
        point.angle = *second;
    } else {
        point.form = relative ? Form::relative : Form::absolute;
        point.x = *first;
        point.y = *second;
        if (take(text, L',')) {
            const auto third = takeNumber(text);
            if (!third) return std::nullopt;
            point.z = *third;
            point.hasZ = true;
        }
    }
    return text.empty() ? std::optional(point) : std::nullopt;
}

// The marks of degrees, minutes, seconds, grads and radians, and the compass of surveyor's units.
bool isAngleText(std::wstring_view text) {
    return text.find_first_not_of(L"0123456789.dDgGrR'\"+-") == std::wstring_view::npos;
}

std::optional<double> parseNumber(std::wstring_view text) {
    const bool surveyed = text.size() > 2 &&
                          std::wstring_view(L"NSns").find(text[0]) < std::wstring_view::npos &&
                          std::wstring_view(L"EWew").find(text.back()) < std::wstring_view::npos;
    if (surveyed) {
        const bool good = isAngleText(text.substr(1, text.size() - 2));
        return good ? std::optional(0.0) : std::nullopt;
    }
    const auto number = takeNumber(text);
    const bool marked =
        text.empty() || std::wstring_view(L"dDgGrR'\"").find(text[0]) < std::wstring_view::npos;
    return number && marked && isAngleText(text) ? number : std::nullopt;
}

bool parseHandle(std::wstring_view text, uint64_t& handle) {
    const std::string digits = toUtf8(text);
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), handle, 16);
    return error == std::errc() && end == digits.data() + digits.size() && handle != 0;
}

// Fills in what follows the word. False, with `problem`, when it does not fit.
bool parseOperand(const WordRow& row, ScriptItem& item, std::wstring& problem) {
    const std::wstring where = L" behind \"" + std::wstring(row.word) + L"\"";
    const auto expect = [&](bool fits, const wchar_t* what) {
        if (!fits) problem = std::wstring(what) + L" expected" + where;
        return fits;
    };
    switch (row.operand) {
        case Operand::none:
            return expect(item.value.empty(), L"nothing");
        case Operand::text:
            return expect(!item.value.empty(), L"a word");
        case Operand::freeText:
            if (row.kind == Kind::text) return true;
            if (!expect(!item.value.empty(), row.kind == Kind::file ? L"a path" : L"a name")) {
                return false;
            }
            if (row.kind == Kind::file && item.value == L"CANCEL") item.value.clear();
            return true;
        case Operand::point: {
            const auto point = parsePoint(item.value);
            if (point) item.point = *point;
            return expect(point.has_value(), L"a point");
        }
        case Operand::handle:
            return expect(parseHandle(item.value, item.handle), L"a handle (hexadecimal)");
        case Operand::button:
            item.button = buttonNamed(item.value);
            return expect(item.button != 0, L"yes, no, ok, cancel, retry, abort or ignore");
    }
    return false;
}

std::optional<ScriptItem> parseWithoutWord(std::wstring_view line, std::wstring& problem) {
    ScriptItem item;
    item.source = item.value = withoutComment(line);
    if (const auto point = parsePoint(item.value)) {
        item.kind = Kind::point;
        item.point = *point;
        return item;
    }
    if (const auto number = parseNumber(item.value)) {
        item.kind = Kind::number;
        item.number = *number;
        return item;
    }
    problem = L"a point, a number or a known word expected, not \"" + item.source + L"\"";
    return std::nullopt;
}

}  // namespace

std::optional<ScriptItem> parseScriptLine(std::wstring_view line, std::wstring& problem) {
    problem.clear();
    while (line.ends_with(L'\r') || line.ends_with(L'\n'))
        line.remove_suffix(1);
    while (!line.empty() && isBlank(line.front()))
        line.remove_prefix(1);
    if (line.empty() || line.front() == L'#') return std::nullopt;

    const size_t end = std::find_if(line.begin(), line.end(), isBlank) - line.begin();
    const WordRow* const row = findWord(line.substr(0, end));
    if (row == nullptr) return parseWithoutWord(line, problem);

    ScriptItem item;
    item.kind = row->kind;
    item.word = row->word;
    const bool free = row->operand == Operand::freeText;
    const std::wstring_view whole = free ? line : withoutComment(line);
    item.source = trimmedRight(whole);
    if (row->kind == Kind::text) {
        item.value = whole.substr(std::min(end + 1, whole.size()));
    } else {
        item.value = trimmed(whole.substr(std::min(end, whole.size())));
    }
    return parseOperand(*row, item, problem) ? std::optional(item) : std::nullopt;
}

}  // namespace sg
