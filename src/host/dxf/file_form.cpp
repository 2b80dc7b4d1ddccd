#include "host/dxf/file_form.h"

#include <set>
#include <string>

#include "base/encoding.h"
#include "host/dxf/object_filer.h"
#include "host/model/core/object_access.h"

namespace sg::dxf {
namespace {

constexpr int kMarker = 100;
constexpr int kEmbeddedObject = 101;
constexpr int kApplicationName = 1001;

// ASCII without escapes is the same in the file and in the drawing.
bool equalsPlainly(std::string_view bytes, std::wstring_view text, bool& isPlain) {
    isPlain = true;
    for (const char c : bytes) {
        if (static_cast<unsigned char>(c) >= 0x80 || c == '\\' || c == '^') {
            isPlain = false;
            return false;
        }
    }
    return bytes.size() == text.size() &&
           std::equal(bytes.begin(), bytes.end(), text.begin(),
                      [](char a, wchar_t b) { return static_cast<wchar_t>(a) == b; });
}

// A group that stands ready, value by value.
template <class Sink>
void passOn(Sink& sink, const model::GroupData::Group& group) {
    using Kind = model::GroupData::Kind;
    switch (group.kind) {
        case Kind::text:
            return sink.text(group.code, fromUtf8(group.text));
        case Kind::binary:
            return sink.binary(group.code, group.text);
        case Kind::real:
            return sink.real(group.code, group.real);
        case Kind::point:
        case Kind::flatPoint:
            sink.real(group.code, group.real);
            sink.real(group.code + 10, group.y);
            if (group.kind == Kind::point) sink.real(group.code + 20, group.z);
            return;
        case Kind::whole:
            return sink.whole(group.code, group.whole);
        case Kind::handle:
            return sink.handle(group.code, group.handle);
        case Kind::object:
            return sink.object(group.code, group.object);
    }
}

// Which codes a class writes behind which markers.
class CodeSink {
  public:
    bool has(const std::string& section, int code) const {
        return codes_.contains({section, code});
    }
    void text(int code, std::wstring_view text) {
        if (code == kMarker) section_ = toUtf8(text);
        add(code);
    }
    void real(int code, double) { add(code); }
    void whole(int code, int64_t) { add(code); }
    void handle(int code, uint64_t) { add(code); }
    void object(int code, AcDbObjectId) { add(code); }
    void binary(int code, std::string_view) { add(code); }
    void group(const model::GroupData::Group& group) { passOn(*this, group); }

  private:
    void add(int code) { codes_.insert({section_, code}); }

    std::string section_;
    std::set<std::pair<std::string, int>> codes_;
};

template <class Sink>
void writeTo(Sink& sink, const AcDbObject& object, AcDb::AcDbDwgVersion release) {
    model::GroupWriter<Sink> writer(sink, object.database(), release);
    const model::Unguarded guard(object);
    object.dxfOut(&writer);
}

// The groups that the class does not write, each run of them behind its section's marker.
void keepUnknown(model::GroupData& unknown, std::span<const Group> groups, const CodeSink& known,
                 const TextCodec& codec, Handles& handles) {
    std::string section;
    bool isMarked = false;
    for (const Group& group : groups) {
        if (group.code == kEmbeddedObject || group.code == kApplicationName) break;
        if (group.code == kMarker) {
            section = group.text;
            isMarked = false;
        }
        if (section.empty() || group.code == kMarker || known.has(section, group.code)) continue;
        if (!isMarked) unknown.appendText(kMarker, section);
        isMarked = true;
        appendGroup(unknown, group, codec, handles);
    }
}

}  // namespace

void ComparingSink::text(int code, std::wstring_view text) {
    same_ = same_ && at_ < groups_.size() && groups_[at_].code == code;
    if (!same_) return;
    const Group& group = groups_[at_++];
    bool isPlain = false;
    same_ = equalsPlainly(group.text, text, isPlain);
    if (isPlain) return;
    scratch_.clear();
    codec_.decode(group.text, scratch_);
    same_ = scratch_ == text;
}

void ComparingSink::binary(int code, std::string_view data) {
    if (!expect(code, ValueKind::binary)) return;
    const Group& group = groups_[at_++];
    same_ = group.isHex ? model::fromHexDigits(fromUtf8(group.text)) == data : group.text == data;
}

void ComparingSink::group(const model::GroupData::Group& group) {
    passOn(*this, group);
}

void FingerprintSink::group(const model::GroupData::Group& group) {
    passOn(*this, group);
}

uint64_t fingerprintOf(const AcDbObject& object, AcDb::AcDbDwgVersion release) {
    FingerprintSink sink;
    writeTo(sink, object, release);
    return sink.value();
}

std::unique_ptr<model::FileForm> formToKeep(const AcDbObject& object, std::span<const Group> groups,
                                            const TextCodec& codec, Handles& handles,
                                            AcDb::AcDbDwgVersion release) {
    ComparingSink comparing(groups, codec);
    writeTo(comparing, object, release);
    if (comparing.isSame()) return nullptr;
    auto form = std::make_unique<model::FileForm>();
    for (const Group& group : groups)
        appendGroup(form->groups, group, codec, handles);
    CodeSink known;
    writeTo(known, object, release);
    keepUnknown(form->unknown, groups, known, codec, handles);
    form->fingerprint = fingerprintOf(object, release);
    form->release = static_cast<int16_t>(release);
    return form;
}

}  // namespace sg::dxf
