#include "module/lifecycle.h"

#include <gmock/gmock.h>

#include <memory>

#include "host/seam/external_functions.h"
#include "host/system/mutexes.h"
#include "host/system/random.h"
#include "module/function_tables.h"
#include "module/module_fixture.h"
#include "platform/dao/engine.h"
#include "platform/ed/editor.h"
#include "platform/rx/rxdictionary.h"
#include "platform/win/exceptions.h"

namespace sg {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const wchar_t* kCompanion = L"qn_qn-solid2017.dbx";

// What the module has done so far, as others can see it.
std::string engineState() {
    const AFX_MODULE_STATE& state = *AfxGetModuleState();
    return std::string(state.m_pDaoState != nullptr ? "started" : "stopped") + " " +
           std::to_string(state.m_dwVersion);
}

Log* lifecycleLog = nullptr;

AcRx::AppRetCode companionEntryPoint(AcRx::AppMsgCode message, void* packet) {
    if (message == AcRx::kInitAppMsg) acrxUnlockApplication(packet);
    if (message == AcRx::kInitAppMsg || message == AcRx::kUnloadAppMsg) {
        const bool mutex = Host::the().mutexes().create(L"QuillonSwiftGate").error != 0;
        lifecycleLog->push_back(std::string("companion ") +
                                (message == AcRx::kInitAppMsg ? "init" : "end") + ", engine " +
                                engineState() + (mutex ? ", mutex" : ""));
    }
    return AcRx::kRetOK;
}

// Stands for the editor in the system registry.
class RecordingEditor : public AcEditor {
  public:
    void addReactor(AcEditorReactor* reactor) override {
        const Module* const module = Host::the().modules().currentModule();
        lifecycleLog->push_back("reactor added, engine " + engineState() +
                                (module->isLocked() ? ", locked" : ""));
        reactors.push_back(reactor);
    }
    void removeReactor(AcEditorReactor* reactor) override {
        lifecycleLog->push_back("reactor removed, engine " + engineState());
        std::erase(reactors, reactor);
    }
    std::vector<AcEditorReactor*> reactors;
};

class LifecycleTest : public ModuleTest {
  protected:
    LifecycleTest() {
        lifecycleLog = &log;
        options.staticModules.emplace_back(kCompanion, companionEntryPoint);
    }
    ~LifecycleTest() override { stop(); }

    void startWithRecordingEditor() {
        make();
        acrxSysRegistry()->atPut(L"AcEditor", &editor_);
        host().start();
    }
    // The module's functions in the active drawing, in the order of their numbers.
    Log functions() {
        Log names;
        for (const std::wstring& name : host().externals().names(active())) {
            if (name != L"outer" && name != L"inner" && !name.starts_with(L"guarded")) {
                names.push_back(toUtf8(name));
            }
        }
        return names;
    }
    Log loaded() {
        Log names;
        for (const std::wstring& name : host().modules().loadedNames())
            names.push_back(toUtf8(name));
        return names;
    }

