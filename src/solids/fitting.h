#pragma once

#include <memory>
#include <string_view>

#include "bridge/marshal_builders.h"
#include "platform/db/hvac_solid.h"
#include "solids/section_frame.h"

// What the LISP functions that build solids share.
namespace sg {

// A solid belongs to its builder until it is added to the drawing.
using SolidPtr = std::unique_ptr<qn_hvacSolid>;

// Null, with a message on the command line, while the companion module is not loaded.
SolidPtr newSolid();

// Adds a solid to model space and closes it. Its id; null without a solid, or when it could not be
// added, which an alert has told.
AcDbObjectId addToDrawing(SolidPtr solid);

// What every builder is told ahead of its sections.
struct BuildOptions {
    bool convert = false;    // the section's points go through convert_rp_dp
    int32_t bodyOption = 0;  // for the solid
};
bool nextBuildOptions(const resbuf*& position, BuildOptions& options);

// An end of a body, on the centre line.
struct BodyEnd {
    AcGePoint3d point;
    Profile profile;
    const SectionFrame& frame;
};
bool addTransition(qn_hvacSolid& solid, const BodyEnd& head, const BodyEnd& tail, int bodyOption);
bool subtractTransition(qn_hvacSolid& solid, const BodyEnd& head, const BodyEnd& tail,
                        int bodyOption);

// A result of pairs, ((key . value) ...): what finish() gives to the host.
class PairList {
  public:
    PairList() { beginResultList(head_, tail_); }
    ~PairList() { acutRelRb(head_); }
    PairList(const PairList&) = delete;
    PairList& operator=(const PairList&) = delete;

    template <class Value>
    PairList& add(std::wstring_view key, const Value& value) {
        appendPair(tail_, key, value);
        return *this;
    }
    void finish() { finishResultList(head_, tail_); }

  private:
    resbuf* head_ = nullptr;
    resbuf* tail_ = nullptr;
};

}  // namespace sg
