#pragma once

#include <map>
#include <string>

#include "base/export.h"
#include "platform/rx/rxobject.h"

// The descriptor of a run-time class. Descriptors are owned by the class dictionary.
class SG_API AcRxClass : public AcRxObject {
  public:
    using Constructor = AcRxObject* (*)();
    // Called before a drawing of a release is written; may change the application's text in it.
    using AppNameChange = void (*)(const AcRxClass* descriptor, std::wstring& appName, int release);

    const wchar_t* name() const { return name_.c_str(); }
    const wchar_t* dxfName() const { return dxfName_.c_str(); }  // empty: not filed
    const wchar_t* appName() const { return appName_.c_str(); }  // the application that brings it
    const wchar_t* parentName() const { return parentName_.c_str(); }
    int proxyFlags() const { return proxyFlags_; }
    int version() const { return version_; }
    // The first release of drawing files, and its maintenance release, that have objects of the
    // class; 0 for a class that came without them.
    void getClassVersion(int& dwgVersion, int& maintenanceVersion) const {
        dwgVersion = dwgVersion_;
        maintenanceVersion = maintenanceVersion_;
    }
    std::wstring appNameFor(int release) const;

    // The parent descriptor; null for the root, and until acrxBuildClassHierarchy.
    AcRxClass* myParent() const { return parent_; }
    bool isDerivedFrom(const AcRxClass* ancestor) const;

    // A new object of the class, or null for a class that cannot be instantiated.
    AcRxObject* create() const { return construct_ ? construct_() : nullptr; }

    // Protocol extensions: one object for each protocol class. addX answers what stood there
    // before; delX takes it away and answers it. The caller owns the objects.
    AcRxObject* addX(AcRxClass* protocol, AcRxObject* extension);
    AcRxObject* delX(AcRxClass* protocol);
    AcRxObject* getX(const AcRxClass* protocol) const;    // of this class only
    AcRxObject* queryX(const AcRxClass* protocol) const;  // of this class or an ancestor

    static AcRxClass* desc();
    AcRxClass* isA() const override;

  private:
    friend class AcRxClassRegistry;
    std::wstring name_, parentName_, dxfName_, appName_;
    int proxyFlags_ = 0;
    int version_ = 0;
    int dwgVersion_ = 0;
    int maintenanceVersion_ = 0;
    AppNameChange changeAppName_ = nullptr;
    Constructor construct_ = nullptr;
    AcRxClass* parent_ = nullptr;
    std::map<const AcRxClass*, AcRxObject*> extensions_;
    static AcRxClass* descriptor_;
};

// Registers a class under its name and answers its descriptor; a class registered under the name
// already is answered unchanged.
SG_API AcRxClass* newAcRxClass(const wchar_t* name, const wchar_t* parentName, int proxyFlags = 0,
                               AcRxClass::Constructor constructor = nullptr,
                               const wchar_t* dxfName = nullptr, const wchar_t* appName = nullptr,
                               int version = 0);

// The same for a class of an application whose objects go into drawing files.
SG_API AcRxClass* newAcRxClass(const wchar_t* name, const wchar_t* parentName, int dwgVersion,
                               int maintenanceVersion, int proxyFlags,
                               AcRxClass::Constructor constructor, const wchar_t* dxfName,
                               const wchar_t* appName,
                               AcRxClass::AppNameChange changeAppName = nullptr);

using AppNameChangeFuncPtr = AcRxClass::AppNameChange;

// Takes a class out of the dictionary and destroys its descriptor.
SG_API void deleteAcRxClass(AcRxClass* descriptor);

// Links every registered class to its parent. Call it after registering classes.
SG_API void acrxBuildClassHierarchy();

// Members of a class with run-time type information.
#define ACRX_DECLARE_MEMBERS(CLASS)                                        \
    static AcRxClass* desc() {                                             \
        return descriptor_;                                                \
    }                                                                      \
    AcRxClass* isA() const override {                                      \
        return descriptor_;                                                \
    }                                                                      \
    static CLASS* cast(const AcRxObject* object) {                         \
        return object != nullptr && object->isKindOf(descriptor_)          \
                   ? const_cast<CLASS*>(static_cast<const CLASS*>(object)) \
                   : nullptr;                                              \
    }                                                                      \
    static void rxInit();                                                  \
                                                                           \
  private:                                                                 \
    static AcRxClass* descriptor_;                                         \
                                                                           \
  public:

// Defines them for a class that has no instances of its own.
#define ACRX_NO_CONS_DEFINE_MEMBERS(CLASS, PARENT)           \
    AcRxClass* CLASS::descriptor_ = nullptr;                 \
    void CLASS::rxInit() {                                   \
        descriptor_ = newAcRxClass(L## #CLASS, L## #PARENT); \
    }

// Defines them for a class that `create` can instantiate.
#define ACRX_CONS_DEFINE_MEMBERS(CLASS, PARENT, VERSION)                                     \
    AcRxClass* CLASS::descriptor_ = nullptr;                                                 \
    void CLASS::rxInit() {                                                                   \
        descriptor_ = newAcRxClass(                                                          \
            L## #CLASS, L## #PARENT, 0, +[]() -> AcRxObject* { return new CLASS; }, nullptr, \
            nullptr, VERSION);                                                               \
    }

// The same for a class that drawing files name: its DXF name, and for a class of an application
// that application's text.
#define ACRX_DXF_DEFINE_MEMBERS(CLASS, PARENT, VERSION, PROXY_FLAGS, DXF_NAME, APPLICATION)   \
    AcRxClass* CLASS::descriptor_ = nullptr;                                                  \
    void CLASS::rxInit() {                                                                    \
        descriptor_ = newAcRxClass(                                                           \
            L## #CLASS, L## #PARENT, PROXY_FLAGS, +[]() -> AcRxObject* { return new CLASS; }, \
            DXF_NAME, APPLICATION, VERSION);                                                  \
    }
