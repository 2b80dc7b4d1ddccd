#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "base/encoding.h"
#include "platform/ap/documents.h"
#include "platform/lisp/external_functions.h"
#include "platform/rx/messages.h"
#include "platform/rx/modules.h"

// A module inside the process whose functions are what a test says they are. Entry points are plain
// functions, so what they work on stands at file level; reset it ahead of each test.
namespace sg::test {

struct Probe {
    // What the LISP functions (outer ...) and (inner ...) do.
    std::function<int()> outer, inner;
    // Functions that are defined besides those, from number 2 on.
    std::vector<std::pair<const wchar_t*, int (*)()>> more;
    // Called after the module has done its own part of a message.
    std::function<AcRx::AppRetCode(AcRx::AppMsgCode)> onMessage;
    std::vector<std::string> messages;  // "init", "load Drawing1.dwg", ...
};
inline Probe probe;

inline std::string currentDrawing() {
    const AcApDocument* document = acDocManagerPtr()->curDocument();
    return document == nullptr ? "none" : toUtf8(document->fileName());
}

inline void defineProbeFunctions() {
    int code = 0;
    const auto define = [&](const wchar_t* name, int (*handler)()) {
        acedDefun(name, code);
        acedRegFunc(handler, code++);
    };
    define(L"outer", [] { return probe.outer(); });
    define(L"inner", [] { return probe.inner(); });
    for (const auto& [name, handler] : probe.more)
        define(name, handler);
}

inline AcRx::AppRetCode probeEntryPoint(AcRx::AppMsgCode message, void* packet) {
    switch (message) {
        case AcRx::kInitAppMsg:
            probe.messages.push_back("init");
            acrxUnlockApplication(packet);
            break;
        case AcRx::kLoadDwgMsg:
            probe.messages.push_back("load " + currentDrawing());
            defineProbeFunctions();
            break;
        case AcRx::kUnloadDwgMsg:
            probe.messages.push_back("unload " + currentDrawing());
            break;
        case AcRx::kUnloadAppMsg:
            probe.messages.push_back("end");
            break;
        default:
            probe.messages.push_back("message " + std::to_string(message) + " for function " +
                                     std::to_string(acedGetFunCode()));
    }
    return probe.onMessage ? probe.onMessage(message) : AcRx::kRetOK;
}

}  // namespace sg::test
