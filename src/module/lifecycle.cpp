#include "module/lifecycle.h"

#include <cstdint>
#include <ctime>
#include <memory>
#include <span>

#include "database/db_info.h"
#include "database/driver_offer.h"
#include "leader/qn_leader.h"
#include "module/editor_reactor.h"
#include "module/function_tables.h"
#include "platform/ap/documents.h"
#include "platform/dao/engine.h"
#include "platform/ed/command_line.h"
#include "platform/ed/editor.h"
#include "platform/rx/modules.h"
#include "platform/rx/rxclass.h"
#include "platform/rx/rxdictionary.h"
#include "platform/win/exceptions.h"
#include "platform/win/system.h"

namespace sg {
namespace {

constexpr const wchar_t* kCompanionModule = L"qn_qn-solid2017.dbx";
constexpr const wchar_t* kMutexName = L"QuillonSwiftGate";
constexpr uint16_t kDaoVersion36 = 0x0601;

bool daoStarted = false;  // this module started the engine and has to stop it
std::unique_ptr<sgEditorReactor> reactor;

// Without the companion everything but its solids works.
void loadCompanion() {
    acrxLoadModule(kCompanionModule, false, false);
}

// Shows other programs that the module is running. Nobody waits for the mutex.
void createMutex() {
    CreateMutexW(nullptr, false, kMutexName);
}

void seedRandomGenerator() {
    sgSeedRandom(static_cast<uint32_t>(std::time(nullptr)));
}

// False when the engine cannot be started.
bool startDatabaseEngine() {
    AFX_MODULE_STATE* moduleState = AfxGetModuleState();
    if (moduleState->m_pDaoState != nullptr) return true;
    daoStarted = true;
    moduleState->m_dwVersion = kDaoVersion36;
    try {
        AfxDaoInit();
    } catch (CException* exception) {
        exception->Delete();
        daoStarted = false;
        return false;
    }
    return true;
}

AcEditor* editor() {
    return AcEditor::cast(acrxSysRegistry()->at(L"AcEditor"));
}

void addReactor() {
    reactor = std::make_unique<sgEditorReactor>();
    if (AcEditor* found = editor()) found->addReactor(reactor.get());
}

void declareUnlockedAndDocumentAware(void* packet) {
    acrxUnlockApplication(packet);
    acrxRegisterAppMDIAware(packet);
}

void closeCurrentConnection() {
    if (currentConnection() == nullptr) return;
    currentConnection()->Close();
    deleteCurrentConnection();
}

// The head entry goes whichever drawing it stands for. A connection that only this entry has stays
// open until the module ends.
void removeHeadEntry() {
    if (dbInfoList().empty()) return;
    dbInfoList().front()->strDatabase.clear();
    dbInfoList().pop_front();
}

// The document that is about to be closed is still among those counted.
bool atMostOneDocumentRemains() {
    const std::unique_ptr<AcApDocumentIterator> documents(
        acDocManagerPtr()->newAcApDocumentIterator());
    if (documents->done()) return true;
    documents->step();
    return documents->done();
}

void stopDatabaseEngine() {
    if (!daoStarted) return;
    AfxDaoTerm();
    AfxDeleteDaoState();
    daoStarted = false;
}

void removeReactor() {
    if (reactor == nullptr) return;
    if (AcEditor* found = editor()) found->removeReactor(reactor.get());
    reactor.reset();
}

void unloadCompanion() {
    acrxUnloadModule(kCompanionModule);
}

void registerTable(std::span<const FunctionRow> rows, int base) {
    registerFunctions(rows.data(), static_cast<int>(rows.size()), base);
}

}  // namespace

AcRx::AppRetCode initializeModule(void* packet) {
    loadCompanion();
    createMutex();
    seedRandomGenerator();
    if (!startDatabaseEngine()) {
        offerDatabaseDrivers();
        return AcRx::kRetError;
    }
    addReactor();
    declareUnlockedAndDocumentAware(packet);
    QNLeader::rxInit();
    acrxBuildClassHierarchy();
    return AcRx::kRetOK;
}

void loadDrawing() {
    acutPrintf(L"\nLoading Quillon Swift Gate (Direct)");
    registerTable(sgFunctions(), kSgBase);
    addDocumentEntry();
    registerTable(qnFunctions(), qnBase());
}

void unloadDrawing() {
    selectDocumentDatabase();
    closeCurrentConnection();
    removeHeadEntry();
    if (atMostOneDocumentRemains()) closeAllConnections();
}

void terminateModule() {
    deleteAcRxClass(QNLeader::desc());
    forgetDatabases();
    stopDatabaseEngine();
    removeReactor();
    unloadCompanion();
}

}  // namespace sg
