#pragma once

#include "jigs/multi_jig.h"
#include "platform/db/block_reference.h"

namespace sg {

// Drags new block references to a point, turns them, and adds them to the drawing. Its list holds
// block references only.
class multiBlockJig : public MultiJig {
  public:
    explicit multiBlockJig(bool rotate) : rotate_(rotate) {}

    // The references stand here, and no point is asked for.
    void setBasePoint(const AcGePoint3d& point);
    // Asks for what is missing, adds the references with their attributes to model space and makes
    // the call's result of them. False, and nothing is added, when the user cancels.
    bool run();

    DragStatus sampler() override;
    bool update() override;

  private:
    enum class Stage { point, rotation };

    DragStatus samplePlace();
    DragStatus sampleRotation();
    bool askRotation();
    void addReferences();
    void appendToModelSpace();
    void giveAsResult();
    void release();

    const bool rotate_;
    bool hasBasePoint_ = false;
    AcGePoint3d samplePoint_;  // of the reference that is being placed
    double rotation_ = 0;      // in the world
    Stage stage_ = Stage::point;
    AcGePoint3d insertionPoint_;
};

}  // namespace sg
