// Functions of texts. Places in a text count from 1.

#include <algorithm>
#include <string>
#include <vector>

#include "base/encoding.h"
#include "base/text.h"
#include "host/jet/expression/expression_functions.h"
#include "host/jet/index/sort_order.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet::detail {
namespace {

using Arguments = std::span<Value>;

// An argument as text.
std::wstring textOf(Evaluation& evaluation, const Value& value) {
    std::wstring text = toInvariantText(value);
    evaluation.charge(text.size());
    return text;
}

// A count or place that may not be less than `least`.
size_t countOf(const Value& value, int32_t least) {
    const int32_t count = wholeOf(value);
    if (count < least) {
        throwInvalidArgument(L"length or place in a text");
    }
    return static_cast<size_t>(count);
}

// --- parts ---

Value len(Evaluation&, Arguments arguments) {
    return static_cast<int32_t>(toInvariantText(arguments[0]).size());
}

Value left(Evaluation& evaluation, Arguments arguments) {
    return textOf(evaluation, arguments[0]).substr(0, countOf(arguments[1], 0));
}

Value right(Evaluation& evaluation, Arguments arguments) {
    const std::wstring text = textOf(evaluation, arguments[0]);
    return text.substr(text.size() - std::min(text.size(), countOf(arguments[1], 0)));
}

Value mid(Evaluation& evaluation, Arguments arguments) {
    const std::wstring text = textOf(evaluation, arguments[0]);
    const size_t start = std::min(countOf(arguments[1], 1) - 1, text.size());
    return text.substr(start, arguments.size() > 2 ? countOf(arguments[2], 0) : text.npos);
}

// Only blanks are trimmed, other white space stays.
std::wstring_view withoutBlanks(std::wstring_view text, bool before, bool behind) {
    const size_t start = before ? std::min(text.find_first_not_of(L' '), text.size()) : 0;
    text.remove_prefix(start);
    const size_t end = behind ? text.find_last_not_of(L' ') + 1 : text.size();
    return text.substr(0, end);
}

template <bool Before, bool Behind>
Value trim(Evaluation& evaluation, Arguments arguments) {
    return std::wstring(withoutBlanks(textOf(evaluation, arguments[0]), Before, Behind));
}

// --- case ---

Value ucase(Evaluation& evaluation, Arguments arguments) {
    return upperCased(textOf(evaluation, arguments[0]));
}

Value lcase(Evaluation& evaluation, Arguments arguments) {
    return lowerCased(textOf(evaluation, arguments[0]));
}

Value strConv(Evaluation& evaluation, Arguments arguments) {
    std::wstring text = textOf(evaluation, arguments[0]);
    const int32_t conversion = wholeOf(arguments[1]);
    if (conversion == 1) {
        return upperCased(text);
    }
    if (conversion == 2) {
        return lowerCased(text);
    }
    if (conversion != 3) {
        throwInvalidArgument(L"conversion of StrConv");
    }
    bool begins = true;
    for (wchar_t& c : text) {
        c = begins ? toUpper(c) : toLower(c);
        begins = isBlank(c) || c == L'\0';
    }
    return text;
}

// --- comparing and finding ---

// 0 is case-sensitive; 1, 2 and none are not.
bool ignoresCase(Arguments arguments, size_t place) {
    const int32_t comparison = wholeOr(arguments, place, 1);
    if (comparison < -1 || comparison > 2) {
        throwInvalidArgument(L"kind of comparison");
    }
    return comparison != 0;
}

Value strComp(Evaluation& evaluation, Arguments arguments) {
    const std::wstring a = textOf(evaluation, arguments[0]);
    const std::wstring b = textOf(evaluation, arguments[1]);
    std::weak_ordering order = a.compare(b) <=> 0;
    if (ignoresCase(arguments, 2)) {
        const auto blanks = [](const std::wstring& text) {
            return text.size() - (text.find_last_not_of(L' ') + 1);
        };
        const std::weak_ordering sorted = compareTexts(a, b);
        order = sorted != 0 ? sorted : blanks(a) <=> blanks(b);
    }
    return static_cast<int16_t>(order < 0 ? -1 : order > 0 ? 1 : 0);
}

// Finds a text again and again in linear time, whatever the two are.
class Finder {
  public:
    Finder(std::wstring_view sought, bool ignoreCase)
        : sought_(ignoreCase ? upperCased(sought) : std::wstring(sought)),
          ignoreCase_(ignoreCase),
          fallback_(sought.size(), 0) {
        size_t length = 0;
        for (size_t i = 1; i < sought_.size(); ++i) {
            length = extended(length, sought_[i]);
            fallback_[i] = length;
        }
    }

