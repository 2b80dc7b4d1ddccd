#include "host/seam/host.h"

#include <fmt/xchar.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "base/encoding.h"
#include "base/text.h"
#include "host/dwg/files.h"
#include "host/dwg/kept_objects.h"
#include "host/editor/command_line_output.h"
#include "host/editor/documents.h"
#include "host/editor/editor.h"
#include "host/editor/input_source.h"
#include "host/editor/jig/drags.h"
#include "host/editor/prompts/prompter.h"
#include "host/editor/selection/selection_sets.h"
#include "host/editor/status_bar.h"
#include "host/editor/system_variables.h"
#include "host/exchange/drawing_files.h"
#include "host/lisp/functions/program_state.h"
#include "host/lisp/interpreter.h"
#include "host/model/core/database_table.h"
#include "host/model/core/register_classes.h"
#include "host/model/entities/annotative.h"
#include "host/rx/class_registry.h"
#include "host/rx/dictionary.h"
#include "host/rx/module_loader.h"
#include "host/seam/command_line.h"
#include "host/seam/command_runner.h"
#include "host/seam/external_functions.h"
#include "host/seam/lisp_functions.h"
#include "host/seam/system_variable_values.h"
#include "host/system/cryptography.h"
#include "host/system/date_time.h"
#include "host/system/folders.h"
#include "host/system/installation.h"
#include "host/system/main_window.h"
#include "host/system/mutexes.h"
#include "host/system/paths.h"
#include "host/system/random.h"
#include "host/system/registry.h"
#include "host/system/registry_handles.h"
#include "host/system/shell.h"
#include "host/system/system_libraries.h"
#include "host/system/timers.h"
#include "platform/dao/engine.h"
#include "platform/db/database.h"
#include "platform/variant/date_text.h"
#include "platform/win/window.h"

namespace sg {
namespace {

Host* theHost = nullptr;

class ApplicationServices final : public AcDbHostApplicationServices {
  public:
    explicit ApplicationServices(Host& host) : host_(host) {}
    AcDbDatabase* workingDatabase() const override { return host_.documents().workingDatabase(); }
    void setWorkingDatabase(AcDbDatabase* database) override {
        host_.documents().setWorkingDatabase(database);
    }
    Acad::ErrorStatus findFile(std::wstring& path, const wchar_t* name, AcDbDatabase*,
                               FindFileHint) override {
        path.clear();
        const std::wstring asked = name != nullptr ? name : L"";
        auto found = host_.findSupportFile(asked);
        // An interchange file stands in for a drawing file.
        constexpr std::wstring_view kDrawing = L".dwg";
        if (!found && lowerCased(asked).ends_with(kDrawing)) {
            found =
                host_.findSupportFile(asked.substr(0, asked.size() - kDrawing.size()) + L".dxf");
        }
        if (!found) return Acad::eFileNotFound;
        path = *found;
        return Acad::eOk;
    }

  private:
    Host& host_;
};

uint64_t halfOfMemory() {
    const auto pages = static_cast<uint64_t>(sysconf(_SC_PHYS_PAGES));
    return pages * static_cast<uint64_t>(sysconf(_SC_PAGESIZE)) / 2;
}

std::wstring localeOfEnvironment() {
    for (const char* name : {"LC_ALL", "LC_TIME", "LANG"}) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != 0) {
            const std::wstring locale = fromUtf8(value);
            return isKnownLocale(locale) ? locale : L"en-US";
        }
    }
    return L"en-US";
}

}  // namespace

Host& Host::the() {
    if (theHost == nullptr) throw std::logic_error("the seam is called without a host");
    return *theHost;
}

bool Host::exists() {
    return theHost != nullptr;
}

