#include "host/dxf/object_output.h"

#include <algorithm>

#include "base/encoding.h"
#include "host/dxf/file_form.h"
#include "host/model/core/group_writer.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/render/proxy_graphics.h"
#include "platform/db/entity.h"

namespace sg::dxf {
namespace {

using model::GroupData;
using model::ObjectAccess;

constexpr std::string_view kEntitySection = "AcDbEntity";
constexpr int kMarker = 100;
constexpr int kGraphics = 310;
constexpr int kGraphicsSize = 160;
constexpr int kGraphicsSizeBefore2010 = 92;
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

bool contains(const std::vector<int>& codes, int code) {
    return std::find(codes.begin(), codes.end(), code) != codes.end();
}

// What goes into an object's groups besides those that its class writes.
struct Additions {
    std::string_view tableName;          // behind its group 0
    const GroupData* unknown = nullptr;  // of its file: what its class does not know
    std::string graphics;                // for programs that do not know its class
    std::wstring_view name = {};         // for the one in its group 0

    bool isEmpty() const {
        return tableName.empty() && unknown == nullptr && graphics.empty() && name.empty();
    }
};

// Passes an object's groups on, without what the release does not have, and with additions at the
// ends of their sections.
class ChangingSink {
  public:
    ChangingSink(GroupOutput& output, const Release& release, Additions additions)
        : output_(output), release_(release), additions_(std::move(additions)) {}

    void text(int code, std::wstring_view text) {
        if (code == kMarker) {
            endSection();
            section_ = toUtf8(text);
        } else if (code == kApplicationName) {
            endSection();
        }
        if (!take(code)) return;
        output_.text(code, code == 0 && !additions_.name.empty() ? additions_.name : text);
        if (code == 0 && !additions_.tableName.empty()) output_.name(2, additions_.tableName);
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
    void writeUnknown();
    void writeKeptGraphics(const GroupData::Group& group);
    int graphicsSizeCode() const;
    void writeGraphics();
    // False for a group that the release does not have.
    bool take(int code) {
        for (const CodeSince& since : kCodes) {
            if (code >= since.first && code <= since.last && release_.number < since.release &&
                section_ == since.section) {
                return false;
            }
        }
        if (additions_.unknown != nullptr) written_.push_back(code);
        return true;
    }

    GroupOutput& output_;
    const Release& release_;
    const Additions additions_;
    std::string section_;
    std::vector<int> written_;  // codes of the section
};

bool ChangingSink::isGraphics(int code) const {
    return section_ == kEntitySection &&
           (code == kGraphicsSize || code == kGraphicsSizeBefore2010 || code == kGraphics);
}

// Graphics of the file are old where there are new ones.
void ChangingSink::writeUnknown() {
    bool isHere = false;
    for (GroupData::Walk walk(*additions_.unknown); walk.next();) {
        const GroupData::Group& group = walk.group();
        if (group.code == kMarker) {
            isHere = group.text == section_;
            continue;
        }
        if (!isHere || contains(written_, group.code)) continue;
        if (!isGraphics(group.code)) {
            output_.group(group);
        } else if (additions_.graphics.empty()) {
            writeKeptGraphics(group);
        }
    }
}

int ChangingSink::graphicsSizeCode() const {
    return release_.number < AcDb::kDHL_1024 ? kGraphicsSizeBefore2010 : kGraphicsSize;
}

void ChangingSink::writeKeptGraphics(const GroupData::Group& group) {
    if (group.code == kGraphics) {
        output_.group(group);
    } else {
        output_.whole(graphicsSizeCode(), group.whole);
    }
}

void ChangingSink::writeGraphics() {
    constexpr size_t kPiece = 127;  // bytes, as other programs write them
    std::string_view rest = additions_.graphics;
    output_.whole(graphicsSizeCode(), static_cast<int64_t>(rest.size()));
    for (; !rest.empty(); rest.remove_prefix(std::min(kPiece, rest.size())))
        output_.binary(kGraphics, rest.substr(0, kPiece));
}

void ChangingSink::endSection() {
    if (section_.empty()) return;
    if (additions_.unknown != nullptr) writeUnknown();
    if (section_ == kEntitySection && !additions_.graphics.empty()) writeGraphics();
    written_.clear();
    section_.clear();
}

// How an entity looks for programs without its class. The groups of a proxy from a DXF file have
// it.
std::string graphicsOf(const AcDbObject& object) {
    const model::ProxyData* const data = model::proxyData(object);
    const bool isSaid = data != nullptr && !data->isOnlyBits() &&
                        (data->bits == nullptr || data->bits->graphics.empty());
    return isSaid ? std::string() : render::graphicsForOthers(object);
}

bool hasGraphics(const GroupData& unknown) {
    bool isHere = false;
    for (GroupData::Walk walk(unknown); walk.next();) {
        const GroupData::Group& group = walk.group();
        if (group.code == kMarker) isHere = group.text == kEntitySection;
        if (isHere && group.code == kGraphics) return true;
    }
    return false;
}

// Groups tell less of some entities than their file's graphics show, so that those stay as long as
// the entity does.
bool keepsGraphics(const AcDbObject& object, const model::FileForm& form) {
    return hasGraphics(form.unknown) &&
           form.fingerprint ==
               fingerprintOf(object, static_cast<AcDb::AcDbDwgVersion>(form.release));
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
    Additions additions{tableName, keepsUnknown ? &form->unknown : nullptr, {}};
    if (!keepsUnknown || !keepsGraphics(object, *form)) additions.graphics = graphicsOf(object);
    const model::ProxyData* const data = model::proxyData(object);
    if (data != nullptr && data->isOnlyBits()) additions.name = L"ACAD_PROXY_ENTITY";
    const model::Unguarded guard(object);
    if (additions.isEmpty() && release_.number >= AcDb::kDHL_1021) {
        model::GroupWriter<GroupOutput> writer(output_, object.database(), release_.number);
        object.dxfOut(&writer);
        return;
    }
    ChangingSink sink(output_, release_, additions);
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
