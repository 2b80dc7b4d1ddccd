#include "jigs/text_jig.h"

#include "drawing/current_drawing.h"
#include "jigs/text_path.h"
#include "platform/db/database.h"
#include "platform/db/text_style_table.h"

namespace sg {
namespace {

bool findTextStyle(const std::wstring& name, AcDbObjectId& id) {
    AcDbDatabase* const database = currentDatabase();
    AcDbTextStyleTable* styles = nullptr;
    if (database == nullptr || database->getTextStyleTable(styles, AcDb::kForRead) != Acad::eOk) {
        return false;
    }
    const Acad::ErrorStatus found = styles->getAt(name.c_str(), id);
    styles->close();
    return found == Acad::eOk;
}

// How many keywords a list has: the status of its last one.
int keywordCount(const std::wstring& list) {
    int count = 0;
    bool isIn = false;
    for (const wchar_t c : list) {
        if (c != L' ' && !isIn) ++count;
        isIn = c != L' ';
    }
    return count;
}

}  // namespace

bool TextJig::setText(const std::wstring& contents, const std::wstring& style, double height,
                      const std::wstring& layer) {
    AcDbObjectId styleId, layerId;
    if (!findTextStyle(style, styleId)) return false;
    getLayerId(layer, layerId);
    mtext_ = std::make_unique<AcDbMText>();
    mtext_->setContents(contents.c_str());
    mtext_->setTextStyle(styleId);
    mtext_->setTextHeight(height);
    mtext_->setLayer(layerId, true, false);
    return true;
}

void TextJig::setMode(Mode mode, const AcGePoint3d& basePoint) {
    mode_ = mode;
    basePoint_ = basePoint;
}

void TextJig::setPath(const AcGePoint3dArray* path, bool onLine) {
    path_ = path;
    onLine_ = onLine;
}

void TextJig::setSnapKeyword(std::wstring promptOff) {
    snapKeyword_ = true;
    promptOff_ = std::move(promptOff);
}

// ---- The drag -----------------------------------------------------------------------------------

AcEdJig::DragStatus TextJig::run(const std::wstring& prompt, const std::wstring& keywords) {
    offerKeywords(prompt.empty() ? L"\nSpecify text insertion point: " : prompt, keywords);
    const int snapStatus = keywordCount(keywords_);
    DragStatus status = drag();
    while (snapKeyword_ && status == snapStatus) {
        toggleSnap();
        status = drag();
    }
    actualWidth_ = mtext_->actualWidth();
    if (status == kCancel) mtext_.reset();
    return status;
}

void TextJig::offerKeywords(const std::wstring& prompt, const std::wstring& keywords) {
    setDispPrompt(prompt.c_str());
    keywords_ = keywords;
    if (!snapKeyword_) return;
    promptOn_ = prompt;
    keywords_ += L" Snap,S ";
}

void TextJig::toggleSnap() {
    setDispPrompt((snapOn_ ? promptOff_ : promptOn_).c_str());
    snapOn_ = !snapOn_;
}

AcEdJig::DragStatus TextJig::sampler() {
    if (!keywords_.empty() || snapKeyword_) {
        setUserInputControls(kNullResponseAccepted);
        setKeywordList(keywords_.c_str());
    }
    return mode_ == Mode::rotation ? sampleRotation() : samplePlace();
}

AcEdJig::DragStatus TextJig::sampleRotation() {
    double angle = rotation_;
    const DragStatus status = acquireAngle(angle, basePoint_);
    if (status == kCancel || status == kNull) return status;
    if (angle == rotation_) return kNoChange;
    rotation_ = angle;
    mtext_->setRotation(rotation_);
    mtext_->setLocation(basePoint_);
    return status;
}

AcEdJig::DragStatus TextJig::samplePlace() {
    const DragStatus status = mode_ == Mode::pointFromBase ? acquirePoint(samplePoint_, basePoint_)
                                                           : acquirePoint(samplePoint_);
    if (status == kCancel || status == kNull) return status;
    if (status == kNormal && samplePoint_ == lastPoint_) return kNoChange;
    mtext_->setAttachment(attachment_);
    if (path_ != nullptr && snapOn_) followPath();
    mtext_->setLocation(samplePoint_);
    lastPoint_ = samplePoint_;
    return status;
}

void TextJig::followPath() {
    mtext_->setRotation(0);
    const auto place =
        placeAtPath(*path_, samplePoint_, mtext_->textHeight(), attachment_, onLine_);
    if (!place) return;
    samplePoint_ = place->location;
    mtext_->setAttachment(place->attachment);
    mtext_->setRotation(place->rotation);
}

AcDbEntity* TextJig::entity() const {
    if (mode_ == Mode::rotation && mtext_ != nullptr) mtext_->setRotation(rotation_);
    return mtext_.get();
}

}  // namespace sg