Host::Host(HostOptions options) : options_(std::move(options)) {
    if (theHost != nullptr) throw std::logic_error("a second host is made");
    theHost = this;
    if (options_.locale.empty()) options_.locale = localeOfEnvironment();
    output_ = options_.standardOutput
                  ? std::make_unique<Output>(options_.standardOutput, options_.standardError)
                  : std::make_unique<Output>();
    input_ = std::make_unique<InputChain>();
    typedWords_ = std::make_shared<TypedWords>();
    prompts_ = std::make_unique<PromptState>();
    selectionSets_ = std::make_unique<SelectionSets>();
    drags_ = std::make_unique<Drags>();
    timers_ = std::make_unique<Timers>();
    setInput({});
    applicationVariables_ = std::make_shared<SystemVariables>();
    registry_ = std::make_unique<RegistryStore>(
        options_.registryFile.empty() ? RegistryStore::defaultFile() : options_.registryFile,
        [this](const std::wstring& problem) { output_->reportError(problem); });
    registryHandles_ = std::make_unique<RegistryHandles>(*registry_);
    libraries_ = std::make_unique<SystemLibraries>();
    supportPath_ = std::make_unique<SupportPath>();
    for (const std::wstring& folder : options_.supportPath)
        supportPath_->add(folder);
    shell_ = std::make_unique<Shell>();
    mainWindow_ = std::make_unique<MainWindow>();
    frame_ = std::make_unique<CMDIFrameWnd>(&mainWindow_->window);
    statusBar_ = std::make_unique<StatusBar>();
    output_->setBeforeWrite([this] { statusBar_->hide(); });
    mutexes_ = std::make_unique<NamedMutexes>();
    random_ = std::make_unique<RandomGenerator>();
    sleep = [](uint32_t milliseconds) {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    };
    cryptography_ = std::make_unique<Cryptography>();
    classes_ = std::make_unique<AcRxClassRegistry>();
    systemRegistry_ = std::make_unique<SystemRegistry>(classes_->dictionary());
    services_ = std::make_unique<ApplicationServices>(*this);
    databases_ = std::make_unique<model::DatabaseTable>();
    databases_->readers().add(dxf::isDrawing, exchange::readForDatabase);
    databases_->readers().add(dwg::isDrawing, exchange::readForDatabase);
    databases_->setMakeFromBits(dwg::makeFromBits);
    moduleState_ = std::make_unique<AFX_MODULE_STATE>();
    registerEditorClasses();
    model::registerDatabaseClasses();
    model::addAnnotativeExtensions();
    editor_ = std::make_unique<Editor>();
    systemRegistry_->root()->atPut(L"AcEditor", editor_.get());
    createInterpreter();
    createDocuments();
    createModuleLoader();
    externals_ = std::make_unique<ExternalFunctions>(*interpreter_, *modules_);
    commandLine_ = std::make_unique<CommandLine>(*this);
    commands_ = std::make_unique<CommandRunner>(*this);
    provideSystemVariables();
}

Host::~Host() {
    // Documents first: modules hear of each while they still run.
    while (!documents_->all().empty())
        documents_->close(*documents_->all().back());
    modules_->unloadAll();
    AfxDeleteDaoState();  // where a module has left the engine started
    output_->flush();
    commandLine_.reset();
    externals_.reset();
    modules_.reset();
    documents_.reset();
    interpreter_.reset();
    editor_.reset();
    databases_.reset();
    output_->setBeforeWrite({});
    theHost = nullptr;
}

void Host::createInterpreter() {
    lisp::Hooks hooks;
    hooks.print = [this](std::wstring_view text) { output_->print(text); };
    hooks.report = [this](std::wstring_view text) { output_->reportError(text); };
    hooks.findFile = [this](const std::wstring& name) -> std::optional<std::wstring> {
        return findSupportFile(name);
    };
    hooks.systemVariable = [this](std::wstring_view name) -> std::optional<lisp::Value> {
        const auto value = systemVariables().get(name);
        if (!value) return std::nullopt;
        return systemVariableToLisp(*interpreter_, *value);
    };
    hooks.retainPickSet = [this](uint64_t name) { selectionSets_->retain(name); };
    hooks.releasePickSet = [this](uint64_t name) { selectionSets_->release(name); };
    hooks.readLine = [this] { return input_->text({L"", true}); };
    interpreter_ = std::make_unique<lisp::Interpreter>(std::move(hooks));
    interpreter_->heap().setLimit(options_.memoryLimit != 0 ? options_.memoryLimit
                                                            : halfOfMemory());
    interpreter_->define(hostFunctions());
    interpreter_->define(settingsFunctions());
    interpreter_->define(entityFunctions());
    interpreter_->define(curveFunctions());
    interpreter_->define(tableFunctions());
    interpreter_->define(selectionFunctions());
    interpreter_->define(promptFunctions());
    interpreter_->define(inputFunctions());
    interpreter_->define(commandFunctions());
    interpreter_->define(dialogSupportFunctions());
}

