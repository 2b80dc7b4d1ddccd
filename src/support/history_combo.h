#pragma once

#include <string>
#include <vector>

namespace sg {

// What a field with a list of earlier answers remembers. The texts are kept in a section of the
// application's profile, one value each: the prefix and four digits, from 0 on, the latest first;
// the value "Last" has the last text.
class CHistoryCombo {
  public:
    static constexpr size_t kMostItems = 50;

    CHistoryCombo(std::wstring section, std::wstring prefix)
        : section_(std::move(section)), prefix_(std::move(prefix)) {}

    // Reads the profile, up to the first value that is missing or empty.
    void LoadHistory();
    // Puts a text at the head of the list, where it is once, and writes the profile.
    void SaveHistory(const std::wstring& text);

    const std::vector<std::wstring>& items() const { return items_; }
    // What the field shows at first: the first item, or nothing.
    std::wstring text() const { return items_.empty() ? std::wstring() : items_.front(); }

  private:
    std::wstring entry(size_t number) const;

    const std::wstring section_;
    const std::wstring prefix_;
    std::vector<std::wstring> items_;
};

}  // namespace sg
