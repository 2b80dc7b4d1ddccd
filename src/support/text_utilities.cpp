#include "support/text_utilities.h"

#include <algorithm>

#include "base/encoding.h"
#include "base/text.h"

namespace sg {
namespace {

// Texts sort by their 16-bit units.
bool sortsBehind(std::wstring_view a, std::wstring_view b) {
    return toUtf16(a) > toUtf16(b);
}

}  // namespace

std::wstring BuildFileFilter(std::wstring_view extensions) {
    std::wstring rest = std::wstring(extensions) + L";";
    std::wstring filter;
    for (size_t start = 0, end = 0; start < rest.size(); start = end + 1) {
        end = rest.find(L';', start);
        const std::wstring extension = rest.substr(start, end - start);
        filter += upperCased(extension) + L" Files (*." + extension + L")|*." + extension + L"|";
    }
    return filter;
}

std::wstring GetFileNamePart(std::wstring_view path) {
    size_t separator = path.rfind(L'\\');
    if (separator == std::wstring_view::npos) separator = path.rfind(L'/');
    if (separator == std::wstring_view::npos) return {};
    return std::wstring(path.substr(separator + 1));
}

int FindInStringArray(std::wstring_view text, const std::vector<std::wstring>& array) {
    const auto found = std::find(array.begin(), array.end(), text);
    return found != array.end() ? static_cast<int>(found - array.begin()) : -1;
}

std::list<std::wstring>::const_iterator FindInStringList(std::wstring_view text,
                                                         const std::list<std::wstring>& list) {
    return std::find(list.begin(), list.end(), text);
}

void InsertSorted(std::list<std::wstring>& list, std::wstring_view text) {
    text = trimmedRight(text);
    auto place = list.begin();
    for (auto each = list.begin(); each != list.end(); ++each) {
        const std::wstring_view entry = trimmedRight(*each);
        if (entry == text) return;
        if (sortsBehind(text, entry)) place = std::next(each);
    }
    list.emplace(place, text);
}

std::wstring AddThousandsSeparators(std::wstring_view text) {
    std::wstring out(text);
    const int first = text.starts_with(L'-') ? 1 : 0;
    const size_t point = std::min(text.rfind(L'.'), text.size());
    for (int place = static_cast<int>(point) - 3; place > first; place -= 3)
        out.insert(static_cast<size_t>(place), L",");
    return out;
}

}  // namespace sg