    RecordingEditor editor_;
};

constexpr const char* kInitSteps[] = {"companion init, engine stopped 0",
                                      "reactor added, engine started 1537, locked"};
constexpr const char* kEndSteps[] = {"reactor removed, engine stopped 1537",
                                     "companion end, engine stopped 1537, mutex"};

TEST_F(LifecycleTest, InitialisationInItsOrder) {
    startWithRecordingEditor();
    EXPECT_EQ(log[0], "companion init, engine stopped 0");
    EXPECT_THAT(log, ElementsAre(kInitSteps[0], kInitSteps[1]));
    RandomGenerator unseeded;
    EXPECT_NE(std::pair(host().random().next(), host().random().next()),
              std::pair(unseeded.next(), unseeded.next()));
    EXPECT_EQ(host().mutexes().create(L"QuillonSwiftGate").error, ERROR_ALREADY_EXISTS);
    const Module& module = *host().modules().find(kModule);
    EXPECT_FALSE(module.isLocked());
    EXPECT_TRUE(module.isMdiAware());
    EXPECT_THAT(loaded(), ElementsAre("qn_qn-solid2017.dbx", "SwiftGate2017.arx", "Probe.arx"));
    stop();
    EXPECT_THAT(editor_.reactors, IsEmpty());
}

TEST_F(LifecycleTest, WithoutItsCompanionTheModuleLoadsAllTheSame) {
    options.staticModules.pop_back();
    start();
    EXPECT_THAT(loaded(), ElementsAre("SwiftGate2017.arx", "Probe.arx"));
    EXPECT_THAT(errors(), Not(HasSubstr("companion"))) << "nothing is said about it";
    EXPECT_EQ(engineState(), "started 1537");
}

TEST_F(LifecycleTest, ADrawingGetsItsFunctionsAndItsEntry) {
    std::vector<size_t> defined, listed;
    onError = [&](std::string_view bytes) {
        if (bytes.find("Loading Quillon") == std::string_view::npos) return;
        defined.push_back(functions().size());
        listed.push_back(dbInfoList().size());
    };
    start();
    EXPECT_EQ(errors(), "\nLoading Quillon Swift Gate (Direct)");
    documents().create();
    EXPECT_EQ(errors(), "\nLoading Quillon Swift Gate (Direct)");
    EXPECT_EQ(printed(), "");
    EXPECT_THAT(defined, ElementsAre(0u, 0u)) << "the message comes first";
    EXPECT_THAT(listed, ElementsAre(0u, 1u));

    Log names;
    for (const auto rows : {sgFunctions(), qnFunctions()}) {
        for (const FunctionRow& row : rows)
            names.push_back(toUtf8(row.name));
    }
    EXPECT_EQ(functions(), names) << "0 to 62, and 63 on";
    EXPECT_THAT(entries(), ElementsAre("Drawing2.dwg", "Drawing1.dwg"));
    const DB_INFO& head = *dbInfoList().front();
    EXPECT_EQ(head.pConnection, nullptr);
    EXPECT_EQ(head.strDatabase, L"");
    EXPECT_FALSE(head.bReadOnly);
}

TEST_F(LifecycleTest, ADrawingFilesEntryHasItsFullName) {
    write("plan.dxf", kEmptyDrawing);
    options.drawing = path("plan.dxf");
    start();
    EXPECT_THAT(entries(), ElementsAre((folder_ / "plan.dxf").string()));
}

TEST_F(LifecycleTest, AnEngineThatDoesNotStartLeavesNothing) {
    options.failEngine = true;
    make();
    acrxSysRegistry()->atPut(L"AcEditor", &editor_);
    const size_t classes = acrxClassDictionary()->numEntries();
    host().setInput({std::make_shared<Buttons>(log, std::vector<int>{IDNO})});
    host().start();
    ASSERT_EQ(log.size(), 2u);
    EXPECT_EQ(log[0], kInitSteps[0]);
    EXPECT_THAT(log[1], HasSubstr("Error loading database drivers."));
    EXPECT_THAT(editor_.reactors, IsEmpty());
    EXPECT_EQ(acrxClassDictionary()->numEntries(), classes);
    EXPECT_THAT(functions(), IsEmpty());
    EXPECT_THAT(entries(), IsEmpty());
    EXPECT_EQ(engineState(), "stopped 1537");
    EXPECT_THAT(errors(), Not(HasSubstr("Loading Quillon")));
    stop();

    // The failed start is not taken for a started engine later on.
    options.failEngine = false;
    make();
    AfxDaoInit();
    host().start();
    eval("(arxunload \"SwiftGate2017\")");
    EXPECT_EQ(engineState(), "started 0");
}

TEST_F(LifecycleTest, AnEngineThatRunsAlreadyIsLeftAlone) {
    make();
    AfxDaoInit();
    host().start();
    EXPECT_EQ(engineState(), "started 0");
    EXPECT_EQ(eval("(arxunload \"SwiftGate2017\")"), "\"SwiftGate2017\"");
    EXPECT_EQ(engineState(), "started 0");
}

TEST_F(LifecycleTest, UnloadingUndoesInitialisationInItsOrder) {
    startWithRecordingEditor();
    eval("(host-new-drawing)");
    log.clear();
    eval("(setq f sg_count)");
    EXPECT_EQ(eval("(arxunload \"SwiftGate2017.arx\")"), "\"SwiftGate2017.arx\"");
    EXPECT_THAT(log, ElementsAre(kEndSteps[0], kEndSteps[1]));
    EXPECT_THAT(editor_.reactors, IsEmpty());
    EXPECT_THAT(loaded(), ElementsAre("Probe.arx"));
    EXPECT_THAT(functions(), IsEmpty());
    EXPECT_EQ(eval("(sg_count)"), "; error: no function definition: SG_COUNT");
    EXPECT_EQ(eval("(f)"), "; error: no function definition: SG_COUNT")
        << "a program may hold the function still";
    EXPECT_THAT(entries(), IsEmpty());
    EXPECT_EQ(engineState(), "stopped 1537");
}

TEST_F(LifecycleTest, LoadedUnloadedAndLoadedAgain) {
    startWithRecordingEditor();
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(eval("(arxunload \"SwiftGate2017\")"), "\"SwiftGate2017\"");
        EXPECT_EQ(eval("(arxload \"SwiftGate2017\")"), "\"SwiftGate2017\"");
    }
    // The version word is the host's and stays; the mutex is never closed.
    const std::string again = "companion init, engine stopped 1537, mutex";
    EXPECT_THAT(log, ElementsAre(kInitSteps[0], kInitSteps[1], kEndSteps[0], kEndSteps[1], again,
                                 kInitSteps[1], kEndSteps[0], kEndSteps[1], again, kInitSteps[1]));
    EXPECT_EQ(editor_.reactors.size(), 1u);
    EXPECT_EQ(functions().size(), 173u);
    EXPECT_THAT(entries(), ElementsAre("Drawing1.dwg"));
    EXPECT_EQ(eval("(vl-catch-all-error-p (vl-catch-all-apply 'sg_connect nil))"), "T");
}

