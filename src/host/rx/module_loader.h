#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/rx/messages.h"

class AcApDocument;

namespace sg {

// A loaded module. Its address is the packet that its entry point is given.
class Module {
  public:
    const std::wstring& name() const { return name_; }  // the file name without its folder
    const std::wstring& path() const { return path_; }  // the name for one inside the process
    bool isLocked() const { return locked_; }           // until it unlocks itself
    bool isMdiAware() const { return mdiAware_; }

  private:
    friend class ModuleLoader;
    std::wstring name_, path_;
    void* handle_ = nullptr;  // from dlopen; null for a module inside the process
    AcRxEntryPoint entryPoint_ = nullptr;
    bool locked_ = true;
    bool mdiAware_ = false;
    int running_ = 0;  // entry points and handlers of the module on the stack
};

// Loads modules, sends them their messages, and unloads them. Everything that it must know of its
// host stands in Environment; a function that is left empty stands for a host without that part.
class ModuleLoader {
  public:
    struct Location {
        std::wstring path;                 // empty when nothing was found
        std::vector<std::wstring> places;  // the files or folders that were looked at, for messages
    };

    struct Environment {
        // Finds the file that a name stands for.
        std::function<Location(const std::wstring& name)> locate;
        // The open documents, in the order in which they were opened.
        std::function<std::vector<AcApDocument*>()> documents;
        // Runs `body` with `document` as the one that calls work on.
        std::function<void(AcApDocument* document, const std::function<void()>& body)> withDocument;
        // Runs `body` with all that is printed going to standard error.
        std::function<void(const std::function<void()>& body)> whileLoading;
        // Takes failures that no caller is told of: a message answered with an error, an exception
        // out of an entry point.
        std::function<void(const std::wstring& message)> reportFailure;
        // Tells that no code of the module runs any more: forget its functions. Called before the
        // file is closed, also for a module that refused to load.
        std::function<void(const Module& module)> released;
    };

    struct Result {
        bool ok = false;
        std::wstring message;  // on failure: which module, from where, what went wrong
        explicit operator bool() const { return ok; }
    };

    explicit ModuleLoader(Environment environment);
    ModuleLoader(const ModuleLoader&) = delete;
    ModuleLoader& operator=(const ModuleLoader&) = delete;
    // Closes what is still loaded, without messages; a host calls unloadAll() before.
    ~ModuleLoader();

    // Offers a module that is linked into the process under a file name, which is then found before
    // any file of that name.
    void addStatic(std::wstring name, AcRxEntryPoint entryPoint);

    // Loads a module and sends it kInitAppMsg, then kLoadDwgMsg for every open document. A name
    // without an extension is tried with ".arx" too. One that is loaded, or loading, is a success
    // and untouched. Modules are the same when their file names are, ignoring case.
    Result load(const std::wstring& name);

    // Sends kUnloadDwgMsg for every open document and kUnloadAppMsg, and closes the module. Fails
    // for one that is not loaded, is locked, or has code running.
    Result unload(const std::wstring& name);

    // Unloads every module, the last one first, locked or not.
    void unloadAll();

    // Sends kLoadDwgMsg or kUnloadDwgMsg for one document to every module, in the order of loading.
    void documentOpened(AcApDocument* document);
    void documentClosing(AcApDocument* document);

    // Sends a message to one module. What escapes its entry point is reported, and answered as
    // kRetError.
    AcRx::AppRetCode send(Module& module, AcRx::AppMsgCode message);

    // For acrxUnlockApplication and acrxRegisterAppMDIAware. False for a packet of no module.
    bool unlock(void* packet);
    bool registerMdiAware(void* packet);

    Module* find(std::wstring_view name) const;  // a loaded module; null when there is none
    std::vector<std::wstring> loadedNames() const;

    // The module whose entry point or handler runs now; null when none does.
    Module* currentModule() const { return current_; }

    // Makes a module the current one while it lives: held around each call of a handler.
    class Running {
      public:
        Running(ModuleLoader& loader, Module& module);
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;
        ~Running();

      private:
        ModuleLoader& loader_;
        Module& module_;
        Module* const before_;
    };

  private:
    struct StaticModule {
        std::wstring name;
        AcRxEntryPoint entryPoint;
    };

    const StaticModule* findStatic(std::wstring_view name) const;
    bool isLoading(std::wstring_view name) const;
    Location locate(const std::wstring& name) const;
    Result open(const std::wstring& name, Module& module) const;
    Result initialise(Module& module);
    Result sendGuarded(Module& module, AcRx::AppMsgCode message, AcRx::AppRetCode& answer);
    void report(const Module& module, const Result& result) const;
    void sendForDocument(Module& module, AcRx::AppMsgCode message, AcApDocument* document);
    void sendForAllDocuments(Module& module, AcRx::AppMsgCode message);
    void finish(Module& module);
    void close(Module& module);
    void whileLoading(const std::function<void()>& body) const;
    Module* fromPacket(void* packet) const;

    Environment environment_;
    std::vector<StaticModule> statics_;
    std::vector<std::unique_ptr<Module>> modules_;  // in the order in which loading ended
    std::vector<Module*> loading_;                  // innermost last
    Module* current_ = nullptr;
};

}  // namespace sg
