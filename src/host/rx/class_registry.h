#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "host/rx/dictionary.h"
#include "platform/rx/rxclass.h"

// The registered run-time classes of one host, and the owner of their descriptors. AcRxObject and
// AcRxClass are registered from the start.
//
// A class keeps its descriptor in a static member, which outlives the registry, and isA() and
// cast() of any object read it. So the memory of a descriptor that is deleted, or whose registry
// ends, stays valid: it is emptied, put aside for the process, and used again when a class of the
// same name is registered next.
class AcRxClassRegistry {
  public:
    AcRxClassRegistry();
    AcRxClassRegistry(const AcRxClassRegistry&) = delete;
    AcRxClassRegistry& operator=(const AcRxClassRegistry&) = delete;
    ~AcRxClassRegistry();

    // What newAcRxClass does. Null for an empty name. Null names of parent, file and application
    // count as empty.
    AcRxClass* newClass(const wchar_t* name, const wchar_t* parentName, int proxyFlags = 0,
                        AcRxClass::Constructor constructor = nullptr,
                        const wchar_t* dxfName = nullptr, const wchar_t* appName = nullptr,
                        int version = 0);
    // Of a class that is new; one that was registered already keeps what it has.
    AcRxClass* newClass(const wchar_t* name, const wchar_t* parentName, int dwgVersion,
                        int maintenanceVersion, int proxyFlags, AcRxClass::Constructor constructor,
                        const wchar_t* dxfName, const wchar_t* appName,
                        AcRxClass::AppNameChange changeAppName);

    // What deleteAcRxClass does. Classes below it lose their parent, other classes the extension
    // for this protocol. No effect for null and for a descriptor that is not registered here.
    void deleteClass(AcRxClass* descriptor);

    // Links every class to its parent. A class whose parent is not registered, and one whose
    // parents form a circle, stays without.
    void buildHierarchy();

    AcRxClass* find(std::wstring_view name) const;  // null when there is none
    // The same, of several with the name the first registered; "" finds nothing.
    AcRxClass* findByDxfName(std::wstring_view name) const;
    AcRxDictionary& dictionary() { return dictionary_; }  // the descriptors by name

  private:
    static void retire(std::unique_ptr<AcRxClass> descriptor);

    std::map<std::wstring, std::unique_ptr<AcRxClass>, std::less<>> classes_;
    std::multimap<std::wstring, AcRxClass*, std::less<>> byDxfName_;  // those that have one
    sg::Dictionary dictionary_;                                       // mirrors classes_
};