TEST_F(LifecycleTest, UnloadingUnderSeveralDrawingsLeavesNoConnectionBehind) {
    startWithRecordingEditor();
    documents().create();
    setNewDatabase(std::make_unique<FakeConnection>("free", log), L"free.mdb", 0);
    addConnectionEntry(L"free.mdb", false);
    dbInfoList().front()->strDocument.clear();  // its drawing went on to another database
    setCurrentDatabase(nullptr, L"", 0);
    log.clear();
    EXPECT_EQ(eval("(arxunload \"SwiftGate2017\")"), "\"SwiftGate2017\"");
    EXPECT_THAT(log, ElementsAre("delete free", kEndSteps[0], kEndSteps[1]));
    EXPECT_THAT(entries(), IsEmpty());
    EXPECT_EQ(eval("(arxload \"SwiftGate2017\")"), "\"SwiftGate2017\"");
    EXPECT_EQ(entries().size(), 2u);
}

TEST_F(LifecycleTest, OneHostAfterTheOther) {
    for (int i = 0; i < 2; ++i) {
        log.clear();
        startWithRecordingEditor();
        EXPECT_THAT(log, ElementsAre(kInitSteps[0], kInitSteps[1])) << i;
        documents().create();
        connect(L"Drawing1.dwg", new FakeConnection("one", log), L"one.mdb");
        log.clear();
        stop();
        EXPECT_THAT(log, ElementsAre("close one", "delete one", kEndSteps[0], kEndSteps[1])) << i;
        EXPECT_TRUE(dbInfoList().empty());
        EXPECT_EQ(currentConnection(), nullptr);
    }
}

