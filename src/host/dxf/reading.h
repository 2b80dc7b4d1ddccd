#pragma once

#include <optional>

#include "host/dxf/error.h"
#include "host/dxf/handles.h"
#include "host/dxf/object_scanner.h"
#include "host/dxf/text_codec.h"
#include "host/model/core/file_origin.h"
#include "platform/db/database.h"

namespace sg::dxf {

// What the parts of one reading share.
struct Reading {
    Reading(AcDbDatabase& target, std::string_view content, std::wstring file)
        : database(target),
          state(model::DatabaseState::of(target)),
          reader(content),
          report(std::move(file), reader),
          scanner(reader, report),
          handles(state),
          origin(std::make_unique<model::FileOrigin>()) {}

    AcDbDatabase& database;
    model::DatabaseState& state;
    GroupReader reader;
    Report report;
    ObjectScanner scanner;
    Handles handles;
    std::unique_ptr<model::FileOrigin> origin;
    TextCodec codec{"ANSI_1252", false};
    AcDb::AcDbDwgVersion release = AcDb::kDHL_1009;
    uint64_t seed = 1;  // the next handle, as the file has it

    std::wstring text(const Group& group) const { return codec.decoded(group.text); }
};

}  // namespace sg::dxf
