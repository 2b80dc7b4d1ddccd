#pragma once

#include <memory>
#include <string>

#include "platform/db/mtext.h"
#include "platform/ed/jig.h"
#include "platform/ge/arrays.h"

namespace sg {

// Drags a text: to a point, along a path where it is near one, or about a point.
class TextJig : public AcEdJig {
  public:
    enum class Mode {
        point = 0,
        pointFromBase = 1,  // with a rubber band from the base point
        rotation = 2,       // about the base point
    };

    // A text of a style and on a layer of the current drawing. False, and there is no text, when it
    // has no such style; an unknown layer leaves the text on the current one.
    bool setText(const std::wstring& contents, const std::wstring& style, double height,
                 const std::wstring& layer);

    // --- Before run()

    void setMode(Mode mode, const AcGePoint3d& basePoint = AcGePoint3d());
    void setAttachment(AcDbMText::AttachmentPoint attachment) { attachment_ = attachment; }
    // A chain of points along which the text is put where it comes near, beside the line or with
    // its middle on it; it outlives the drag. Null: none.
    void setPath(const AcGePoint3dArray* path, bool onLine = false);
    // Offers the keyword Snap, which turns following the path off and on, and what is prompted
    // while it is off.
    void setSnapKeyword(std::wstring promptOff);

    // Asks for the text's place, with further keywords; an empty prompt stands for the usual one.
    // Answers the status that ended it: that of a keyword other than Snap too. The text is gone at
    // kCancel.
    DragStatus run(const std::wstring& prompt, const std::wstring& keywords);

    AcDbMText* mtext() const { return mtext_.get(); }
    double actualWidth() const { return actualWidth_; }  // of the text when run() ended
    bool isSnapOn() const { return snapOn_; }

    DragStatus sampler() override;
    bool update() override { return true; }  // the sampler has changed the text
    AcDbEntity* entity() const override;

  private:
    DragStatus samplePlace();
    DragStatus sampleRotation();
    void offerKeywords(const std::wstring& prompt, const std::wstring& keywords);
    void toggleSnap();
    void followPath();

    std::unique_ptr<AcDbMText> mtext_;
    AcGePoint3d samplePoint_, lastPoint_, basePoint_;
    double rotation_ = 0;
    AcDbMText::AttachmentPoint attachment_ = AcDbMText::kTopLeft;
    Mode mode_ = Mode::point;
    const AcGePoint3dArray* path_ = nullptr;
    bool onLine_ = false;
    bool snapKeyword_ = false;
    bool snapOn_ = true;
    std::wstring promptOn_, promptOff_, keywords_;
    double actualWidth_ = 0;
};

}  // namespace sg