TEST_F(LifecycleTest, AfterTheLastDrawingTheNextStartsCleanly) {
    start();
    connect(L"Drawing1.dwg", new FakeConnection("one", log), L"one.mdb");
    selectDocumentDatabase();
    log.clear();
    documents().close(active());
    EXPECT_THAT(log, ElementsAre("close one", "delete one"));
    EXPECT_THAT(entries(), IsEmpty());
    EXPECT_EQ(currentConnection(), nullptr);
    documents().create();
    EXPECT_THAT(entries(), ElementsAre("Drawing2.dwg"));
    EXPECT_EQ(functions().size(), 173u);
    selectDocumentDatabase();
    EXPECT_EQ(currentConnection(), nullptr);
}

// ---- The reactor --------------------------------------------------------------------------------

class SaveCompleteTest : public LifecycleTest {
  protected:
    SaveCompleteTest() {
        write("plan.dxf", kEmptyDrawing);
        options.drawing = path("plan.dxf");
        startWithRecordingEditor();
        one_ = new FakeConnection("one", log);
        connect(path("plan.dxf").c_str(), one_, L"one.mdb");
        selectDocumentDatabase();
        log.clear();
    }
    void complete(const AcApDocument& document, const std::wstring& name) {
        editor_.reactors.at(0)->saveComplete(document.database(), name.c_str());
    }
    FakeConnection* one_;
};

TEST_F(SaveCompleteTest, ANewNameClosesTheDatabase) {
    complete(active(), path("copy.dxf"));
    EXPECT_THAT(log, ElementsAre("close one"));
    EXPECT_EQ(currentConnection(), one_);
    EXPECT_EQ(currentDatabaseName(), L"");
    EXPECT_EQ(dbInfoList().front()->strDatabase, L"");
    EXPECT_EQ(dbInfoList().front()->strDocument, path("plan.dxf")) << "the entry keeps the name";
    EXPECT_EQ(dbInfoList().front()->pConnection, one_);
}

TEST_F(SaveCompleteTest, NothingElseDoes) {
    complete(active(), path("plan.dxf"));
    EXPECT_THAT(log, IsEmpty()) << "its own name";
    const Document& second = documents().create();
    complete(documentAt(0), path("copy.dxf"));
    EXPECT_THAT(log, IsEmpty()) << "another drawing than the active one";
    // The second drawing's entry is the head; its connection, none, is not the current one.
    ASSERT_EQ(currentConnection(), one_);
    complete(second, path("copy.dxf"));
    EXPECT_THAT(log, IsEmpty());
    selectDocumentDatabase();
    complete(second, path("copy.dxf"));
    EXPECT_THAT(log, IsEmpty()) << "there is none to close";
    EXPECT_EQ(one_->IsOpen(), true);
}

TEST_F(SaveCompleteTest, AnEmptyListIsAnInvalidArgument) {
    dbInfoList().clear();
    EXPECT_THROW(
        {
            try {
                complete(active(), path("plan.dxf"));
            } catch (CInvalidArgException* exception) {
                exception->Delete();
                throw 1;
            }
        },
        int);
    const Document& first = active();
    documents().create();
    dbInfoList().clear();
    complete(first, path("copy.dxf"));  // of no interest, so the list is not looked at
    EXPECT_THAT(log, IsEmpty());
    setCurrentDatabase(nullptr, L"", 0);
    delete one_;
}

TEST_F(SaveCompleteTest, ThroughTheHost) {
    stop();
    start();
    one_ = new FakeConnection("one", log);
    connect(path("plan.dxf").c_str(), one_, L"one.mdb");
    selectDocumentDatabase();
    log.clear();
    host().saveDrawing(active(), L"");
    host().saveDrawing(active(), path("plan.dxf"));
    EXPECT_THAT(log, IsEmpty());
    host().saveDrawing(active(), path("copy.dxf"));
    EXPECT_THAT(log, ElementsAre("close one"));
    selectDocumentDatabase();
    EXPECT_EQ(currentConnection(), nullptr) << "no entry has the new name";
    log.clear();
    stop();
    EXPECT_THAT(log, Not(testing::Contains(HasSubstr("one"))))
        << "a connection that only the removed entry has is left as it is";
    delete one_;
}

}  // namespace
}  // namespace sg
