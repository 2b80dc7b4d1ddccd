#pragma once

#include <cstdint>

#include "base/export.h"

// The database engine's state in one module.
struct SgDaoState;

// What the framework keeps for each module that uses it.
struct AFX_MODULE_STATE {
    uint16_t m_dwVersion = 0;           // 0x0601 selects engine version 3.6
    SgDaoState* m_pDaoState = nullptr;  // set while the engine is started
};

// The state of the module that calls; one for each host.
SG_API AFX_MODULE_STATE* AfxGetModuleState();

// Starts the engine and sets the module state's m_pDaoState. Throws CDaoException when it cannot be
// started.
SG_API void AfxDaoInit();

// Stops the engine. The state object stays until AfxDeleteDaoState. No effect when it is not
// started.
SG_API void AfxDaoTerm();

// Deletes the module state's m_pDaoState and clears the pointer.
SG_API void AfxDeleteDaoState();
