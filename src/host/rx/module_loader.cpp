#include "host/rx/module_loader.h"

#include <dlfcn.h>

#include <algorithm>

#include "base/encoding.h"
#include "base/text.h"
#include "host/rx/exception_text.h"

namespace sg {
namespace {

std::wstring_view fileName(std::wstring_view path) {
    const size_t slash = path.find_last_of(L"/\\");
    return slash == std::wstring_view::npos ? path : path.substr(slash + 1);
}

// A name may leave out the usual extension.
bool namesModule(std::wstring_view name, std::wstring_view moduleName) {
    name = fileName(name);
    return equalIgnoringCase(name, moduleName) ||
           equalIgnoringCase(std::wstring(name) + L".arx", moduleName);
}

const wchar_t* messageName(AcRx::AppMsgCode message) {
    switch (message) {
        case AcRx::kInitAppMsg:
            return L"kInitAppMsg";
        case AcRx::kUnloadAppMsg:
            return L"kUnloadAppMsg";
        case AcRx::kLoadDwgMsg:
            return L"kLoadDwgMsg";
        case AcRx::kUnloadDwgMsg:
            return L"kUnloadDwgMsg";
        case AcRx::kInvkSubrMsg:
            return L"kInvkSubrMsg";
        default:
            return L"a message";
    }
}

std::wstring quoted(const std::wstring& text) {
    return L"\"" + text + L"\"";
}

ModuleLoader::Result success() {
    return {true, {}};
}

ModuleLoader::Result loadFailure(const std::wstring& module, const std::wstring& why) {
    return {false, L"cannot load module " + quoted(module) + L": " + why};
}

std::wstring lastLinkerError() {
    const char* const text = dlerror();
    return text != nullptr ? fromUtf8(text) : L"unknown error of the dynamic linker";
}

}  // namespace

ModuleLoader::Running::Running(ModuleLoader& loader, Module& module)
    : loader_(loader), module_(module), before_(loader.current_) {
    loader_.current_ = &module_;
    ++module_.running_;
}

ModuleLoader::Running::~Running() {
    --module_.running_;
    loader_.current_ = before_;
}

ModuleLoader::ModuleLoader(Environment environment) : environment_(std::move(environment)) {}

ModuleLoader::~ModuleLoader() {
    while (!modules_.empty()) {
        const auto module = std::move(modules_.back());
        modules_.pop_back();
        close(*module);
    }
}

void ModuleLoader::addStatic(std::wstring name, AcRxEntryPoint entryPoint) {
    statics_.push_back({std::move(name), entryPoint});
}

const ModuleLoader::StaticModule* ModuleLoader::findStatic(std::wstring_view name) const {
    const auto found =
        std::find_if(statics_.begin(), statics_.end(),
                     [&](const StaticModule& each) { return namesModule(name, each.name); });
    return found != statics_.end() ? &*found : nullptr;
}

Module* ModuleLoader::find(std::wstring_view name) const {
    const auto found = std::find_if(modules_.begin(), modules_.end(), [&](const auto& each) {
        return namesModule(name, each->name());
    });
    return found != modules_.end() ? found->get() : nullptr;
}

bool ModuleLoader::isLoading(std::wstring_view name) const {
    return std::any_of(loading_.begin(), loading_.end(),
                       [&](const Module* each) { return namesModule(name, each->name()); });
}

ModuleLoader::Location ModuleLoader::locate(const std::wstring& name) const {
    if (!environment_.locate) return {};
    Location location = environment_.locate(name);
    if (!location.path.empty() || fileName(name).find(L'.') != std::wstring_view::npos) {
        return location;
    }
    Location withExtension = environment_.locate(name + L".arx");
    if (withExtension.places.empty()) withExtension.places = std::move(location.places);
    return withExtension;
}

// Fills `module` from the process or from a file; on failure nothing is left open.
ModuleLoader::Result ModuleLoader::open(const std::wstring& name, Module& module) const {
    if (const StaticModule* const inside = findStatic(name)) {
        module.name_ = module.path_ = inside->name;
        module.entryPoint_ = inside->entryPoint;
        return success();
    }
    const Location location = locate(name);
    if (location.path.empty()) {
        std::wstring why = L"it was not found";
        for (size_t i = 0; i < location.places.size(); ++i) {
            why += (i == 0 ? L"; looked in " : L", ") + location.places[i];
        }
        return loadFailure(name, why);
    }
    module.path_ = location.path;
    module.name_ = fileName(location.path);
    // A name without a folder would be looked for among the system's libraries.
    const bool bare = location.path.find(L'/') == std::wstring::npos;
    const std::string file = (bare ? "./" : "") + toUtf8(location.path);
    void* const handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) return loadFailure(location.path, lastLinkerError());

    const auto refuse = [&](const std::wstring& why) {
        dlclose(handle);
        return loadFailure(location.path, why);
    };
    const auto entryPoint = reinterpret_cast<AcRxEntryPoint>(dlsym(handle, "acrxEntryPoint"));
    if (entryPoint == nullptr) return refuse(L"it does not export acrxEntryPoint");
    const auto version = reinterpret_cast<AcRxApiVersion>(dlsym(handle, "acrxGetApiVersion"));
    if (version == nullptr) return refuse(L"it does not export acrxGetApiVersion");
    if (const int spoken = version(); spoken != kAcRxApiVersion) {
        return refuse(L"it is made for interface version " + std::to_wstring(spoken) +
                      L", this program has version " + std::to_wstring(kAcRxApiVersion));
    }
    module.handle_ = handle;
    module.entryPoint_ = entryPoint;
    return success();
}