void Host::createDocuments() {
    DocumentManager::Events events;
    events.opened = [this](Document& document) {
        lisp::Namespace* const before = interpreter_->enterNamespace(&document.variables());
        interpreter_->runTopLevel([&] {
            lisp::loadProgramsForNewNamespace(*interpreter_);
            return lisp::Value::nil();
        });
        interpreter_->enterNamespace(before);
        modules_->documentOpened(&document);
    };
    events.closing = [this](Document& document) {
        modules_->documentClosing(&document);
        externals_->forgetDocument(document);
    };
    documents_ =
        std::make_unique<DocumentManager>(*interpreter_, applicationVariables_, std::move(events));
}

void Host::createModuleLoader() {
    ModuleLoader::Environment environment;
    environment.locate = [this](const std::wstring& name) {
        ModuleLoader::Location location;
        const SupportPath& path = *supportPath_;
        location.path = path.find(name);
        location.places = path.places(name);
        if (location.path.empty() && !options_.moduleFolder.empty()) {
            const ResolvedPath inFolder = resolvePath(joinPath(options_.moduleFolder, name));
            if (inFolder.exists) location.path = inFolder.path;
            location.places.push_back(inFolder.path);
        }
        return location;
    };
    environment.documents = [this] {
        std::vector<AcApDocument*> all;
        for (const auto& document : documents_->all())
            all.push_back(document.get());
        return all;
    };
    environment.withDocument = [this](AcApDocument* document, const std::function<void()>& body) {
        if (Document* const found = documents_->find(document)) {
            documents_->withCurrent(*found, body);
        }
    };
    environment.whileLoading = [this](const std::function<void()>& body) {
        const Output::LoadingScope scope(*output_);
        body();
    };
    environment.reportFailure = [this](const std::wstring& message) {
        output_->reportError(message);
    };
    environment.released = [this](const Module& module) {
        externals_->forgetModule(module, documents_->all());
        timers_->killAllOf(&module);
    };
    modules_ = std::make_unique<ModuleLoader>(std::move(environment));
    for (const auto& [name, entryPoint] : options_.staticModules) {
        modules_->addStatic(name, entryPoint);
    }
}

void Host::start() {
    const Output::LoadingScope scope(*output_);
    installSections(*registry_);
    if (options_.drawing.empty()) {
        documents_->create();
    } else {
        openDrawing(options_.drawing);
    }
    for (const std::wstring& name : options_.modules) {
        const ModuleLoader::Result result = modules_->load(name);
        if (!result) output_->reportError(result.message);
    }
}

SystemVariables& Host::systemVariables() {
    Document* const document = documents_->current();
    return document != nullptr ? document->systemVariables() : *applicationVariables_;
}

void Host::provideSystemVariables() {
    using Clock = std::chrono::system_clock;
    SystemVariables& variables = *applicationVariables_;
    const auto provide = [&](const wchar_t* name, auto value) {
        variables.setProvider(name, [value] { return SystemVariableValue(value()); });
    };
    provide(L"DATE", [] { return julianDate(localTime(Clock::now())); });
    provide(L"CDATE", [] { return calendarDate(localTime(Clock::now())); });
    const auto start = std::chrono::steady_clock::now();
    provide(L"MILLISECS", [start] {
        const auto running = std::chrono::steady_clock::now() - start;
        return static_cast<int32_t>(
            std::chrono::duration_cast<std::chrono::milliseconds>(running).count());
    });
    provide(L"ACADPREFIX", [this] { return supportPath_->text(); });
    provide(L"TEMPPREFIX", [] { return knownFolder(KnownFolder::temporary) + L"/"; });
    provide(L"LOGINNAME", [] { return environmentVariable(L"USERNAME").value_or(L""); });
    provide(L"SCREENMODE", [this] { return static_cast<int16_t>(textScreen ? 0 : 1); });
}

void Host::setInput(const std::vector<std::shared_ptr<InputSource>>& sources) {
    input_ = std::make_unique<InputChain>();
    input_->setBeforeWaiting([this] { timers_->runDue(); });
    input_->add(typedWords_);
    for (const auto& source : sources)
        input_->add(source);
    input_->add(std::make_shared<UnattendedInput>(
        [this](const std::wstring& what) { output_->reportError(what); }));
}

// The file that a program names: as it stands, seen from the current folder, then on the support
// path.
std::optional<std::wstring> Host::findSupportFile(const std::wstring& name) const {
    if (name.empty()) return std::nullopt;
    const ResolvedPath here = resolvePath(absolutePath(name));
    if (here.exists) return here.path;
    const std::wstring found = supportPath_->find(name);
    if (found.empty()) return std::nullopt;
    return found;
}

}  // namespace sg

std::wstring sgUserLocale() {
    return sg::Host::the().options().locale;
}
