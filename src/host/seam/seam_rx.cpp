#include "host/editor/command_line_output.h"
#include "host/model/core/proxies.h"
#include "host/rx/class_registry.h"
#include "host/rx/dictionary.h"
#include "host/rx/module_loader.h"
#include "host/seam/host.h"
#include "platform/rx/modules.h"
#include "platform/rx/rxclass.h"
#include "platform/rx/rxdictionary.h"

// platform/rx on the Host.

using sg::Host;

AcRxClass* newAcRxClass(const wchar_t* name, const wchar_t* parentName, int proxyFlags,
                        AcRxClass::Constructor constructor, const wchar_t* dxfName,
                        const wchar_t* appName, int version) {
    return Host::the().classes().newClass(name, parentName, proxyFlags, constructor, dxfName,
                                          appName, version);
}

AcRxClass* newAcRxClass(const wchar_t* name, const wchar_t* parentName, int dwgVersion,
                        int maintenanceVersion, int proxyFlags, AcRxClass::Constructor constructor,
                        const wchar_t* dxfName, const wchar_t* appName,
                        AcRxClass::AppNameChange changeAppName) {
    return Host::the().classes().newClass(name, parentName, dwgVersion, maintenanceVersion,
                                          proxyFlags, constructor, dxfName, appName, changeAppName);
}

void deleteAcRxClass(AcRxClass* descriptor) {
    if (descriptor != nullptr) sg::model::turnIntoProxies(*descriptor);
    Host::the().classes().deleteClass(descriptor);
}

void acrxBuildClassHierarchy() {
    Host::the().classes().buildHierarchy();
    sg::model::reviveProxies();
}

AcRxDictionary* acrxSysRegistry() {
    return Host::the().systemRegistry().root();
}
AcRxDictionary* acrxClassDictionary() {
    return Host::the().systemRegistry().classes();
}
AcRxDictionary* acrxServiceDictionary() {
    return Host::the().systemRegistry().services();
}

bool acrxLoadModule(const wchar_t* name, bool printIt, bool) {
    if (name == nullptr) return false;
    Host& host = Host::the();
    const auto result = host.modules().load(name);
    if (!result && printIt) host.output().reportError(result.message);
    return result.ok;
}

bool acrxUnloadModule(const wchar_t* name, bool) {
    return name != nullptr && Host::the().modules().unload(name).ok;
}

std::vector<std::wstring> acrxLoadedApplications() {
    return Host::the().modules().loadedNames();
}

void acrx_abort(const wchar_t* text) {
    Host::the().output().reportError(text);
    throw AcRxAbort(text);
}

bool acrxUnlockApplication(void* packet) {
    return Host::the().modules().unlock(packet);
}
bool acrxRegisterAppMDIAware(void* packet) {
    return Host::the().modules().registerMdiAware(packet);
}