ModuleLoader::Result ModuleLoader::load(const std::wstring& name) {
    if (find(name) != nullptr || isLoading(name)) return success();
    auto module = std::make_unique<Module>();
    Result result;
    // Static constructors of the file may print, and anything may while it initialises.
    whileLoading([&] {
        result = open(name, *module);
        if (result && find(module->name()) == nullptr && !isLoading(module->name())) {
            result = initialise(*module);
        } else if (result) {  // another name of a module that is loaded
            if (module->handle_ != nullptr) dlclose(module->handle_);
            module.reset();
        }
        if (!result || module == nullptr) return;
        Module& loaded = *module;
        modules_.push_back(std::move(module));
        sendForAllDocuments(loaded, AcRx::kLoadDwgMsg);
    });
    return result;
}

ModuleLoader::Result ModuleLoader::initialise(Module& module) {
    AcRx::AppRetCode answer = AcRx::kRetOK;
    loading_.push_back(&module);
    Result result = sendGuarded(module, AcRx::kInitAppMsg, answer);
    loading_.pop_back();
    if (result && answer == AcRx::kRetError) {
        result.ok = false;
        result.message = L"it refuses to load: its entry point answered " +
                         std::to_wstring(answer) + L" to kInitAppMsg";
    }
    if (result) return result;
    close(module);
    return loadFailure(module.path(), result.message);
}

ModuleLoader::Result ModuleLoader::unload(const std::wstring& name) {
    const auto failure = [&](const wchar_t* why) {
        return Result{false, L"cannot unload module " + quoted(name) + L": " + why};
    };
    Module* const module = find(name);
    if (module == nullptr) return failure(L"it is not loaded");
    if (module->isLocked()) return failure(L"it is locked");
    if (module->running_ > 0) return failure(L"a function of it is running");
    finish(*module);
    return success();
}

void ModuleLoader::unloadAll() {
    // A module may unload others that it loaded, so the list is read anew each time.
    while (!modules_.empty())
        finish(*modules_.back());
}

// Sends the closing messages and removes the module, wherever it stands by then.
void ModuleLoader::finish(Module& module) {
    sendForAllDocuments(module, AcRx::kUnloadDwgMsg);
    send(module, AcRx::kUnloadAppMsg);
    const auto found = std::find_if(modules_.begin(), modules_.end(),
                                    [&](const auto& each) { return each.get() == &module; });
    const auto owned = std::move(*found);
    modules_.erase(found);
    close(*owned);
}

void ModuleLoader::close(Module& module) {
    if (environment_.released) environment_.released(module);
    if (module.handle_ != nullptr) dlclose(module.handle_);
    module.handle_ = nullptr;
}

void ModuleLoader::documentOpened(AcApDocument* document) {
    whileLoading([&] {
        for (size_t i = 0; i < modules_.size(); ++i) {
            sendForDocument(*modules_[i], AcRx::kLoadDwgMsg, document);
        }
    });
}

void ModuleLoader::documentClosing(AcApDocument* document) {
    for (size_t i = 0; i < modules_.size(); ++i) {
        sendForDocument(*modules_[i], AcRx::kUnloadDwgMsg, document);
    }
}

void ModuleLoader::sendForAllDocuments(Module& module, AcRx::AppMsgCode message) {
    if (!environment_.documents) return;
    for (AcApDocument* const document : environment_.documents()) {
        sendForDocument(module, message, document);
    }
}

void ModuleLoader::sendForDocument(Module& module, AcRx::AppMsgCode message,
                                   AcApDocument* document) {
    const auto deliver = [&] {
        AcRx::AppRetCode answer = AcRx::kRetOK;
        Result result = sendGuarded(module, message, answer);
        if (result && answer == AcRx::kRetError) {
            result = {false, std::wstring(L"its entry point answered an error to ") +
                                 messageName(message)};
        }
        report(module, result);
    };
    if (environment_.withDocument) {
        environment_.withDocument(document, deliver);
    } else {
        deliver();
    }
}

AcRx::AppRetCode ModuleLoader::send(Module& module, AcRx::AppMsgCode message) {
    AcRx::AppRetCode answer = AcRx::kRetOK;
    const Result result = sendGuarded(module, message, answer);
    report(module, result);
    return result ? answer : AcRx::kRetError;
}

void ModuleLoader::report(const Module& module, const Result& result) const {
    if (result || !environment_.reportFailure) return;
    environment_.reportFailure(L"module " + quoted(module.name()) + L": " + result.message);
}

ModuleLoader::Result ModuleLoader::sendGuarded(Module& module, AcRx::AppMsgCode message,
                                               AcRx::AppRetCode& answer) {
    const Running running(*this, module);
    try {
        answer = module.entryPoint_(message, &module);
        return success();
    } catch (...) {
        return {false, std::wstring(L"its entry point failed at ") + messageName(message) + L": " +
                           currentExceptionText()};
    }
}

void ModuleLoader::whileLoading(const std::function<void()>& body) const {
    if (environment_.whileLoading) {
        environment_.whileLoading(body);
    } else {
        body();
    }
}

Module* ModuleLoader::fromPacket(void* packet) const {
    for (const auto& each : modules_) {
        if (each.get() == packet) return each.get();
    }
    const auto found = std::find(loading_.begin(), loading_.end(), packet);
    return found != loading_.end() ? *found : nullptr;
}

bool ModuleLoader::unlock(void* packet) {
    Module* const module = fromPacket(packet);
    if (module != nullptr) module->locked_ = false;
    return module != nullptr;
}

bool ModuleLoader::registerMdiAware(void* packet) {
    Module* const module = fromPacket(packet);
    if (module != nullptr) module->mdiAware_ = true;
    return module != nullptr;
}

std::vector<std::wstring> ModuleLoader::loadedNames() const {
    std::vector<std::wstring> names;
    for (const auto& each : modules_)
        names.push_back(each->name());
    return names;
}

}  // namespace sg
