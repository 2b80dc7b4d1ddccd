#include "host/editor/prompts/keywords.h"

#include <algorithm>

#include "base/text.h"

namespace sg {
namespace {

// Digits and signs are capitals as well.
bool isCapital(wchar_t c) {
    return upperCased({&c, 1})[0] == c;
}

}  // namespace

// The first run of capitals is required. A word without any, and one of capitals only, is required
// whole.
Keywords::Word Keywords::wordOf(std::wstring_view text) {
    const size_t comma = text.find(L',');
    if (comma != std::wstring_view::npos) {
        const std::wstring_view required = text.substr(comma + 1);
        const std::wstring_view whole = text.substr(0, comma);
        return {std::wstring(whole), std::wstring(required.empty() ? whole : required)};
    }
    const auto first = std::find_if(text.begin(), text.end(), isCapital);
    const auto end = std::find_if_not(first, text.end(), isCapital);
    return {std::wstring(text),
            first == text.end() ? std::wstring(text) : std::wstring(first, end)};
}

// The required part alone, or the start of the word as long as the required part is in it.
bool Keywords::Word::matches(std::wstring_view typed) const {
    if (equalIgnoringCase(typed, required) || equalIgnoringCase(typed, whole)) return true;
    if (typed.size() > whole.size()) return false;
    if (!equalIgnoringCase(std::wstring_view(whole).substr(0, typed.size()), typed)) return false;
    const std::wstring upper = upperCased(whole);
    const size_t at = std::min(whole.find(required), upper.find(upperCased(required)));
    return at != std::wstring::npos && typed.size() >= at + required.size();
}

Keywords::Keywords(std::wstring_view text) {
    bool global = false;
    for (size_t at = 0; at < text.size();) {
        if (isBlank(text[at])) {
            ++at;
            continue;
        }
        const auto begin = text.begin() + static_cast<std::ptrdiff_t>(at);
        const auto end = std::find_if(begin, text.end(), isBlank);
        std::wstring_view word(begin, end);
        at += word.size();
        if (word.starts_with(L'_') && word.size() > 1) {
            global = true;
            word.remove_prefix(1);
        }
        (global ? global_ : all_).push_back(wordOf(word));
    }
    if (all_.empty()) all_.swap(global_);
    for (size_t i = global_.size(); i < all_.size(); ++i)
        global_.push_back(all_[i]);
}

std::optional<size_t> Keywords::findPlace(std::wstring_view typed) const {
    const bool onlyGlobal = typed.starts_with(L'_') && typed.size() > 1;
    if (onlyGlobal) typed.remove_prefix(1);
    if (typed.empty()) return std::nullopt;
    for (size_t i = 0; i < all_.size(); ++i) {
        if ((onlyGlobal ? global_ : all_)[i].matches(typed)) return i;
    }
    return std::nullopt;
}

std::optional<std::wstring> Keywords::find(std::wstring_view typed) const {
    const std::optional<size_t> place = findPlace(typed);
    return place ? std::optional(global_[*place].whole) : std::nullopt;
}

std::wstring Keywords::shown() const {
    std::wstring text;
    for (const Word& word : all_)
        text += (text.empty() ? L"" : L"/") + word.whole;
    return text;
}

}  // namespace sg
