#pragma once

#include <cstddef>

#include "base/export.h"

class AcRxClass;

// The root of every class with run-time type information. Such a class declares
// ACRX_DECLARE_MEMBERS and is registered by its rxInit() followed by acrxBuildClassHierarchy().
class SG_API AcRxObject {
  public:
    virtual ~AcRxObject() = default;

    // The class descriptor; null until the class has been registered.
    static AcRxClass* desc();
    virtual AcRxClass* isA() const;

    // True when this object's class is `ancestor` or derives from it.
    bool isKindOf(const AcRxClass* ancestor) const;

    // The protocol extension that this object's class, or its nearest ancestor that has one, offers
    // for `protocol`; null when none does.
    AcRxObject* queryX(const AcRxClass* protocol) const;

    static void rxInit();

  protected:
    AcRxObject() = default;
    AcRxObject(const AcRxObject&) = default;
    AcRxObject& operator=(const AcRxObject&) = default;

  private:
    static AcRxClass* descriptor_;
};

// Memory from the host's heap, for objects that the host may free. acHeapAlloc never answers null:
// it throws std::bad_alloc.
SG_API void* acHeapAlloc(void* heap, size_t bytes);
SG_API void acHeapFree(void* heap, void* memory);
