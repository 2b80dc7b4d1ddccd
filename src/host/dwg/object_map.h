#pragma once

#include "host/dwg/file_content.h"

namespace sg::dwg {

// Where an object begins: in files up to release 2000 in the file, later in the objects' section.
struct ObjectPlace {
    uint64_t handle = 0;
    uint64_t address = 0;
};

// The section that tells where each object is. What is damaged of it is left out, with a warning.
std::vector<ObjectPlace> readObjectMap(FileContent& content, const std::wstring& file);

// `places` stand in rising order of handles.
Bytes writeObjectMap(const std::vector<ObjectPlace>& places);

}  // namespace sg::dwg
