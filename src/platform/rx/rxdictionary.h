#pragma once

#include <functional>

#include "base/export.h"
#include "platform/rx/rxobject.h"

// A dictionary of objects by name; names compare exactly. It does not own its objects unless they
// are dictionaries that the host put there.
class SG_API AcRxDictionary : public AcRxObject {
  public:
    // The object under `key`; null when there is none.
    virtual AcRxObject* at(const wchar_t* key) const = 0;
    // Stores `object` under `key` and answers what stood there before.
    virtual AcRxObject* atPut(const wchar_t* key, AcRxObject* object) = 0;
    // Takes `key` away and answers its object.
    virtual AcRxObject* remove(const wchar_t* key) = 0;
    virtual size_t numEntries() const = 0;
    virtual void forEach(
        const std::function<void(const wchar_t* key, AcRxObject* object)>& visit) const = 0;
};

// The system registry: "ClassDictionary" holds the descriptors of all registered classes,
// "ServiceDictionary" what modules offer each other, "AcEditor" the editor.
SG_API AcRxDictionary* acrxSysRegistry();
SG_API AcRxDictionary* acrxClassDictionary();
SG_API AcRxDictionary* acrxServiceDictionary();
