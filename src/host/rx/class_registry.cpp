#include "host/rx/class_registry.h"

#include <vector>

namespace {

// Descriptors without a registry, by name. Several, where hosts of one process had the same class
// at the same time.
using Retired = std::map<std::wstring, std::vector<std::unique_ptr<AcRxClass>>, std::less<>>;

Retired& retired() {
    static Retired descriptors;
    return descriptors;
}

std::wstring text(const wchar_t* value) {
    return value != nullptr ? value : L"";
}

std::unique_ptr<AcRxClass> emptyDescriptor(const std::wstring& name) {
    const auto found = retired().find(name);
    if (found == retired().end() || found->second.empty()) return std::make_unique<AcRxClass>();
    auto descriptor = std::move(found->second.back());
    found->second.pop_back();
    return descriptor;
}

}  // namespace

AcRxClassRegistry::AcRxClassRegistry() {
    newClass(L"AcRxObject", nullptr);
    AcRxClass::descriptor_ = newClass(L"AcRxClass", L"AcRxObject");
    buildHierarchy();
}

AcRxClassRegistry::~AcRxClassRegistry() {
    for (auto& [name, descriptor] : classes_)
        retire(std::move(descriptor));
}

void AcRxClassRegistry::retire(std::unique_ptr<AcRxClass> descriptor) {
    const std::wstring name = descriptor->name_;
    descriptor->parentName_.clear();
    descriptor->dxfName_.clear();
    descriptor->appName_.clear();
    descriptor->proxyFlags_ = 0;
    descriptor->version_ = 0;
    descriptor->dwgVersion_ = descriptor->maintenanceVersion_ = 0;
    descriptor->changeAppName_ = nullptr;
    descriptor->construct_ = nullptr;
    descriptor->parent_ = nullptr;
    descriptor->extensions_.clear();
    retired()[name].push_back(std::move(descriptor));
}

AcRxClass* AcRxClassRegistry::newClass(const wchar_t* name, const wchar_t* parentName,
                                       int proxyFlags, AcRxClass::Constructor constructor,
                                       const wchar_t* dxfName, const wchar_t* appName,
                                       int version) {
    if (name == nullptr || *name == L'\0') return nullptr;
    if (AcRxClass* const registered = find(name)) return registered;
    auto descriptor = emptyDescriptor(name);
    descriptor->name_ = name;
    descriptor->parentName_ = text(parentName);
    descriptor->dxfName_ = text(dxfName);
    descriptor->appName_ = text(appName);
    descriptor->proxyFlags_ = proxyFlags;
    descriptor->version_ = version;
    descriptor->construct_ = constructor;
    if (!descriptor->dxfName_.empty()) byDxfName_.emplace(descriptor->dxfName_, descriptor.get());
    dictionary_.atPut(name, descriptor.get());
    return (classes_[name] = std::move(descriptor)).get();
}

AcRxClass* AcRxClassRegistry::newClass(const wchar_t* name, const wchar_t* parentName,
                                       int dwgVersion, int maintenanceVersion, int proxyFlags,
                                       AcRxClass::Constructor constructor, const wchar_t* dxfName,
                                       const wchar_t* appName,
                                       AcRxClass::AppNameChange changeAppName) {
    if (name != nullptr && find(name) != nullptr) return find(name);
    AcRxClass* const made = newClass(name, parentName, proxyFlags, constructor, dxfName, appName);
    if (made == nullptr) return nullptr;
    made->dwgVersion_ = dwgVersion;
    made->maintenanceVersion_ = maintenanceVersion;
    made->changeAppName_ = changeAppName;
    return made;
}

void AcRxClassRegistry::deleteClass(AcRxClass* descriptor) {
    if (descriptor == nullptr) return;
    const auto found = classes_.find(std::wstring_view(descriptor->name_));
    if (found == classes_.end() || found->second.get() != descriptor) return;
    for (const auto& [name, each] : classes_) {
        if (each->parent_ == descriptor) each->parent_ = nullptr;
        each->extensions_.erase(descriptor);
    }
    std::erase_if(byDxfName_, [&](const auto& entry) { return entry.second == descriptor; });
    dictionary_.remove(descriptor->name());
    auto owned = std::move(found->second);
    classes_.erase(found);
    retire(std::move(owned));
}

void AcRxClassRegistry::buildHierarchy() {
    for (const auto& [name, each] : classes_)
        each->parent_ = nullptr;
    for (const auto& [name, each] : classes_) {
        AcRxClass* const parent = find(each->parentName_);
        // The links made so far contain no circle, so that this walk ends.
        if (parent != nullptr && !parent->isDerivedFrom(each.get())) each->parent_ = parent;
    }
}

AcRxClass* AcRxClassRegistry::find(std::wstring_view name) const {
    const auto found = classes_.find(name);
    return found != classes_.end() ? found->second.get() : nullptr;
}

AcRxClass* AcRxClassRegistry::findByDxfName(std::wstring_view name) const {
    const auto found = byDxfName_.lower_bound(name);
    return found != byDxfName_.end() && found->first == name ? found->second : nullptr;
}
