#include <algorithm>

#include "host/model/core/dwg_form.h"
#include "platform/db/linetype_table.h"

// Linetypes as DWG files have them.

using sg::model::DwgForm;
using sg::model::isBefore;

namespace {

constexpr uint8_t kAlignment = 'A';
constexpr int16_t kHasText = 2;
constexpr size_t kMostDashes = 255;

// The texts of the dashes, each with a zero behind it, in an area of fixed size. A dash with a text
// has the text's place there for its shape number.
constexpr size_t kOldArea = 256;
constexpr size_t kArea = 512;

using Dash = AcDbLinetypeTableRecord::Dash;

bool hasTexts(const std::vector<Dash>& dashes) {
    return std::any_of(dashes.begin(), dashes.end(),
                       [](const Dash& dash) { return (dash.flags & kHasText) != 0; });
}

size_t areaSize(AcDbDwgFiler& filer, const std::vector<Dash>& dashes) {
    if (isBefore(&filer, AcDb::kDHL_1021)) return kOldArea;
    return hasTexts(dashes) ? kArea : 0;
}

class TextArea {
  public:
    TextArea(DwgForm& form, size_t unit) : form_(form), unit_(unit) {}

    int16_t add(const std::wstring& text) {
        const size_t place = bytes_.size();
        bytes_ += form_.encode(text);
        bytes_.append(unit_, '\0');
        return static_cast<int16_t>(place);
    }
    std::wstring at(size_t place) const {
        size_t end = place;
        while (end + unit_ <= bytes_.size() && !isZero(end))
            end += unit_;
        if (place >= bytes_.size()) return {};
        return form_.decode(std::string_view(bytes_).substr(place, end - place), form_.codePage());
    }
    std::string& bytes() { return bytes_; }

  private:
    bool isZero(size_t place) const {
        return std::all_of(bytes_.begin() + static_cast<ptrdiff_t>(place),
                           bytes_.begin() + static_cast<ptrdiff_t>(place + unit_),
                           [](char byte) { return byte == 0; });
    }

    DwgForm& form_;
    size_t unit_;
    std::string bytes_;
};

size_t unitOf(AcDbDwgFiler& filer) {
    return isBefore(&filer, AcDb::kDHL_1021) ? 1 : 2;
}

}  // namespace

Acad::ErrorStatus AcDbLinetypeTableRecord::writeFile(AcDbDwgFiler& filer) const {
    const size_t count = std::min(dashes_.size(), kMostDashes);
    const std::vector<Dash> dashes(dashes_.begin(),
                                   dashes_.begin() + static_cast<ptrdiff_t>(count));
    DwgForm& form = *filer.dwgForm();
    TextArea texts(form, unitOf(filer));
    filer.writeString(comments_);
    filer.writeDouble(patternLength_);
    filer.writeUInt8(kAlignment);
    filer.writeUInt8(static_cast<uint8_t>(count));
    for (const Dash& dash : dashes) {
        const bool isText = (dash.flags & kHasText) != 0;
        filer.writeDouble(dash.length);
        filer.writeInt16(isText ? texts.add(dash.text) : dash.shapeNumber);
        form.writeRawDouble(dash.offset.x);
        form.writeRawDouble(dash.offset.y);
        filer.writeDouble(dash.scale);
        filer.writeDouble(dash.rotation);
        filer.writeInt16(dash.flags);
    }
    for (const Dash& dash : dashes)
        filer.writeHardPointerId(dash.style);
    texts.bytes().resize(areaSize(filer, dashes), '\0');
    return filer.writeBytes(texts.bytes().data(), texts.bytes().size());
}

Acad::ErrorStatus AcDbLinetypeTableRecord::readFile(AcDbDwgFiler& filer) {
    uint8_t alignment = 0;
    uint8_t count = 0;
    DwgForm& form = *filer.dwgForm();
    filer.readString(comments_);
    filer.readDouble(&patternLength_);
    filer.readUInt8(&alignment);
    filer.readUInt8(&count);
    dashes_.clear();
    for (uint32_t i = 0; i < count && filer.filerStatus() == Acad::eOk; ++i) {
        Dash& dash = dashes_.emplace_back();
        filer.readDouble(&dash.length);
        filer.readInt16(&dash.shapeNumber);
        form.readRawDouble(&dash.offset.x);
        form.readRawDouble(&dash.offset.y);
        filer.readDouble(&dash.scale);
        filer.readDouble(&dash.rotation);
        filer.readInt16(&dash.flags);
    }
    for (Dash& dash : dashes_)
        filer.readHardPointerId(&dash.style);
    TextArea texts(form, unitOf(filer));
    texts.bytes().resize(areaSize(filer, dashes_));
    filer.readBytes(texts.bytes().data(), texts.bytes().size());
    for (Dash& dash : dashes_) {
        if ((dash.flags & kHasText) == 0) continue;
        dash.text = texts.at(static_cast<uint16_t>(dash.shapeNumber));
        dash.shapeNumber = 0;
    }
    return filer.filerStatus();
}
