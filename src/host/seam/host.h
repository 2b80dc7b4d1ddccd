#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/export.h"
#include "platform/rx/messages.h"

class AcDbHostApplicationServices;
class AcEditor;
class AcRxClassRegistry;
class CMDIFrameWnd;
struct AFX_MODULE_STATE;

namespace sg {

namespace lisp {
class Interpreter;
}
namespace dxf {
struct WriteOptions;
}
namespace model {
class DatabaseTable;
}
class CommandLine;
class CommandRunner;
class Cryptography;
class Document;
class DocumentManager;
class Drags;
class Editor;
class ExternalFunctions;
class InputChain;
class InputSource;
struct MainWindow;
class ModuleLoader;
class NamedMutexes;
class Output;
struct PromptState;
class RandomGenerator;
class RegistryHandles;
class RegistryStore;
class SelectionSets;
class Shell;
class StatusBar;
class SupportPath;
class SystemLibraries;
class SystemRegistry;
class SystemVariables;
class Timers;
class TypedWords;

struct HostOptions {
    std::vector<std::wstring> supportPath;  // folders, ahead of those that are always searched
    std::wstring moduleFolder;              // where modules are found besides the support path
    // File names of modules that start() loads, and modules that are linked into the process.
    std::vector<std::wstring> modules;
    std::vector<std::pair<std::wstring, AcRxEntryPoint>> staticModules;
    bool failEngine = false;   // the database engine refuses to start
    std::wstring locale;       // of date texts, such as "de-DE"; empty: that of the environment
    uint64_t memoryLimit = 0;  // of LISP data, in bytes; 0: half of the machine's memory
    std::wstring drawing;      // the drawing that start() opens; empty: a new one
    std::vector<std::wstring> arguments;  // what (host-arguments) answers
    std::wstring registryFile;            // empty: the user's own
    std::wstring helpFolder;  // the product's documents: guide.md, and the folder functions
    // Take what is printed and reported in place of the process's standard output and standard
    // error, as UTF-8; false when it could not be written. Both or neither.
    std::function<bool(std::string_view bytes)> standardOutput, standardError;
};

// A program that modules and LISP programs live in: the one object behind the seam. It owns the
// interpreter, the documents, the loaded modules and everything that the free functions of the seam
// work on. One host at a time; they may be made and destroyed freely.
class SG_API Host {
  public:
    explicit Host(HostOptions options);
    // Closes all documents and unloads all modules, with their messages.
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    // The host that exists. Calling the seam without one is a fault of the program.
    static Host& the();
    static bool exists();

    // Opens the first document and loads the modules; the first time for a user it also makes what
    // an installer would (host/system/installation.h). A module that does not load is reported, and
    // the host goes on without it. Throws FileError when the drawing cannot be opened.
    void start();

    const HostOptions& options() const { return options_; }
    lisp::Interpreter& interpreter() { return *interpreter_; }
    DocumentManager& documents() { return *documents_; }
    ModuleLoader& modules() { return *modules_; }
    ExternalFunctions& externals() { return *externals_; }
    CommandLine& commandLine() { return *commandLine_; }
    CommandRunner& commands() { return *commands_; }
    Editor& editor() { return *editor_; }
    Output& output() { return *output_; }
    RegistryStore& registry() { return *registry_; }
    RegistryHandles& registryHandles() { return *registryHandles_; }
    SystemLibraries& libraries() { return *libraries_; }
    SupportPath& supportPath() { return *supportPath_; }
    Shell& shell() { return *shell_; }
    MainWindow& mainWindow() { return *mainWindow_; }
    CMDIFrameWnd& frame() { return *frame_; }
    StatusBar& statusBar() { return *statusBar_; }
    NamedMutexes& mutexes() { return *mutexes_; }
    RandomGenerator& random() { return *random_; }
    Cryptography& cryptography() { return *cryptography_; }
    AcRxClassRegistry& classes() { return *classes_; }
    SystemRegistry& systemRegistry() { return *systemRegistry_; }
    AcDbHostApplicationServices& services() { return *services_; }
    model::DatabaseTable& databases() { return *databases_; }
    AFX_MODULE_STATE& moduleState() { return *moduleState_; }

