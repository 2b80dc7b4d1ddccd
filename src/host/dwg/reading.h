#pragma once

#include <memory>
#include <unordered_map>

#include "host/dwg/class_section.h"
#include "host/dwg/file_content.h"
#include "host/dwg/origin.h"
#include "host/dwg/read_filer.h"
#include "host/model/core/database_state.h"
#include "host/model/core/file_origin.h"
#include "platform/db/database.h"

namespace sg::dwg {

// What the parts of one reading share.
struct Reading {
    Reading(AcDbDatabase& target, FileContent& opened, std::wstring name,
            const dxf::TextCodec& codec)
        : database(target),
          state(model::DatabaseState::of(target)),
          content(opened),
          file(std::move(name)),
          context{target, opened.release, codec, dxf::Handles(state)},
          origin(std::make_unique<model::FileOrigin>()),
          own(std::make_shared<model::DwgOrigin>()) {}

    // Of more places than anybody reads the rest is counted.
    static constexpr size_t kMostWarnings = 1000;
    void warn(const std::wstring& text) {
        if (warnings.size() < kMostWarnings) {
            warnings.push_back(file + L": " + text);
        } else {
            ++unsaid;
        }
    }

    AcDbDatabase& database;
    model::DatabaseState& state;
    FileContent& content;
    std::wstring file;
    ReadContext context;
    std::vector<ClassEntry> classes;
    std::unique_ptr<model::FileOrigin> origin;
    std::shared_ptr<model::DwgOrigin> own;
    bool hasWrapped = false;  // objects that stood for those of other classes
    uint64_t seed = 1;        // the next handle, as the file has it
    std::vector<std::wstring> warnings;
    size_t unsaid = 0;
};

}  // namespace sg::dwg
