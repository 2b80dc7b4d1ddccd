#include "bridge/argument_list.h"
#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "platform/lisp/external_functions.h"
#include "platform/win/download.h"
#include "support/archive.h"
#include "support/lisp_functions.h"

namespace sg {

int createZip() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring path, pattern;
    Archive archive;
    if (!nextString(at, path) || !archive.NewArchive(path)) return kLispOk;
    nextListBegin(at);
    while (nextString(at, pattern)) {
        if (archive.AppendFiles(pattern, false)) continue;
        archive.Close();
        acedRetNil();
        return kLispOk;
    }
    archive.WriteAndClose();  // deliberately not looked at: the answer is T even so
    acedRetT();
    return kLispOk;
}

int extractZip() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring path, folder;
    if (!nextString(at, path) || !nextString(at, folder)) return kLispOk;
    Archive archive;
    const bool extracted = archive.OpenArchive(path) && archive.ExtractAll(folder);
    archive.Close();
    extracted ? acedRetT() : acedRetNil();
    return kLispOk;
}

int downloadFile() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring url, file;
    if (!nextString(at, url) || !nextString(at, file)) return kLispOk;
    // Whether it worked is for the caller to see by the file.
    DeleteUrlCacheEntryW(url.c_str());
    URLDownloadToFileW(nullptr, url.c_str(), file.c_str(), 0, nullptr);
    return kLispOk;
}

}  // namespace sg
