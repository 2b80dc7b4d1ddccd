#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/win/registry.h"

namespace sg {

// A transaction in which keys are opened.
struct TransactionManager {
    void* transaction = nullptr;  // the system's handle
};

// An open key of the registry, closed with the object. All operations answer the system's codes,
// 0 on success.
class SettingsKey {
  public:
    // With a transaction manager, which is not owned, keys are opened in its transaction.
    explicit SettingsKey(TransactionManager* transactions = nullptr)
        : transactions_(transactions) {}
    SettingsKey(const SettingsKey&) = delete;
    SettingsKey& operator=(const SettingsKey&) = delete;
    ~SettingsKey() { Close(); }

    // Opens a key that exists, and closes the one that was open. On failure that one stays. In a
    // transaction the answer is ERROR_INVALID_FUNCTION on a system that knows none.
    int32_t Open(HKEY parent, const std::wstring& path, uint32_t access);
    int32_t Close();

    // A value of type REG_SZ or REG_EXPAND_SZ as it stands, up to its first zero. Any other type,
    // an odd number of bytes and a text that does not end with a zero are ERROR_INVALID_DATA; a
    // value without bytes is an empty text. `text` is empty on failure.
    int32_t QueryText(const std::wstring& name, std::wstring& text) const;
    // Stores a value of type REG_SZ.
    int32_t SetText(const std::wstring& name, std::wstring_view text);

    HKEY handle() const { return handle_; }
    // The view of the registry that the key was opened in: of its access mask the bits
    // KEY_WOW64_32KEY and KEY_WOW64_64KEY.
    uint32_t viewFlags() const { return viewFlags_; }

  private:
    int32_t openPlainOrTransacted(HKEY parent, const wchar_t* path, uint32_t access,
                                  HKEY& key) const;

    HKEY handle_ = nullptr;
    uint32_t viewFlags_ = 0;
    TransactionManager* const transactions_;
};

}  // namespace sg
