#include <algorithm>

#include "base/text.h"
#include "host/model/core/database_state.h"
#include "host/model/core/group_data.h"
#include "host/model/core/object_access.h"
#include "host/model/core/symbol_records.h"

namespace sg::model {
namespace {

constexpr int kApplicationName = 1001;
constexpr int kExtendedDataStart = -3;

std::wstring applicationName(AcDbObjectId application) {
    const auto* const record = peek<AcDbSymbolTableRecord>(application);
    return record == nullptr ? std::wstring() : record->name();
}

// Braces in the groups of one application open and close lists.
bool followBrace(const resbuf& node, int& depth) {
    if (node.restype != 1002) return true;
    const std::wstring_view brace(node.resval.rstring != nullptr ? node.resval.rstring : L"");
    if (brace == L"{") return ++depth > 0;
    return brace == L"}" && --depth >= 0;
}

}  // namespace

Acad::ErrorStatus ExtendedData::set(const resbuf* list, const AcDbDatabase* database) {
    if (list != nullptr && list->restype == kExtendedDataStart) list = list->rbnext;
    std::vector<Part> given;
    int depth = 0;
    for (const resbuf* node = list; node != nullptr; node = node->rbnext) {
        if (node->restype == kApplicationName) {
            if (depth != 0) return Acad::eBadDxfSequence;
            const AcDbObjectId id = findRegisteredApplication(database, node->resval.rstring);
            if (id.isNull()) return Acad::eRegappIdNotFound;
            given.push_back({id, {}});
            continue;
        }
        const bool fits = !given.empty() && node->restype >= 1000 && followBrace(*node, depth) &&
                          given.back().groups.append(*node);
        if (!fits) return Acad::eBadDxfSequence;
    }
    if (depth != 0) return Acad::eBadDxfSequence;
    ExtendedData result = *this;
    for (Part& part : given)
        result.replace(std::move(part));
    if (result.fileBytes() > kMaximumBytes) return Acad::eXdataSizeExceeded;
    *this = std::move(result);
    return Acad::eOk;
}

void ExtendedData::replace(Part part) {
    const auto old = std::find_if(parts_.begin(), parts_.end(), [&](const Part& each) {
        return each.application == part.application;
    });
    if (old == parts_.end()) {
        if (!part.groups.empty()) parts_.push_back(std::move(part));
    } else if (part.groups.empty()) {
        parts_.erase(old);
    } else {
        *old = std::move(part);
    }
}

// Each application costs its handle and a length.
size_t ExtendedData::fileBytes() const {
    size_t total = 0;
    for (const Part& part : parts_)
        total += 10 + part.groups.fileBytes();
    return total;
}

resbuf* ExtendedData::toList(const wchar_t* application) const {
    resbuf* all = nullptr;
    for (const Part& part : parts_) {
        const std::wstring name = applicationName(part.application);
        if (application != nullptr && !equalIgnoringCase(name, application)) continue;
        resbuf* const head = acutBuildList(kApplicationName, name.c_str(), RTNONE);
        all = joinLists(all, joinLists(head, part.groups.toList()));
    }
    return all;
}

Acad::ErrorStatus ExtendedData::dwgOut(AcDbDwgFiler& filer) const {
    filer.writeUInt16(static_cast<uint16_t>(parts_.size()));
    for (const Part& part : parts_) {
        filer.writeHardPointerId(part.application);
        part.groups.dwgOut(filer);
    }
    return filer.filerStatus();
}

Acad::ErrorStatus ExtendedData::dwgIn(AcDbDwgFiler& filer) {
    uint16_t count = 0;
    parts_.clear();
    filer.readUInt16(&count);
    while (count-- > 0 && filer.filerStatus() == Acad::eOk) {
        Part part;
        filer.readHardPointerId(&part.application);
        part.groups.dwgIn(filer);
        parts_.push_back(std::move(part));
    }
    return filer.filerStatus();
}

Acad::ErrorStatus ExtendedData::dxfOut(AcDbDxfFiler& filer) const {
    resbuf* const list = toList(nullptr);
    for (const resbuf* node = list; node != nullptr; node = node->rbnext)
        filer.writeItem(*node);
    acutRelRb(list);
    return filer.filerStatus();
}

}  // namespace sg::model
