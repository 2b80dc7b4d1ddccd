#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The product's settings: texts in sections of the user's registry, below
// "Software\Quillon Software\". Nothing is kept in memory: each call goes to the registry.
namespace sg {

// The stored text; empty when the section or the value is missing or is no text.
std::wstring GetRegistryText(std::wstring_view section, const std::wstring& valueName);

// Stores a text in a section that exists (the installer makes them). Answers the system's code, 0
// on success.
int32_t SetRegistryText(std::wstring_view text, const std::wstring& valueName,
                        std::wstring_view section);

// The product's folder for temporary files, which is made when it is not there, with "/" at its
// end. False, and an empty text, when there is none and it cannot be made.
bool GetTempFolder(std::wstring& folder);

}  // namespace sg
