#include "host/jet/format/error.h"

#include <utility>

#include "base/encoding.h"
#include "host/jet/format/error_texts.h"

namespace sg::jet {

std::wstring errorText(int code, const std::vector<std::wstring>& names) {
    const wchar_t* form = errorTemplate(code);
    if (form == nullptr) {
        return L"Reserved error (" + std::to_wstring(code) + L").";
    }
    std::wstring text;
    for (const wchar_t* c = form; *c != L'\0'; ++c) {
        if (*c != L'|') {
            text += *c;
            continue;
        }
        size_t which = 0;
        if (c[1] >= L'1' && c[1] <= L'3') {
            which = static_cast<size_t>(c[1] - L'1');
            ++c;
        }
        if (which < names.size()) {
            text += names[which];
        }
    }
    return text;
}

Error::Error(int code, std::vector<std::wstring> names, ErrorPlace place)
    : code_(code),
      names_(std::move(names)),
      text_(errorText(code, names_)),
      place_(std::move(place)) {
    refresh();
}

void Error::addFile(std::wstring_view file) {
    if (place_.file.empty()) {
        place_.file = file;
        refresh();
    }
}

void Error::addTable(std::wstring_view table) {
    if (place_.table.empty()) {
        place_.table = table;
        refresh();
    }
}

void Error::addPage(uint32_t page) {
    if (!place_.page) {
        place_.page = page;
        refresh();
    }
}

std::wstring Error::describe() const {
    std::wstring line;
    if (!place_.file.empty()) {
        line += place_.file + L": ";
    }
    if (!place_.table.empty()) {
        line += L"table " + place_.table + L": ";
    }
    if (place_.page) {
        line += L"page " + std::to_wstring(*place_.page) + L": ";
    }
    line += text_;
    if (!place_.detail.empty()) {
        line += L" (" + place_.detail + L")";
    }
    return line;
}

void Error::refresh() {
    what_ = std::to_string(code_) + ": " + toUtf8(describe());
}

void throwDamaged(std::wstring detail) {
    throw Error(Damaged, {}, {.detail = std::move(detail)});
}

void throwDamaged(std::wstring detail, uint32_t page) {
    throw Error(Damaged, {}, {.page = page, .detail = std::move(detail)});
}

}  // namespace sg::jet
