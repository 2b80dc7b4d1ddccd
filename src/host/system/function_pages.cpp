#include "host/system/function_pages.h"

#include <algorithm>
#include <utility>

#include "base/encoding.h"
#include "base/text.h"
#include "host/system/files.h"
#include "host/system/paths.h"

namespace sg {
namespace {

// The texts between backquotes.
std::vector<std::wstring> quotedNames(std::wstring_view heading) {
    std::vector<std::wstring> names;
    for (;;) {
        const size_t open = heading.find(L'`');
        if (open == std::wstring_view::npos) return names;
        const size_t close = heading.find(L'`', open + 1);
        if (close == std::wstring_view::npos) return names;
        if (close > open + 1) names.emplace_back(heading.substr(open + 1, close - open - 1));
        heading.remove_prefix(close + 1);
    }
}

void trimBlankLines(std::wstring& text) {
    text.erase(0, std::min(text.find_first_not_of(L"\r\n"), text.size()));
    text.resize(trimmedRight(text).size());
}

// caar, cddr and so on share the page of cdr.
bool isCombination(std::wstring_view name) {
    if (name.size() < 4 || name.size() > 6) return false;
    return toLower(name.front()) == L'c' && toLower(name.back()) == L'r' &&
           name.substr(1, name.size() - 2).find_first_not_of(L"adAD") == std::wstring_view::npos;
}

}  // namespace

FunctionPages FunctionPages::read(const std::wstring& folder) {
    FunctionPages pages;
    pages.folder_ = folder;
    for (const std::wstring& name : listFolder(folder, L"*.md", ListedEntries::filesOnly)) {
        const auto bytes = readFile(joinPath(folder, name));
        if (bytes) pages.add(name.substr(0, name.size() - 3), decodeTextFile(*bytes));
    }
    return pages;
}

void FunctionPages::add(const std::wstring& file, std::wstring_view text) {
    Family family{file, file, {}};
    bool inSection = false;
    bool fenced = false;  // between ``` lines, where "#" begins no heading
    while (!text.empty()) {
        const size_t end = std::min(text.find(L'\n'), text.size());
        const std::wstring_view line = trimmedRight(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.starts_with(L"```")) fenced = !fenced;
        const size_t marks = std::min(line.find_first_not_of(L'#'), line.size());
        if (!fenced && marks > 0 && marks < line.size() && line[marks] == L' ') {
            if (marks == 1) family.title = trimmed(line.substr(marks));
            if (marks <= 3) inSection = marks == 3;
            if (marks == 3) family.sections.push_back({quotedNames(line), {}});
            if (marks <= 3) continue;
        }
        const bool isPicture = !fenced && line.starts_with(L"![");
        if (inSection && !isPicture) family.sections.back().text += std::wstring(line) + L'\n';
    }
    for (Section& section : family.sections)
        trimBlankLines(section.text);
    std::erase_if(family.sections, [](const Section& section) { return section.names.empty(); });
    if (!family.sections.empty()) families_.push_back(std::move(family));
}

std::optional<FunctionPages::Found> FunctionPages::find(std::wstring_view name) const {
    if (isCombination(name)) name = L"cdr";
    for (const Family& family : families_) {
        for (const Section& section : family.sections) {
            for (const std::wstring& one : section.names) {
                if (equalIgnoringCase(one, name)) return Found{&family, &section};
            }
        }
    }
    return std::nullopt;
}

std::wstring FunctionPages::fileOf(std::wstring_view topic) const {
    const auto path = [&](const Family& family) { return joinPath(folder_, family.file + L".md"); };
    if (const auto found = find(topic)) return path(*found->family);
    std::wstring_view name = lastComponent(topic);
    name = name.substr(0, name.find(L'#'));
    name = name.substr(0, name.rfind(L'.'));
    if (const auto found = find(name)) return path(*found->family);
    for (const Family& family : families_) {
        if (equalIgnoringCase(family.file, name)) return path(family);
    }
    return {};
}

}  // namespace sg
