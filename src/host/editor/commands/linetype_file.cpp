#include "host/editor/commands/linetype_file.h"

#include <algorithm>
#include <cwchar>
#include <optional>

#include "base/text.h"

namespace sg {
namespace {

constexpr std::wstring_view kStandard =
    L"*BORDER,Border __ __ . __ __ . __ __ . __ __ . __ __ .\nA,.5,-.25,.5,-.25,0,-.25\n"
    L"*BORDER2,Border (.5x)\nA,.25,-.125,.25,-.125,0,-.125\n"
    L"*BORDERX2,Border (2x)\nA,1,-.5,1,-.5,0,-.5\n"
    L"*CENTER,Center ____ _ ____ _ ____ _ ____ _ ____ _ ____\nA,1.25,-.25,.25,-.25\n"
    L"*CENTER2,Center (.5x)\nA,.75,-.125,.125,-.125\n"
    L"*CENTERX2,Center (2x)\nA,2.5,-.5,.5,-.5\n"
    L"*DASHDOT,Dash dot __ . __ . __ . __ . __ . __ . __ . __\nA,.5,-.25,0,-.25\n"
    L"*DASHDOT2,Dash dot (.5x)\nA,.25,-.125,0,-.125\n"
    L"*DASHDOTX2,Dash dot (2x)\nA,1,-.5,0,-.5\n"
    L"*DASHED,Dashed __ __ __ __ __ __ __ __ __ __ __ __ __ _\nA,.5,-.25\n"
    L"*DASHED2,Dashed (.5x)\nA,.25,-.125\n"
    L"*DASHEDX2,Dashed (2x)\nA,1,-.5\n"
    L"*DIVIDE,Divide ____ . . ____ . . ____ . . ____ . . ____\nA,.5,-.25,0,-.25,0,-.25\n"
    L"*DIVIDE2,Divide (.5x)\nA,.25,-.125,0,-.125,0,-.125\n"
    L"*DIVIDEX2,Divide (2x)\nA,1,-.5,0,-.5,0,-.5\n"
    L"*DOT,Dot . . . . . . . . . . . . . . . . . . . . . . . .\nA,0,-.25\n"
    L"*DOT2,Dot (.5x)\nA,0,-.125\n"
    L"*DOTX2,Dot (2x)\nA,0,-.5\n"
    L"*HIDDEN,Hidden __ __ __ __ __ __ __ __ __ __ __ __ __ __\nA,.25,-.125\n"
    L"*HIDDEN2,Hidden (.5x)\nA,.125,-.0625\n"
    L"*HIDDENX2,Hidden (2x)\nA,.5,-.25\n"
    L"*PHANTOM,Phantom ______  __  __  ______  __  __  ______\nA,1.25,-.25,.25,-.25,.25,-.25\n"
    L"*PHANTOM2,Phantom (.5x)\nA,.625,-.125,.125,-.125,.125,-.125\n"
    L"*PHANTOMX2,Phantom (2x)\nA,2.5,-.5,.5,-.5,.5,-.5\n";

std::wstring_view withoutComment(std::wstring_view line) {
    return trimmed(line.substr(0, line.find(L';')));
}

// The numbers behind "A,"; nullopt when there is anything else.
std::optional<std::vector<double>> dashesOf(std::wstring_view line) {
    std::vector<double> dashes;
    if (!equalIgnoringCase(line.substr(0, 2), L"A,")) return std::nullopt;
    line.remove_prefix(2);
    while (!line.empty()) {
        const size_t comma = std::min(line.find(L','), line.size());
        const std::wstring number(trimmed(line.substr(0, comma)));
        wchar_t* end = nullptr;
        const double length = std::wcstod(number.c_str(), &end);
        if (number.empty() || *end != 0) return std::nullopt;
        dashes.push_back(length);
        line.remove_prefix(std::min(comma + 1, line.size()));
    }
    constexpr size_t kMost = 12;
    const bool fits = dashes.size() >= 2 && dashes.size() <= kMost && dashes.front() >= 0;
    return fits ? std::optional(std::move(dashes)) : std::nullopt;
}

}  // namespace

std::wstring_view standardLinetypes() {
    return kStandard;
}

std::vector<LinetypeDescription> parseLinetypes(std::wstring_view content,
                                                std::vector<std::wstring>& problems) {
    std::vector<LinetypeDescription> all;
    LinetypeDescription next;
    while (!content.empty()) {
        const size_t end = std::min(content.find(L'\n'), content.size());
        const std::wstring_view line = withoutComment(content.substr(0, end));
        content.remove_prefix(std::min(end + 1, content.size()));
        if (line.empty()) continue;
        if (line.front() == L'*') {
            const size_t comma = line.find(L',');
            next = {std::wstring(trimmed(line.substr(1, comma == line.npos ? comma : comma - 1))),
                    comma == line.npos ? L"" : std::wstring(trimmed(line.substr(comma + 1))),
                    {}};
            continue;
        }
        if (next.name.empty()) continue;
        if (auto dashes = dashesOf(line)) {
            next.dashes = std::move(*dashes);
            all.push_back(next);
        } else {
            problems.push_back(L"Linetype \"" + next.name + L"\" is not a simple one: " +
                               std::wstring(line));
        }
        next = {};
    }
    return all;
}

}  // namespace sg
