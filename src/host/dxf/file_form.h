#pragma once

#include <memory>
#include <span>

#include "host/dxf/group.h"
#include "host/dxf/handles.h"
#include "host/dxf/text_codec.h"
#include "host/model/core/extras.h"
#include "host/model/core/group_writer.h"

namespace sg::dxf {

// Whether a class writes an object with the groups that were read, and in their order.
class ComparingSink {
  public:
    ComparingSink(std::span<const Group> groups, const TextCodec& codec)
        : groups_(groups), codec_(codec) {}

    bool isSame() const { return same_ && at_ == groups_.size(); }

    void text(int code, std::wstring_view text);
    void real(int code, double value) {
        if (expect(code, ValueKind::real)) same_ = groups_[at_++].real == value;
    }
    void whole(int code, int64_t value) {
        if (!same_ || at_ == groups_.size() || groups_[at_].code != code ||
            !isWhole(groups_[at_].kind)) {
            same_ = false;
            return;
        }
        same_ = groups_[at_++].whole == value;
    }
    void handle(int code, uint64_t handle) {
        if (expect(code, ValueKind::handle)) same_ = groups_[at_++].handle == handle;
    }
    void object(int code, AcDbObjectId id) {
        if (expect(code, ValueKind::object)) same_ = groups_[at_++].handle == Handles::of(id);
    }
    void binary(int code, std::string_view data);
    void group(const model::GroupData::Group& group);

  private:
    bool expect(int code, ValueKind kind) {
        same_ =
            same_ && at_ < groups_.size() && groups_[at_].code == code && groups_[at_].kind == kind;
        return same_;
    }

    std::span<const Group> groups_;
    const TextCodec& codec_;
    size_t at_ = 0;
    bool same_ = true;
    std::wstring scratch_;
};

// A number that differs, as good as surely, when any group does.
class FingerprintSink {
  public:
    uint64_t value() const { return value_; }

    void text(int code, std::wstring_view text) {
        mix(static_cast<uint64_t>(code));
        for (const wchar_t c : text)
            mix(static_cast<uint64_t>(c));
    }
    void real(int code, double value) {
        uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof(bits));
        pair(code, bits);
    }
    void whole(int code, int64_t value) { pair(code, static_cast<uint64_t>(value)); }
    void handle(int code, uint64_t handle) { pair(code, handle); }
    void object(int code, AcDbObjectId id) { pair(code, Handles::of(id)); }
    void binary(int code, std::string_view data) {
        mix(static_cast<uint64_t>(code));
        for (const char c : data)
            mix(static_cast<unsigned char>(c));
    }
    void group(const model::GroupData::Group& group);

  private:
    void mix(uint64_t word) {
        value_ = (value_ ^ word) * 0x9E3779B97F4A7C15u;
        value_ ^= value_ >> 29;
    }
    void pair(int code, uint64_t word) {
        mix(static_cast<uint64_t>(code));
        mix(word);
    }

    uint64_t value_ = 0x243F6A8885A308D3u;
};

// What an object's class writes now, as a number.
uint64_t fingerprintOf(const AcDbObject& object, AcDb::AcDbDwgVersion release);

// The form of an object as a file has it: all its groups from the group 0 on. Null when its class
// writes the same. The object has been read from them and is in the drawing with its owner.
std::unique_ptr<model::FileForm> formToKeep(const AcDbObject& object, std::span<const Group> groups,
                                            const TextCodec& codec, Handles& handles,
                                            AcDb::AcDbDwgVersion release);

}  // namespace sg::dxf
