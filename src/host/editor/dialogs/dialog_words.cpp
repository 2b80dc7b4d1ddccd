#include "host/editor/dialogs/dialog_words.h"

#include <algorithm>

#include "base/text.h"

namespace sg {
namespace {

constexpr int kMostDigits = 9;

std::wstring_view withoutBlanks(std::wstring_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    return text;
}

bool endsAt(std::wstring_view text, size_t place) {
    return place == text.size() || isBlank(text[place]);
}

// How much of `text` a name takes that stands at its left; 0: it does not stand there.
size_t lengthOf(std::wstring_view name, std::wstring_view text, bool isWhole) {
    if (name.empty()) return 0;
    for (const std::wstring_view form : {name, withoutColon(name)}) {
        if (text.size() < form.size()) continue;
        const bool fits = isWhole ? form.size() == text.size() : endsAt(text, form.size());
        if (fits && equalIgnoringCase(text.substr(0, form.size()), form)) return form.size();
    }
    return 0;
}

}  // namespace

std::optional<int> takeWholeNumber(std::wstring_view& text) {
    const auto isNoDigit = [](wchar_t c) { return c < L'0' || c > L'9'; };
    const auto end = size_t(std::find_if(text.begin(), text.end(), isNoDigit) - text.begin());
    if (end == 0 || end > kMostDigits || !endsAt(text, end)) return std::nullopt;
    const int number = std::stoi(std::wstring(text.substr(0, end)));
    text = withoutBlanks(text.substr(end));
    return number;
}

std::optional<size_t> takeName(std::wstring_view& text, const std::vector<std::wstring>& names,
                               bool isWhole) {
    std::wstring_view quoted, behind;
    if (text.starts_with(L'"') && text.find(L'"', 1) != std::wstring_view::npos) {
        quoted = text.substr(1, text.find(L'"', 1) - 1);
        behind = withoutBlanks(text.substr(quoted.size() + 2));
    }
    std::optional<size_t> found;
    size_t longest = 0;
    for (size_t i = 0; i < names.size(); ++i) {
        if (!quoted.empty() && lengthOf(names[i], quoted, true) > 0) {
            text = behind;
            return i;
        }
        const size_t length = lengthOf(names[i], text, isWhole);
        if (length <= longest) continue;
        longest = length;
        found = i;
    }
    if (found) text = withoutBlanks(text.substr(longest));
    return found;
}

std::wstring takeWord(std::wstring_view& text) {
    const auto end = std::find_if(text.begin(), text.end(), isBlank);
    std::wstring word(text.begin(), end);
    text = withoutBlanks(text.substr(word.size()));
    return word;
}

std::wstring_view withoutColon(std::wstring_view label) {
    if (label.ends_with(L':')) label.remove_suffix(1);
    return label;
}

}  // namespace sg
