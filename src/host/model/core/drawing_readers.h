#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "platform/rx/error_status.h"

class AcDbDatabase;

namespace sg::model {

// Those who read drawing files, each of its own kind of file.
class SG_API DrawingReaders {
  public:
    // True when the file's first bytes (up to kStartBytes) are of the reader's kind.
    using Recognises = bool (*)(std::string_view start);
    // Fills an empty database with what the file holds.
    using Read = Acad::ErrorStatus (*)(AcDbDatabase& database, const std::wstring& path);

    static constexpr size_t kStartBytes = 64;

    void add(Recognises recognises, Read read) { readers_.push_back({recognises, read}); }
    // Null when nobody knows such a file.
    Read find(std::string_view start) const {
        for (const Reader& reader : readers_) {
            if (reader.recognises(start)) return reader.read;
        }
        return nullptr;
    }

  private:
    struct Reader {
        Recognises recognises;
        Read read;
    };

    std::vector<Reader> readers_;
};

}  // namespace sg::model
