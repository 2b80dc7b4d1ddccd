#pragma once

// The application messages that a module's entry point receives, and what it answers.
namespace AcRx {

enum AppMsgCode {
    kNullMsg = 0,
    kInitAppMsg = 1,    // the module has just been loaded
    kUnloadAppMsg = 2,  // the module is about to be unloaded
    kLoadDwgMsg = 3,    // a document has been opened, or was open when the module was loaded
    kUnloadDwgMsg = 4,  // a document is about to be closed
    kInvkSubrMsg = 5,   // a LISP function without a registered handler is called
    kEndMsg = 7,
    kQuitMsg = 8,
    kSaveMsg = 13,
    kDependencyMsg = 14,
    kPreQuitMsg = 20,
    kInitDialogMsg = 21,
};

enum AppRetCode {
    kRetOK = 0,
    kRetError = 3,  // in answer to kInitAppMsg: the module refuses to load
};

}  // namespace AcRx

// A module exports these two:
//
//   extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet);
//   extern "C" int acrxGetApiVersion();
//
// `packet` names the module to acrxUnlockApplication and acrxRegisterAppMDIAware.
using AcRxEntryPoint = AcRx::AppRetCode (*)(AcRx::AppMsgCode message, void* packet);
using AcRxApiVersion = int (*)();

// The interface version that this host speaks; a module of another version is not loaded.
inline constexpr int kAcRxApiVersion = 2017;
