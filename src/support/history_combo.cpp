#include "support/history_combo.h"

#include <algorithm>
#include <cwchar>

#include "platform/win/profile.h"

namespace sg {
namespace {

constexpr size_t kEntries = 1000;  // that the section may have, from other versions too

}  // namespace

std::wstring CHistoryCombo::entry(size_t number) const {
    wchar_t digits[8];
    std::swprintf(digits, std::size(digits), L"%04u", static_cast<unsigned>(number));
    return prefix_ + digits;
}

void CHistoryCombo::LoadHistory() {
    items_.clear();
    while (items_.size() < kMostItems) {
        std::wstring item =
            AfxGetApp()->GetProfileString(section_.c_str(), entry(items_.size()).c_str());
        if (item.empty()) break;
        items_.push_back(std::move(item));
    }
}

void CHistoryCombo::SaveHistory(const std::wstring& text) {
    std::erase(items_, text);
    items_.insert(items_.begin(), text);
    if (items_.size() > kMostItems) items_.resize(kMostItems);
    CWinApp& profile = *AfxGetApp();
    for (size_t i = 0; i < items_.size(); ++i)
        profile.WriteProfileString(section_.c_str(), entry(i).c_str(), items_[i].c_str());
    for (size_t i = items_.size(); i < kEntries; ++i) {
        const std::wstring left = entry(i);
        if (profile.GetProfileString(section_.c_str(), left.c_str()).empty()) break;
        profile.WriteProfileString(section_.c_str(), left.c_str(), nullptr);
    }
    profile.WriteProfileString(section_.c_str(), L"Last", text.c_str());
}

}  // namespace sg
