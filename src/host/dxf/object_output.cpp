#include "host/dxf/object_output.h"

#include <algorithm>

#include "base/encoding.h"
#include "host/dxf/file_form.h"
#include "host/model/core/group_writer.h"
#include "host/model/core/object_access.h"

namespace sg::dxf {
namespace {

using model::GroupData;
using model::ObjectAccess;

constexpr int kMarker = 100;
constexpr int kApplicationName = 1001;

struct CodeSince {
    std::string_view section;
    int first, last;
    AcDb::AcDbDwgVersion release;
};

// What older releases do not have of every entity, and of layers.
constexpr CodeSince kCodes[] = {
    {"AcDbEntity", 420, 449, AcDb::kDHL_1018},
    {"AcDbEntity", 347, 348, AcDb::kDHL_1021},
    {"AcDbEntity", 284, 284, AcDb::kDHL_1021},
    {"AcDbLayerTableRecord", 420, 449, AcDb::kDHL_1018},
    {"AcDbLayerTableRecord", 347, 348, AcDb::kDHL_1021},
};

// Passes an object's groups on, with the name of a table behind its group 0, without what the
// release does not have, and with the groups of its file that its class does not know at the ends
// of their sections.
class ChangingSink {
  public:
    ChangingSink(GroupOutput& output, const Release& release, std::string_view tableName,
                 const GroupData* unknown)
        : output_(output), release_(release), tableName_(tableName), unknown_(unknown) {}

    void text(int code, std::wstring_view text) {
        if (code == kMarker) {
            endSection();
            section_ = toUtf8(text);
        } else if (code == kApplicationName) {
            endSection();
        }
        if (!take(code)) return;
        output_.text(code, text);
        if (code == 0 && !tableName_.empty()) output_.name(2, tableName_);
    }
    void real(int code, double value) {
        if (take(code)) output_.real(code, value);
    }
    void whole(int code, int64_t value) {
        if (take(code)) output_.whole(code, value);
    }
    void handle(int code, uint64_t handle) {
        if (take(code)) output_.handle(code, handle);
    }
    void object(int code, AcDbObjectId id) {
        if (take(code)) output_.object(code, id);
    }
    void binary(int code, std::string_view data) {
        if (take(code)) output_.binary(code, data);
    }
    void group(const GroupData::Group& group) {
        if (group.code == kMarker || group.code == kApplicationName) {
            text(group.code, fromUtf8(group.text));
        } else if (take(group.code)) {
            output_.group(group);
        }
    }
    void endSection();

  private:
    bool isGraphics(int code) const;
    // False for a group that the release does not have.
    bool take(int code) {
        for (const CodeSince& since : kCodes) {
            if (code >= since.first && code <= since.last && release_.number < since.release &&
                section_ == since.section) {
                return false;
            }
        }
        if (unknown_ != nullptr) written_.push_back(code);
        return true;
    }

    GroupOutput& output_;
    const Release& release_;
    std::string_view tableName_;
    const GroupData* unknown_;
    std::string section_;
    std::vector<int> written_;  // codes of the section
};

// Graphics of an entity have another group for their length before release 2010.
bool ChangingSink::isGraphics(int code) const {
    return (code == 160 || code == 310) && section_ == "AcDbEntity";
}

void ChangingSink::endSection() {
    if (unknown_ == nullptr || section_.empty()) return;
    bool isHere = false;
    for (GroupData::Walk walk(*unknown_); walk.next();) {
        const GroupData::Group& group = walk.group();
        if (group.code == kMarker) {
            isHere = group.text == section_;
        } else if (isHere &&
                   std::find(written_.begin(), written_.end(), group.code) == written_.end()) {
            if (release_.number < AcDb::kDHL_1024 && isGraphics(group.code)) continue;
            output_.group(group);
        }
    }
    written_.clear();
    section_.clear();
}

}  // namespace

bool ObjectOutput::writeAsRead(const AcDbObject& object, std::string_view tableName) {
    const model::Extras* const extras = ObjectAccess::extras(object);
    if (extras == nullptr || extras->fileForm == nullptr) return false;
    const model::FileForm& form = *extras->fileForm;
    if (form.release != release_.number ||
        form.fingerprint != fingerprintOf(object, release_.number)) {
        return false;
    }
    for (GroupData::Walk walk(form.groups); walk.next();) {
        output_.group(walk.group());
        if (walk.group().code == 0 && !tableName.empty()) output_.name(2, tableName);
    }
    return true;
}

void ObjectOutput::writeAnew(const AcDbObject& object, std::string_view tableName) {
    const model::Extras* const extras = ObjectAccess::extras(object);
    const model::FileForm* const form = extras == nullptr ? nullptr : extras->fileForm.get();
    // The groups of objects have changed little since release 2007.
    const bool keepsUnknown =
        form != nullptr && !form->unknown.empty() &&
        (release_.number >= form->release || release_.number >= AcDb::kDHL_1021);
    const model::Unguarded guard(object);
    if (tableName.empty() && !keepsUnknown && release_.number >= AcDb::kDHL_1021) {
        model::GroupWriter<GroupOutput> writer(output_, object.database(), release_.number);
        object.dxfOut(&writer);
        return;
    }
    ChangingSink sink(output_, release_, tableName, keepsUnknown ? &form->unknown : nullptr);
    model::GroupWriter<ChangingSink> writer(sink, object.database(), release_.number);
    object.dxfOut(&writer);
    sink.endSection();
}

void ObjectOutput::write(const AcDbObject& object) {
    if (!writeAsRead(object, {})) writeAnew(object, {});
}

void ObjectOutput::writeTable(const AcDbObject& table, std::string_view name) {
    if (!writeAsRead(table, name)) writeAnew(table, name);
}

}  // namespace sg::dxf
