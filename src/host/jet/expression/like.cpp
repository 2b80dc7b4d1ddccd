// The dialect's LIKE.

#include "base/text.h"
#include "host/jet/expression/expression.h"
#include "host/jet/index/sort_order.h"

namespace sg::jet {
namespace {

bool isBetween(wchar_t c, wchar_t low, wchar_t high) {
    return low <= c && c <= high;
}

bool isAscii(wchar_t c) {
    return c < 0x80;
}

// Letters that the order of texts takes for one. It has a weight of its own for the long s.
bool isSame(wchar_t a, wchar_t b) {
    constexpr wchar_t longS = 0x17F;
    constexpr wchar_t caseBit = 0x20;
    if (isAscii(a) && isAscii(b)) {
        return a == b || ((a ^ b) == caseBit && isBetween(a | caseBit, L'a', L'z'));
    }
    return a == b || (a != longS && b != longS && toUpper(a) == toUpper(b));
}

// Letters with accents stand in a range where they sort.
bool isInRange(wchar_t c, wchar_t low, wchar_t high) {
    if (isAscii(c) && isAscii(low) && isAscii(high)) {
        return isBetween(toUpper(c), toUpper(low), toUpper(high)) ||
               isBetween(toLower(c), toLower(low), toLower(high));
    }
    const std::wstring_view sought(&c, 1);
    return compareTexts(sought, {&low, 1}) >= 0 && compareTexts(sought, {&high, 1}) <= 0;
}

// What one element of a pattern says of a character, and where the next element begins.
struct Element {
    size_t next;
    bool matches;
};

enum class Listed { no, yes, never };  // never: a range in the list runs backwards

// Whether `c` is in the list between the brackets.
Listed isInList(std::wstring_view list, wchar_t c) {
    bool found = false;
    for (size_t i = 0; i < list.size(); ++i) {
        wchar_t high = list[i];
        const wchar_t low = list[i];
        if (i + 2 < list.size() && list[i + 1] == L'-') {
            high = list[i + 2];
            i += 2;
            if (high < low && toUpper(high) < toUpper(low) && !isInRange(low, low, high)) {
                return Listed::never;
            }
        }
        found = found || isInRange(c, low, high);
    }
    return found ? Listed::yes : Listed::no;
}

Element matchList(std::wstring_view pattern, size_t at, wchar_t c) {
    const size_t end = pattern.find(L']', at + 1);
    if (end == pattern.npos) {
        return {pattern.size(), false};
    }
    std::wstring_view list = pattern.substr(at + 1, end - at - 1);
    const bool excludes = list.size() > 1 && list[0] == L'!';
    if (excludes) {
        list.remove_prefix(1);
    }
    const Listed listed = isInList(list, c);
    return {end + 1, listed != Listed::never && (listed == Listed::yes) != excludes};
}

Element matchElement(std::wstring_view pattern, size_t at, wchar_t c) {
    switch (pattern[at]) {
        case L'?':
            return {at + 1, true};
        case L'#':
            return {at + 1, isBetween(c, L'0', L'9')};
        case L'[':
            return matchList(pattern, at, c);
        default:
            return {at + 1, isSame(pattern[at], c)};
    }
}

// The first place from `at` on where what stands at `in` behind a "*" may begin.
size_t candidate(std::wstring_view text, size_t at, std::wstring_view pattern, size_t in) {
    const bool isLiteral = in < pattern.size() && pattern[in] != L'?' && pattern[in] != L'#' &&
                           pattern[in] != L'[' && pattern[in] != L'*';
    while (isLiteral && at < text.size() && !isSame(pattern[in], text[at])) {
        ++at;
    }
    return at;
}

}  // namespace

// A "*" first takes nothing, and one character more each time what follows it doesn't fit. Only
// the last one needs to be gone back to: what an earlier one could take more it takes as well.
bool isLike(std::wstring_view text, std::wstring_view pattern) {
    size_t at = 0;
    size_t in = 0;                 // the pattern
    size_t starIn = pattern.npos;  // behind the last "*"
    size_t starAt = 0;
    while (true) {
        if (in < pattern.size() && pattern[in] == L'*') {
            starIn = ++in;
            starAt = at;
            continue;
        }
        if (in + 1 < pattern.size() && pattern[in] == L'[' && pattern[in + 1] == L']') {
            in += 2;
            continue;
        }
        if (at == text.size()) {
            return in == pattern.size();
        }
        if (in < pattern.size()) {
            const Element element = matchElement(pattern, in, text[at]);
            if (element.matches) {
                in = element.next;
                ++at;
                continue;
            }
        } else if (starIn == in) {
            return true;
        }
        if (starIn == pattern.npos) {
            return false;
        }
        in = starIn;
        at = starAt = candidate(text, starAt + 1, pattern, in);
    }
}

}  // namespace sg::jet
