#include "host/rx/dictionary.h"

#include <utility>

namespace sg {

AcRxObject* Dictionary::at(const wchar_t* key) const {
    if (key == nullptr) return nullptr;
    const auto found = objects_.find(std::wstring_view(key));
    return found != objects_.end() ? found->second : nullptr;
}

AcRxObject* Dictionary::atPut(const wchar_t* key, AcRxObject* object) {
    if (key == nullptr) return nullptr;
    return std::exchange(objects_[key], object);
}

AcRxObject* Dictionary::remove(const wchar_t* key) {
    if (key == nullptr) return nullptr;
    const auto found = objects_.find(std::wstring_view(key));
    if (found == objects_.end()) return nullptr;
    AcRxObject* const object = found->second;
    objects_.erase(found);
    return object;
}

void Dictionary::forEach(
    const std::function<void(const wchar_t* key, AcRxObject* object)>& visit) const {
    const auto entries = objects_;
    for (const auto& [key, object] : entries)
        visit(key.c_str(), object);
}

SystemRegistry::SystemRegistry(AcRxDictionary& classes) : classes_(classes) {
    root_.atPut(L"ClassDictionary", &classes_);
    root_.atPut(L"ServiceDictionary", &services_);
}

}  // namespace sg
