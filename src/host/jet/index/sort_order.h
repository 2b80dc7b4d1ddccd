#pragma once

#include <compare>
#include <cstdint>
#include <string_view>
#include <vector>

#include "base/export.h"

// Index keys of text. Two texts are equal to an index when their keys are, and keys compare byte by
// byte as the texts sort. What the bytes mean: docs/formats/jet_index.md.
namespace sg::jet {

using KeyBytes = std::vector<uint8_t>;

enum class TextOrder : uint8_t {
    General97,      // Jet 3: a weight for each character of code page 1252
    GeneralLegacy,  // Jet 4 and ACE up to 2007
    Unknown,        // any other: its keys can be neither compared with nor written
};

// Texts of this many UTF-16 units and more differ to an index only in these first ones.
inline constexpr size_t kIndexedTextUnits = 255;

// The order that a text column of a Jet 4 or ACE file names: a language identifier (0x0409 is the
// General order's; 0 stands for it in old files) and a version (0 up to ACE 2007, 1 since 2010).
SG_API TextOrder textOrder(uint16_t language, uint8_t version);

// Appends the key of `text`, end bytes included, in the form of an ascending or a descending
// column. Case and trailing blanks make no difference. Answers false and leaves `key` as it was
// when the order is Unknown or has no weight for a character of the text (surrogates, U+10000 and
// on).
SG_API bool appendTextKey(TextOrder order, std::wstring_view text, bool descending, KeyBytes& key);

// The order of two texts by their keys in GeneralLegacy, and where those end before the texts do or
// are not there by their capitals; a text without a key comes behind those that have one.
SG_API std::weak_ordering compareTexts(std::wstring_view a, std::wstring_view b);

}  // namespace sg::jet
