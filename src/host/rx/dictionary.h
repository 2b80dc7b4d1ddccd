#pragma once

#include <functional>
#include <map>
#include <string>

#include "platform/rx/rxdictionary.h"

namespace sg {

// A dictionary in memory, walked in the order of its keys. It owns none of its objects.
class Dictionary : public AcRxDictionary {
  public:
    AcRxObject* at(const wchar_t* key) const override;  // null also for a null key
    AcRxObject* atPut(const wchar_t* key, AcRxObject* object) override;
    AcRxObject* remove(const wchar_t* key) override;
    size_t numEntries() const override { return objects_.size(); }
    // `visit` may change the dictionary: it sees the entries as they were at the start.
    void forEach(
        const std::function<void(const wchar_t* key, AcRxObject* object)>& visit) const override;

  private:
    std::map<std::wstring, AcRxObject*, std::less<>> objects_;
};

// The dictionary that acrxSysRegistry answers. "ClassDictionary" is the one it is made with,
// "ServiceDictionary" its own.
class SystemRegistry {
  public:
    explicit SystemRegistry(AcRxDictionary& classes);

    AcRxDictionary* root() { return &root_; }
    AcRxDictionary* classes() { return &classes_; }
    AcRxDictionary* services() { return &services_; }

  private:
    AcRxDictionary& classes_;
    Dictionary services_;
    Dictionary root_;
};

}  // namespace sg