    // Who answers prompts and boxes: the words left on a command line, then the sources that a
    // front end has set, then nobody, which cancels prompts and gives boxes their default button.
    InputChain& input() { return *input_; }
    void setInput(const std::vector<std::shared_ptr<InputSource>>& sources);
    TypedWords& typedWords() { return *typedWords_; }
    PromptState& prompts() { return *prompts_; }
    SelectionSets& selectionSets() { return *selectionSets_; }
    Drags& drags() { return *drags_; }
    // They are called ahead of every request for input.
    Timers& timers() { return *timers_; }

    // The full path of a file that a program names: as it stands, seen from the current folder,
    // else on the support path.
    std::optional<std::wstring> findSupportFile(const std::wstring& name) const;

    // Opens a drawing file, makes it the active document and tells the modules. What the file had
    // to be forgiven is reported, and so is that another process has it open: then it is read-only
    // here. Throws FileError.
    Document& openDrawing(const std::wstring& path);
    // Writes a document's drawing, under its own name or, with a path, under that, which is its
    // name from then on; reactors hear of it. Throws FileError and leaves the file as it was.
    void saveDrawing(Document& document, const std::wstring& path);
    void saveDrawing(Document& document, const std::wstring& path,
                     const dxf::WriteOptions& options);

    // The system variables as the current document sees them.
    SystemVariables& systemVariables();

    uint32_t lastError = 0;  // of GetLastError
    bool textScreen = false;
    std::function<void(uint32_t milliseconds)> sleep;  // what Sleep does

  private:
    void createInterpreter();
    void createModuleLoader();
    void createDocuments();
    // Reports what was said of a drawing file that was read; of many lines the first ones.
    void reportDrawing(const std::vector<std::wstring>& warnings);
    void provideSystemVariables();

    HostOptions options_;
    std::unique_ptr<Output> output_;
    std::unique_ptr<InputChain> input_;
    std::shared_ptr<TypedWords> typedWords_;
    std::unique_ptr<PromptState> prompts_;
    std::unique_ptr<SelectionSets> selectionSets_;
    std::unique_ptr<Drags> drags_;
    std::unique_ptr<Timers> timers_;
    std::shared_ptr<SystemVariables> applicationVariables_;
    std::unique_ptr<RegistryStore> registry_;
    std::unique_ptr<RegistryHandles> registryHandles_;
    std::unique_ptr<SystemLibraries> libraries_;
    std::unique_ptr<SupportPath> supportPath_;
    std::unique_ptr<Shell> shell_;
    std::unique_ptr<MainWindow> mainWindow_;
    std::unique_ptr<CMDIFrameWnd> frame_;
    std::unique_ptr<StatusBar> statusBar_;
    std::unique_ptr<NamedMutexes> mutexes_;
    std::unique_ptr<RandomGenerator> random_;
    std::unique_ptr<Cryptography> cryptography_;
    std::unique_ptr<AcRxClassRegistry> classes_;
    std::unique_ptr<SystemRegistry> systemRegistry_;
    std::unique_ptr<model::DatabaseTable> databases_;
    std::unique_ptr<Editor> editor_;
    std::unique_ptr<AcDbHostApplicationServices> services_;
    std::unique_ptr<AFX_MODULE_STATE> moduleState_;
    std::unique_ptr<lisp::Interpreter> interpreter_;
    std::unique_ptr<DocumentManager> documents_;
    std::unique_ptr<ModuleLoader> modules_;
    std::unique_ptr<ExternalFunctions> externals_;
    std::unique_ptr<CommandLine> commandLine_;
    std::unique_ptr<CommandRunner> commands_;
};

}  // namespace sg
