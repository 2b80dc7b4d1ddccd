#pragma once

#include <optional>
#include <string>

#include "host/editor/jig/drag_display.h"
#include "host/editor/prompts/prompter.h"
#include "platform/ed/jig.h"
#include "platform/ge/matrix3d.h"

namespace sg {

// One drag of a jig, from its first sample to its end (see AcEdJig).
class JigDrag {
  public:
    using DragStatus = AcEdJig::DragStatus;

    JigDrag(AcEdJig& jig, const Prompter::Place& place, DragDisplay& display, DragCounts& counts);
    JigDrag(const JigDrag&) = delete;
    JigDrag& operator=(const JigDrag&) = delete;

    DragStatus run();

    AcEdJig& jig() const { return jig_; }
    // The text that ended the drag with kOther, or the keyword.
    const std::wstring& word() const { return word_; }

    // What the acquire operations of the jig answer. `base` may be null.
    DragStatus point(AcGePoint3d& value, const AcGePoint3d* base);
    DragStatus angle(double& value, const AcGePoint3d* base);
    DragStatus distance(double& value, const AcGePoint3d* base);
    DragStatus text(std::wstring& value);

  private:
    using Kind = DragRequest::Kind;

    // What came in for a sample.
    struct Sample {
        DragStatus status = AcEdJig::kNormal;
        bool isConfirmed = false;
        std::optional<AcGePoint3d> place;  // in user coordinates
        std::optional<double> number;      // an angle or a distance that was typed
        std::wstring text;
    };

    enum class Taken { done, refused, notMine };

    DragStatus step();
    void show();
    bool isAccepted(AcEdJig::UserInputControls control) const;
    const Keywords& keywords();
    std::optional<AcGePoint3d> inUserCoordinates(const AcGePoint3d* base) const;
    const Sample& acquire(Kind kind, const std::optional<AcGePoint3d>& base);
    bool take(DragAnswer& answer, const DragRequest& request);
    bool takePlace(AcGePoint3d at, const DragAnswer& answer, const DragRequest& request);
    Taken takeText(const PromptAnswer& answer, const DragRequest& request);
    bool takeWord(const std::wstring& typed);
    std::optional<double> numberOf(const PromptAnswer& answer, Kind kind) const;
    bool fits(double value, Kind kind);
    AcGePoint3d alongAxes(const AcGePoint3d& place, const AcGePoint3d& base) const;

    AcEdJig& jig_;
    const Prompter::Place place_;
    DragDisplay& display_;
    DragCounts& counts_;
    Prompter::Allowed allowed_;
    Prompter prompter_;
    const AcGeMatrix3d toWorld_, toUser_;
    const AcGePoint3d start_;  // LASTPOINT
    const bool isOrtho_;
    std::wstring keywordText_;
    Keywords keywords_;  // of that text
    std::optional<Sample> sample_;
    std::wstring word_;
};

}  // namespace sg