    // Where `sought`, which is not empty, begins in `text` from `start` on; npos when nowhere.
    size_t find(std::wstring_view text, size_t start) const {
        size_t length = 0;
        for (size_t i = start; i < text.size(); ++i) {
            length = extended(length, ignoreCase_ ? toUpper(text[i]) : text[i]);
            if (length == sought_.size()) {
                return i + 1 - length;
            }
        }
        return std::wstring_view::npos;
    }

  private:
    // How much of the sought text ends with `c`, when `length` of it ended before.
    size_t extended(size_t length, wchar_t c) const {
        while (length > 0 && sought_[length] != c) {
            length = fallback_[length - 1];
        }
        return sought_[length] == c ? length + 1 : 0;
    }

    std::wstring sought_;
    bool ignoreCase_;
    // For each of its beginnings the longest shorter beginning that it ends with.
    std::vector<size_t> fallback_;
};

// InStr([start,] text, sought [, comparison]): with three arguments the first is the start when it
// is a number.
Value inStr(Evaluation& evaluation, Arguments arguments) {
    size_t start = 1;
    if (arguments.size() > 3 ||
        (arguments.size() == 3 && !std::holds_alternative<std::wstring>(arguments[0]))) {
        start = countOf(arguments[0], 1);
        arguments = arguments.subspan(1);
    }
    const std::wstring text = textOf(evaluation, arguments[0]);
    const std::wstring sought = textOf(evaluation, arguments[1]);
    const bool ignoreCase = ignoresCase(arguments, 2);
    if (text.empty() || start > text.size()) {
        return 0;
    }
    if (sought.empty()) {
        return static_cast<int32_t>(start);
    }
    const size_t found = Finder(sought, ignoreCase).find(text, start - 1);
    return static_cast<int32_t>(found + 1);  // 0 when there is none
}

// InStrRev(text, sought [, start [, comparison]]): the last one that ends at `start` or before.
Value inStrRev(Evaluation& evaluation, Arguments arguments) {
    std::wstring text = textOf(evaluation, arguments[0]);
    std::wstring sought = textOf(evaluation, arguments[1]);
    const int32_t start = wholeOr(arguments, 2, -1);
    if (start == 0 || start < -1) {
        throwInvalidArgument(L"length or place in a text");
    }
    const bool ignoreCase = ignoresCase(arguments, 3);
    const size_t end = start < 0 ? text.size() : static_cast<size_t>(start);
    if (text.empty() || end > text.size()) {
        return 0;
    }
    if (sought.empty()) {
        return static_cast<int32_t>(end);
    }
    text.resize(end);
    std::reverse(text.begin(), text.end());
    std::reverse(sought.begin(), sought.end());
    const size_t found = Finder(sought, ignoreCase).find(text, 0);
    return static_cast<int32_t>(found == text.npos ? 0 : end - found - sought.size() + 1);
}

// Replace(text, sought, by [, start [, count [, comparison]]]): the text from `start` on.
Value replace(Evaluation& evaluation, Arguments arguments) {
    const std::wstring text = textOf(evaluation, arguments[0]);
    const std::wstring sought = textOf(evaluation, arguments[1]);
    const std::wstring by = textOf(evaluation, arguments[2]);
    size_t at = arguments.size() > 3 ? countOf(arguments[3], 1) - 1 : 0;
    int32_t count = wholeOr(arguments, 4, -1);
    if (count < -1) {
        throwInvalidArgument(L"count of replacements");
    }
    const Finder finder(sought, ignoresCase(arguments, 5));
    std::wstring result;
    if (at >= text.size()) {
        return result;
    }
    for (; count != 0 && !sought.empty(); count -= count > 0 ? 1 : 0) {
        const size_t found = finder.find(text, at);
        if (found == text.npos) {
            break;
        }
        evaluation.checkText(result.size() + (found - at) + by.size());
        evaluation.charge(by.size());
        result.append(text, at, found - at).append(by);
        at = found + sought.size();
    }
    return result.append(text, at);
}

// --- making texts ---

Value space(Evaluation& evaluation, Arguments arguments) {
    const size_t count = countOf(arguments[0], 0);
    evaluation.checkText(count);
    evaluation.charge(count);
    return std::wstring(count, L' ');
}

// A character's number in code page 1252.
wchar_t characterOf(int32_t code) {
    if (code < 0 || code > 255) {
        throwInvalidArgument(L"character code");
    }
    return fromCp1252(std::string(1, static_cast<char>(code)))[0];
}

Value stringFunction(Evaluation& evaluation, Arguments arguments) {
    const size_t count = countOf(arguments[0], 0);
    evaluation.checkText(count);
    evaluation.charge(count);
    const auto* text = std::get_if<std::wstring>(&arguments[1]);
    if (text != nullptr && text->empty()) {
        throwInvalidArgument(L"character to repeat");
    }
    const wchar_t c = text != nullptr ? (*text)[0] : characterOf(wholeOf(arguments[1]) & 0xff);
    return std::wstring(count, c);
}

Value chr(Evaluation&, Arguments arguments) {
    return std::wstring(1, characterOf(wholeOf(arguments[0])));
}

// Of a UTF-16 unit; half a surrogate pair is no character.
Value chrw(Evaluation&, Arguments arguments) {
    const int32_t code = wholeOf(arguments[0]);
    if (code < -32768 || code > 65535) {
        throwInvalidArgument(L"character code");
    }
    const auto unit = static_cast<uint16_t>(code);
    return std::wstring(
        1, unit >= 0xD800 && unit < 0xE000 ? wchar_t{0xFFFD} : static_cast<wchar_t>(unit));
}

wchar_t firstCharacter(const Value& value) {
    const std::wstring text = toInvariantText(value);
    if (text.empty()) {
        throwInvalidArgument(L"character of an empty text");
    }
    return text[0];
}

Value asc(Evaluation&, Arguments arguments) {
    const std::string byte = toCp1252(std::wstring(1, firstCharacter(arguments[0])));
    return static_cast<int16_t>(static_cast<uint8_t>(byte[0]));
}

Value ascw(Evaluation&, Arguments arguments) {
    const std::u16string units = toUtf16(std::wstring(1, firstCharacter(arguments[0])));
    return static_cast<int16_t>(units[0]);
}

Value strReverse(Evaluation& evaluation, Arguments arguments) {
    std::wstring text = textOf(evaluation, arguments[0]);
    std::reverse(text.begin(), text.end());
    return text;
}

constexpr Function functions[] = {
    {L"Asc", 1, 1, NullArguments::GiveNull, asc},
    {L"AscW", 1, 1, NullArguments::GiveNull, ascw},
    {L"Chr", 1, 1, NullArguments::GiveNull, chr},
    {L"ChrW", 1, 1, NullArguments::GiveNull, chrw},
    {L"InStr", 2, 4, NullArguments::GiveNull, inStr},
    {L"InStrRev", 2, 4, NullArguments::GiveNull, inStrRev},
    {L"LCase", 1, 1, NullArguments::GiveNull, lcase},
    {L"Left", 2, 2, NullArguments::GiveNull, left},
    {L"Len", 1, 1, NullArguments::GiveNull, len},
    {L"LTrim", 1, 1, NullArguments::GiveNull, trim<true, false>},
    {L"Mid", 2, 3, NullArguments::GiveNull, mid},
    {L"Replace", 3, 6, NullArguments::GiveNull, replace},
    {L"Right", 2, 2, NullArguments::GiveNull, right},
    {L"RTrim", 1, 1, NullArguments::GiveNull, trim<false, true>},
    {L"Space", 1, 1, NullArguments::GiveNull, space},
    {L"StrComp", 2, 3, NullArguments::GiveNull, strComp},
    {L"StrConv", 2, 2, NullArguments::GiveNull, strConv},
    {L"String", 2, 2, NullArguments::GiveNull, stringFunction},
    {L"StrReverse", 1, 1, NullArguments::GiveNull, strReverse},
    {L"Trim", 1, 1, NullArguments::GiveNull, trim<true, true>},
    {L"UCase", 1, 1, NullArguments::GiveNull, ucase},
};

}  // namespace

std::span<const Function> textFunctions() {
    return functions;
}

}  // namespace sg::jet::detail
