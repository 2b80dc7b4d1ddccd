#include "platform/rx/rxobject.h"

#include <new>

#include "platform/rx/rxclass.h"

AcRxClass* AcRxObject::descriptor_ = nullptr;
AcRxClass* AcRxClass::descriptor_ = nullptr;

AcRxClass* AcRxObject::desc() {
    return descriptor_;
}
AcRxClass* AcRxObject::isA() const {
    return descriptor_;
}
void AcRxObject::rxInit() {
    descriptor_ = newAcRxClass(L"AcRxObject", nullptr);
}

bool AcRxObject::isKindOf(const AcRxClass* ancestor) const {
    const AcRxClass* const own = isA();
    return own != nullptr && own->isDerivedFrom(ancestor);
}

AcRxObject* AcRxObject::queryX(const AcRxClass* protocol) const {
    const AcRxClass* const own = isA();
    return own != nullptr ? own->queryX(protocol) : nullptr;
}

AcRxClass* AcRxClass::desc() {
    return descriptor_;
}
AcRxClass* AcRxClass::isA() const {
    return descriptor_;
}

bool AcRxClass::isDerivedFrom(const AcRxClass* ancestor) const {
    if (ancestor == nullptr) return false;
    for (const AcRxClass* each = this; each != nullptr; each = each->parent_) {
        if (each == ancestor) return true;
    }
    return false;
}

std::wstring AcRxClass::appNameFor(int release) const {
    std::wstring appName = appName_;
    if (changeAppName_ != nullptr) changeAppName_(this, appName, release);
    return appName;
}

AcRxObject* AcRxClass::addX(AcRxClass* protocol, AcRxObject* extension) {
    AcRxObject*& place = extensions_[protocol];
    AcRxObject* const before = place;
    place = extension;
    return before;
}

AcRxObject* AcRxClass::delX(AcRxClass* protocol) {
    const auto found = extensions_.find(protocol);
    if (found == extensions_.end()) return nullptr;
    AcRxObject* const before = found->second;
    extensions_.erase(found);
    return before;
}

AcRxObject* AcRxClass::getX(const AcRxClass* protocol) const {
    const auto found = extensions_.find(protocol);
    return found != extensions_.end() ? found->second : nullptr;
}

AcRxObject* AcRxClass::queryX(const AcRxClass* protocol) const {
    for (const AcRxClass* each = this; each != nullptr; each = each->parent_) {
        if (AcRxObject* const extension = each->getX(protocol)) return extension;
    }
    return nullptr;
}

void* acHeapAlloc(void*, size_t bytes) {
    return ::operator new(bytes);
}
void acHeapFree(void*, void* memory) {
    ::operator delete(memory);
}
