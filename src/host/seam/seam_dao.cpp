#include "host/seam/host.h"
#include "platform/dao/engine.h"
#include "platform/dao/exception.h"

// The engine's start and stop, on the Host.

using sg::Host;

struct SgDaoState {
    bool started = true;
};

AFX_MODULE_STATE* AfxGetModuleState() {
    return &Host::the().moduleState();
}

void AfxDaoInit() {
    AFX_MODULE_STATE& state = Host::the().moduleState();
    if (Host::the().options().failEngine) {
        // 3447: the engine's library could not be found or started.
        throw new CDaoException(3447, L"The database engine could not be started.");
    }
    if (state.m_pDaoState == nullptr) state.m_pDaoState = new SgDaoState;
    state.m_pDaoState->started = true;
}

void AfxDaoTerm() {
    AFX_MODULE_STATE& state = Host::the().moduleState();
    if (state.m_pDaoState != nullptr) state.m_pDaoState->started = false;
}

void AfxDeleteDaoState() {
    AFX_MODULE_STATE& state = Host::the().moduleState();
    delete state.m_pDaoState;
    state.m_pDaoState = nullptr;
}
