#include "host/dxf/object_scanner.h"

#include "base/encoding.h"

namespace sg::dxf {

std::wstring Report::at(size_t position) const {
    const std::wstring number = std::to_wstring(reader_.lineOf(position));
    return file_ + (reader_.isBinary() ? L": byte " : L":") + number + L": ";
}

std::vector<std::wstring> Report::take() {
    if (left_ > 0) {
        warnings_.push_back(file_ + L": " + std::to_wstring(left_) + L" more places");
    }
    return std::move(warnings_);
}

const Group* ScannedObject::find(int code) const {
    for (const Group& group : groups) {
        if (group.code == 1001) break;
        if (group.code == code) return &group;
    }
    return nullptr;
}

const Group* ScannedObject::findIdentity(int code) const {
    bool inList = false;
    for (size_t i = 1; i < groups.size(); ++i) {
        const Group& group = groups[i];
        if (group.code == 100 || group.code == 1001) break;
        if (group.code == 102) inList = group.text.starts_with('{');
        if (group.code == code && !inList) return &group;
    }
    return nullptr;
}

bool ObjectScanner::skipDamage(const ScannedObject& object) {
    const size_t at = reader_.position();
    std::wstring text = L"this is no group of a drawing file; ";
    text += object.groups.empty() ? L"what follows" : fromUtf8(object.name());
    report_.warn(at, text + L" up to the next object is left out");
    return reader_.recover();
}

bool ObjectScanner::next(ScannedObject& object) {
    object.groups.clear();
    Group group;
    while (true) {
        const size_t at = reader_.position();
        switch (reader_.next(group)) {
            case GroupReader::Step::end:
                return !object.groups.empty();
            case GroupReader::Step::damage:
                if (!skipDamage(object)) return false;
                object.groups.clear();
                continue;
            case GroupReader::Step::group:
                break;
        }
        if (group.code != 0) {
            if (object.groups.empty()) continue;
            if (object.hasNameFor(group)) {
                group.kind = ValueKind::text;
                group.isMalformed = false;
            }
            object.groups.push_back(group);
            continue;
        }
        if (!object.groups.empty()) {
            reader_.seek(at);
            return true;
        }
        object.position = at;
        object.groups.push_back(group);
    }
}

}  // namespace sg::dxf
