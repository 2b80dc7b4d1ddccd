#pragma once

#include "host/dwg/read_filer.h"
#include "host/dwg/section_streams.h"
#include "host/dwg/write_filer.h"

namespace sg::dwg {

constexpr uint16_t kFirstClass = 500;  // the number, and object type, of a file's first class
constexpr uint16_t kEntityClass = 0x1F2, kObjectClass = 0x1F3;  // what a class's objects are

// A class that has no object type of its own in all files.
struct ClassEntry {
    uint16_t number = 0;
    uint16_t proxyFlags = 0;
    std::wstring applicationName, className, dxfName;
    bool wasProxy = false;
    uint16_t kind = kObjectClass;
    int32_t instances = 0;
    // The release that brought it, and numbers without a known meaning.
    int32_t release = 0, maintenance = 0, unknown[2] = {0, 0};
};

// The section of classes. Throws Error when it cannot be read.
std::vector<ClassEntry> readClasses(FileContent& content, const std::wstring& file,
                                    const ReadContext& context);

Bytes writeClasses(const std::vector<ClassEntry>& classes, const WriteContext& context);

}  // namespace sg::dwg
