#pragma once

#include <list>
#include <string>
#include <string_view>
#include <vector>

// Small operations on texts and lists of texts that the dialogs share. All comparisons are exact.
namespace sg {

// The filter of a file chooser from extensions separated by ";": "dwg;qn" gives
// "DWG Files (*.dwg)|*.dwg|QN Files (*.qn)|*.qn|".
std::wstring BuildFileFilter(std::wstring_view extensions);

// What follows the last "\", or without one the last "/"; empty when there is neither.
std::wstring GetFileNamePart(std::wstring_view path);

// The index of the first equal text, or -1.
int FindInStringArray(std::wstring_view text, const std::vector<std::wstring>& array);

// The place of the first equal text, or the end.
std::list<std::wstring>::const_iterator FindInStringList(std::wstring_view text,
                                                         const std::list<std::wstring>& list);

// Puts `text`, without the blanks at its end, behind the last text of the list that it sorts
// behind, or at the list's head. Nothing is added when it is there already. Blanks at the ends of
// the list's texts do not count.
void InsertSorted(std::list<std::wstring>& list, std::wstring_view text);

// "1234567.891" gives "1,234,567.891": commas between each three digits of a decimal number in
// front of its last point.
std::wstring AddThousandsSeparators(std::wstring_view text);

}  // namespace sg
