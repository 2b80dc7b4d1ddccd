#pragma once

#include <string>

#include "base/export.h"
#include "platform/db/entity.h"

namespace sg {
class JigDrag;
}

// Something that the user drags: an entity that follows what is pointed at and typed, until that is
// confirmed.
//
// drag() shows the prompt, and then, for every place that is pointed at and for every answer, calls
// sampler(), which asks for the kind of value that it wants with one of the acquire operations.
// When the sampler answers kNormal, update() brings the entity to the new value, and what entity()
// answers is drawn in place of what was drawn before. After kNoChange neither happens, except that
// a value that is confirmed is always updated and drawn. The drag ends with kNormal when a value is
// confirmed, and with the status of its answer, without another update(), at Enter, at Esc, at a
// keyword, and when the sampler answers anything else.
//
// Points are in world coordinates, angles in radians from the x axis of the user coordinate system.
class SG_API AcEdJig : public AcRxObject {
  public:
    ACRX_DECLARE_MEMBERS(AcEdJig)

    enum DragStatus {
        kNoChange = -6,  // the sample brings nothing new
        kCancel = -4,    // Esc, or nobody is there to answer
        kOther = -3,     // a text that is no value, which acedGetInput then has
        kNull = -1,      // Enter
        kNormal = 0,
        kKW1,  // the first keyword of the list, and so on
        kKW2,
        kKW3,
        kKW4,
        kKW5,
        kKW6,
        kKW7,
        kKW8,
        kKW9,
    };

    enum CursorType {
        kNoSpecialCursor = -1,
        kCrosshair = 0,
        kRectCursor = 1,
        kRubberBand = 2,  // a line from the base point
        kNotRotated = 3,
        kTargetBox = 4,
        kRotatedCrosshair = 5,
        kCrosshairNoRotate = 6,
        kInvisible = 7,
        kEntitySelect = 8,
    };

    enum UserInputControls {
        kGovernedByOrthoMode = 0x1,   // what is pointed at keeps to the axes while ORTHOMODE is on
        kNullResponseAccepted = 0x2,  // Enter ends the drag; otherwise it is refused
        kDontUpdateLastPoint = 0x8,   // the confirmed point does not become LASTPOINT
        kNoZeroResponseAccepted = 0x20,      // 0 is refused
        kNoNegativeResponseAccepted = 0x40,  // a distance below 0 is refused
        kAcceptOtherInputString = 0x800,     // a text that is no value gives kOther
    };

    AcEdJig();
    ~AcEdJig() override;
    AcEdJig(const AcEdJig&) = delete;
    AcEdJig& operator=(const AcEdJig&) = delete;

    DragStatus drag();

    // What a class of jigs overrides. The base versions answer kCancel, false and null.
    virtual DragStatus sampler();
    virtual bool update();  // false: what is drawn stays as it is
    virtual AcDbEntity* entity() const;

    // Gives entity() to the current space of the current drawing and closes it. The null id when
    // there is none or it cannot be added; it stays the caller's then.
    AcDbObjectId append();

    // For the drags that follow.
    const std::wstring& dispPrompt() const { return prompt_; }
    void setDispPrompt(const wchar_t* prompt);
    // Keywords, as acedInitGet takes them.
    const std::wstring& keywordList() const { return keywords_; }
    void setKeywordList(const wchar_t* keywords);
    CursorType specialCursorType() const { return cursor_; }
    void setSpecialCursorType(CursorType cursor) { cursor_ = cursor; }
    int userInputControls() const { return controls_; }  // a sum of UserInputControls
    void setUserInputControls(int controls) { controls_ = controls; }

  protected:
    // The value of this sample, for use in sampler(). `value` is set with kNormal only. A second
    // call in the same sampler() is about the same answer. Outside of a drag the status is kCancel.
    //
    // Angles and distances are typed, or measured from a base point: without one, from LASTPOINT as
    // it was when the drag began. A text takes no notice of what is pointed at.
    DragStatus acquirePoint(AcGePoint3d& value);
    DragStatus acquirePoint(AcGePoint3d& value, const AcGePoint3d& base);
    DragStatus acquireAngle(double& value);
    DragStatus acquireAngle(double& value, const AcGePoint3d& base);
    DragStatus acquireDist(double& value);
    DragStatus acquireDist(double& value, const AcGePoint3d& base);
    DragStatus acquireString(std::wstring& value);

  private:
    std::wstring prompt_;
    std::wstring keywords_;
    CursorType cursor_ = kNoSpecialCursor;
    int controls_ = 0;
};
