#pragma once

#include <string>
#include <vector>

namespace sg {

// What is known of an operation that failed.
struct FailureAccount {
    std::wstring operation;                // what was asked for; empty when nothing has failed
    std::wstring reason;                   // why it failed
    std::vector<std::wstring> transcript;  // what was said before, one line each
};

// Writes the account as an XML file, in place of one that is there. False when it cannot be
// written.
bool saveFailureAccount(const std::wstring& file, const FailureAccount& account);

}  // namespace sg
