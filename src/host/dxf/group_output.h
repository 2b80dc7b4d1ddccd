#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "host/dxf/group.h"
#include "host/dxf/text_codec.h"
#include "host/model/core/group_data.h"

namespace sg::dxf {

// Writes groups as text or binary, a large piece at a time. A sink of group writers.
class GroupOutput {
  public:
    using Write = std::function<bool(std::string_view bytes)>;

    GroupOutput(Write write, bool isBinary, const TextCodec& codec);

    void text(int code, std::wstring_view text);
    void name(int code, std::string_view ascii);  // without escapes
    void real(int code, double value);
    void whole(int code, int64_t value);
    void handle(int code, uint64_t handle);
    void object(int code, AcDbObjectId id);
    void binary(int code, std::string_view data);
    void group(const model::GroupData::Group& group);

    // Writes what is left. False when something could not be written.
    bool finish();

  private:
    void putCode(int code);
    void putLineEnd();
    void endValue() {
        if (buffer_.size() >= kPiece) flush();
    }
    void flush();
    template <class Value>
    void putBytes(Value value) {
        buffer_.append(reinterpret_cast<const char*>(&value), sizeof(Value));
    }
    void putString(std::string_view bytes);

    static constexpr size_t kPiece = 1 << 18;

    Write write_;
    const bool isBinary_;
    const TextCodec& codec_;
    std::string buffer_;
    bool isWritten_ = true;
};

}  // namespace sg::dxf
