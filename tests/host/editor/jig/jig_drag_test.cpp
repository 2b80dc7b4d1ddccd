#include <gmock/gmock.h>

#include <cmath>

#include "host/editor/jig/canvas_display.h"
#include "host/editor/jig/drags.h"
#include "host/editor/jig/hand.h"
#include "host/editor/system_variables.h"
#include "host/seam/host_fixture.h"
#include "platform/db/block_table.h"
#include "platform/db/circle.h"
#include "platform/db/database.h"
#include "platform/ed/display.h"
#include "platform/ed/jig.h"
#include "platform/ed/prompts.h"

namespace sg {
namespace {

using namespace test;
using testing::ElementsAre;
using Log = std::vector<std::string>;

// A jig whose parts are what a test says they are, and which writes down that they are called.
class ProbeJig : public AcEdJig {
  public:
    explicit ProbeJig(Log& log) : log_(log) {}

    std::function<DragStatus(ProbeJig&)> onSampler = [](ProbeJig& jig) {
        return jig.acquirePoint(jig.point);
    };
    bool updates = true;
    AcGePoint3d point;
    double number = 0;
    std::wstring text;
    AcDbCircle circle{AcGePoint3d(), AcGeVector3d::kZAxis, 1};

    using AcEdJig::acquireAngle;
    using AcEdJig::acquireDist;
    using AcEdJig::acquirePoint;
    using AcEdJig::acquireString;

    DragStatus sampler() override {
        const DragStatus status = onSampler(*this);
        log_.push_back("sampler " + std::to_string(status));
        return status;
    }
    bool update() override {
        log_.push_back("update");
        circle.setCenter(point);
        return updates;
    }
    AcDbEntity* entity() const override {
        log_.push_back("entity");
        return const_cast<AcDbCircle*>(&circle);
    }

  private:
    Log& log_;
};

class JigDragTest : public HostTest {
  protected:
    void SetUp() override {
        start();
        host().setInput({hand});
        host().drags().setDisplay(&display);
    }

    AcEdJig::DragStatus drag(std::vector<std::string> steps) {
        hand->will(std::move(steps));
        log.clear();
        return jig.drag();
    }
    const DragCounts& counts() { return host().drags().counts(); }
    std::string variable(const char* name) {
        return eval(std::string("(getvar \"") + name + "\")");
    }

    // Writes down what it is shown.
    class Display final : public DragDisplay {
      public:
        explicit Display(Log& log) : log_(log) {}
        void show(AcDbDatabase&, AcGiDrawable&) override {
            log_.push_back("show");
            shows = true;
        }
        void clear() override { shows = false; }
        bool shows = false;

      private:
        Log& log_;
    };

    Log log;
    Display display{log};
    ProbeJig jig{log};
    std::shared_ptr<Hand> hand = std::make_shared<Hand>();
};

// ---- Orders -------------------------------------------------------------------------------------

TEST_F(JigDragTest, SamplesAreTakenUpdatedAndShown) {
    EXPECT_EQ(drag({"sample 1,2", "3,4"}), AcEdJig::kNormal);
    EXPECT_THAT(log, ElementsAre("sampler 0", "update", "entity", "show",  //
                                 "sampler 0", "update", "entity", "show"));
    EXPECT_EQ(jig.point, AcGePoint3d(3, 4, 0));
    EXPECT_FALSE(display.shows) << "nothing is left on the screen";
    EXPECT_EQ(counts().samplers, 2u);
    EXPECT_EQ(counts().updates, 2u);
    EXPECT_EQ(counts().redraws, 2u);
}

TEST_F(JigDragTest, WithoutChangeOnlyWhatIsConfirmedIsUpdated) {
    jig.onSampler = [](ProbeJig& self) {
        const auto status = self.acquirePoint(self.point);
        return status == AcEdJig::kNormal ? AcEdJig::kNoChange : status;
    };
    EXPECT_EQ(drag({"sample 1,2", "sample 3,4", "3,4"}), AcEdJig::kNormal);
    EXPECT_THAT(log,
                ElementsAre("sampler -6", "sampler -6", "sampler -6", "update", "entity", "show"));
}

TEST_F(JigDragTest, AnUpdateMayKeepThePicture) {
    jig.updates = false;
    EXPECT_EQ(drag({"1,2"}), AcEdJig::kNormal);
    EXPECT_THAT(log, ElementsAre("sampler 0", "update"));
    EXPECT_EQ(counts().redraws, 0u);
}

TEST_F(JigDragTest, OtherEndsUpdateNothing) {
    struct Case {
        const char* name;
        int controls;
        std::vector<std::string> steps;
        int status;
    };
    const Case cases[] = {
        {"Esc", 0, {"ESC"}, AcEdJig::kCancel},
        {"nobody there", 0, {}, AcEdJig::kCancel},
        {"Enter", AcEdJig::kNullResponseAccepted, {""}, AcEdJig::kNull},
        {"Enter that is refused", 0, {"", "ESC"}, AcEdJig::kCancel},
        {"keywords", 0, {"Middle"}, 2},
        {"abbreviated", 0, {"c"}, 1},
        {"as programs name them", 0, {"_M"}, 2},
        {"a text that is none", 0, {"Nowhere", "ESC"}, AcEdJig::kCancel},
        {"a text that is taken", AcEdJig::kAcceptOtherInputString, {"Nowhere"}, AcEdJig::kOther},
    };
    for (const Case& each : cases) {
        jig.setKeywordList(L"Corner,C Middle,M");
        jig.setUserInputControls(each.controls);
        EXPECT_EQ(drag(each.steps), each.status) << each.name;
        EXPECT_EQ(log, Log{"sampler " + std::to_string(each.status)}) << each.name;
        EXPECT_EQ(hand->left(), 0u) << each.name;
        EXPECT_FALSE(display.shows) << each.name;
    }
    wchar_t word[20];
    ASSERT_EQ(acedGetInput(word, 20), RTNORM);
    EXPECT_STREQ(word, L"Nowhere");
}

TEST_F(JigDragTest, TheSamplerMayEndTheDrag) {
    jig.onSampler = [](ProbeJig& self) {
        self.acquirePoint(self.point);
        return self.point.x > 2 ? AcEdJig::kCancel : AcEdJig::kNormal;
    };
    EXPECT_EQ(drag({"sample 1,0", "sample 3,0", "sample 1,0"}), AcEdJig::kCancel);
    EXPECT_EQ(hand->left(), 1u);
}

// A sampler cannot hide how the user has ended the drag, nor keep it from ending.
TEST_F(JigDragTest, ASamplerThatListensToNobodyEndsToo) {
    for (const auto silent : {AcEdJig::kNormal, AcEdJig::kNoChange}) {
        jig.onSampler = [&](ProbeJig&) { return silent; };
        jig.setUserInputControls(AcEdJig::kNullResponseAccepted);
        EXPECT_EQ(drag({"sample 1,1", "ESC"}), AcEdJig::kCancel);
        EXPECT_EQ(drag({"sample 1,1", ""}), AcEdJig::kNull);
        EXPECT_EQ(drag({"1,1"}), AcEdJig::kNormal);
        EXPECT_EQ(drag({}), AcEdJig::kCancel);
    }
}

TEST_F(JigDragTest, OneSampleIsOneAnswer) {
    jig.onSampler = [](ProbeJig& self) {
        self.acquirePoint(self.point);
        return self.acquireAngle(self.number, AcGePoint3d(1, 1, 0));
    };
    EXPECT_EQ(drag({"1,5"}), AcEdJig::kNormal);
    EXPECT_EQ(jig.point, AcGePoint3d(1, 5, 0));
    EXPECT_NEAR(jig.number, M_PI / 2, 1e-12);
}

TEST_F(JigDragTest, AnExceptionLeavesNothingBehind) {
    jig.onSampler = [](ProbeJig& self) -> AcEdJig::DragStatus {
        self.acquirePoint(self.point);
        throw std::runtime_error("no");
    };
    EXPECT_THROW(drag({"1,1"}), std::runtime_error);
    EXPECT_FALSE(display.shows);
    EXPECT_EQ(host().drags().of(jig), nullptr);
}

TEST_F(JigDragTest, DragsMayBeNested) {
    Log innerLog;
    ProbeJig inner(innerLog);
    bool nested = false;
    jig.onSampler = [&](ProbeJig& self) {
        if (!std::exchange(nested, true)) {
            EXPECT_EQ(inner.drag(), AcEdJig::kNormal);
        }
        return self.acquirePoint(self.point);
    };
    EXPECT_EQ(drag({"1,1", "2,2"}), AcEdJig::kNormal);
    EXPECT_EQ(inner.point, AcGePoint3d(1, 1, 0));
    EXPECT_EQ(jig.point, AcGePoint3d(2, 2, 0));
}

TEST_F(JigDragTest, OutsideOfADragNothingIsAcquired) {
    EXPECT_EQ(jig.acquirePoint(jig.point), AcEdJig::kCancel);
    EXPECT_EQ(AcEdJig().drag(), AcEdJig::kCancel);
}

// ---- Values -------------------------------------------------------------------------------------

TEST_F(JigDragTest, AnglesAndDistancesAreTypedOrPointedAt) {
    const AcGePoint3d base(1, 1, 0);
    struct Case {
        std::vector<std::string> steps;
        double angle, distance;
    };
    const Case cases[] = {
        {{"1,4"}, M_PI / 2, 3},
        {{"-2,1"}, M_PI, 3},
        {{"sample 9,9", "1,-3"}, M_PI * 3 / 2, 4},
        {{"@3,0"}, 0, 3},
    };
    for (const Case& each : cases) {
        eval("(setvar \"LASTPOINT\" '(1.0 1.0 0.0))");
        jig.onSampler = [&](ProbeJig& self) { return self.acquireAngle(self.number, base); };
        EXPECT_EQ(drag(each.steps), AcEdJig::kNormal);
        EXPECT_NEAR(jig.number, each.angle, 1e-12) << each.steps.back();
        eval("(setvar \"LASTPOINT\" '(1.0 1.0 0.0))");
        jig.onSampler = [&](ProbeJig& self) { return self.acquireDist(self.number, base); };
        EXPECT_EQ(drag(each.steps), AcEdJig::kNormal);
        EXPECT_NEAR(jig.number, each.distance, 1e-12) << each.steps.back();
    }
    jig.onSampler = [&](ProbeJig& self) { return self.acquireAngle(self.number, base); };
    drag({"30"});
    EXPECT_NEAR(jig.number, M_PI / 6, 1e-12);
    jig.onSampler = [&](ProbeJig& self) { return self.acquireDist(self.number, base); };
    drag({"7.5"});
    EXPECT_EQ(jig.number, 7.5);
}

TEST_F(JigDragTest, WithoutABaseTheLastPointIsOne) {
    eval("(setvar \"LASTPOINT\" '(10.0 0.0 0.0))");
    jig.onSampler = [](ProbeJig& self) { return self.acquireDist(self.number); };
    EXPECT_EQ(drag({"10,4"}), AcEdJig::kNormal);
    EXPECT_EQ(jig.number, 4);
    EXPECT_EQ(drag({"10,9"}), AcEdJig::kNormal);
    EXPECT_EQ(jig.number, 5) << "the point of the drag before";
}

TEST_F(JigDragTest, NumbersMayBeRefused) {
    jig.setUserInputControls(AcEdJig::kNoZeroResponseAccepted |
                             AcEdJig::kNoNegativeResponseAccepted);
    jig.onSampler = [](ProbeJig& self) { return self.acquireDist(self.number, AcGePoint3d()); };
    printed();
    EXPECT_EQ(drag({"0", "-1", "0,0", "2"}), AcEdJig::kNormal);
    EXPECT_EQ(jig.number, 2);
    EXPECT_EQ(printed(),
              "Value must be nonzero.\nValue must be positive.\nValue must be nonzero.\n");
}

TEST_F(JigDragTest, TextsAreTakenAsTheyStand) {
    jig.setKeywordList(L"Style");
    jig.onSampler = [](ProbeJig& self) { return self.acquireString(self.text); };
    EXPECT_EQ(drag({"sample 1,1", "Supply  Air"}), AcEdJig::kNormal);
    EXPECT_EQ(jig.text, L"Supply  Air");
    EXPECT_THAT(log, ElementsAre("sampler -6", "sampler 0", "update", "entity", "show"));
    EXPECT_EQ(drag({"s"}), AcEdJig::kKW1);
}

TEST_F(JigDragTest, OrthoKeepsWhatIsPointedAtToTheAxes) {
    eval("(setvar \"ORTHOMODE\" 1)");
    const AcGePoint3d base(1, 1, 0);
    AcGePoint3d sampled;
    jig.onSampler = [&](ProbeJig& self) {
        const auto status = self.acquirePoint(self.point, base);
        if (sampled == AcGePoint3d()) sampled = self.point;
        return status;
    };
    jig.setUserInputControls(AcEdJig::kGovernedByOrthoMode);
    drag({"sample 5,2", "5,2"});
    EXPECT_EQ(sampled, AcGePoint3d(5, 1, 0));
    EXPECT_EQ(jig.point, AcGePoint3d(5, 2, 0)) << "what is typed stays";
    drag({"pick 2,-5"});
    EXPECT_EQ(jig.point, AcGePoint3d(1, -5, 0));
    sampled = {};
    jig.setUserInputControls(0);
    drag({"sample 5,2", "ESC"});
    EXPECT_EQ(sampled, AcGePoint3d(5, 2, 0));
}

TEST_F(JigDragTest, TheDrawingsVariablesFollow) {
    drag({"sample 1,1", "3,4"});
    EXPECT_EQ(variable("LASTPOINT"), "(3.0 4.0 0.0)");
    EXPECT_EQ(variable("ERRNO"), "0");
    jig.setUserInputControls(AcEdJig::kNullResponseAccepted | AcEdJig::kDontUpdateLastPoint);
    drag({"9,9"});
    EXPECT_EQ(variable("LASTPOINT"), "(3.0 4.0 0.0)");
    drag({""});
    EXPECT_EQ(variable("ERRNO"), "52");
    drag({"ESC"});
    EXPECT_EQ(variable("ERRNO"), "0");
}

TEST_F(JigDragTest, TheUserSeesWhatTheJigHasSet) {
    jig.setDispPrompt(L"\nPlace at 100%: ");
    jig.setKeywordList(L"Snap,S");
    jig.setSpecialCursorType(AcEdJig::kRubberBand);
    jig.setUserInputControls(3);
    jig.onSampler = [](ProbeJig& self) {
        return self.acquirePoint(self.point, AcGePoint3d(1, 2, 0));
    };
    hand->onDrag = [](const DragRequest& request) {
        EXPECT_EQ(request.prompt, L"\nPlace at 100%: ");
        EXPECT_EQ(request.keywords, L"Snap,S");
        EXPECT_EQ(request.cursor, AcEdJig::kRubberBand);
        EXPECT_EQ(request.controls, 3);
        EXPECT_EQ(request.basePoint, AcGePoint3d(1, 2, 0));
    };
    EXPECT_EQ(drag({"Nonsense", "2,2"}), AcEdJig::kNormal);
    EXPECT_EQ(hand->prompts().size(), 2u);
    EXPECT_EQ(printed(), "Invalid point.\n");
}

// ---- Pictures and drawings ----------------------------------------------------------------------

TEST_F(JigDragTest, WhatIsDraggedIsDrawnAsEntitiesAre) {
    CountingCanvas canvas;
    CanvasDisplay drawn(canvas, 0xFFFFFF);
    host().drags().setDisplay(&drawn);
    drag({"sample 1,1", "2,2"});
    EXPECT_EQ(canvas.lines, 2u);
    const size_t coarse = canvas.points;
    canvas.setUnitsPerPixel(0.0001);
    drag({"1,1"});
    EXPECT_EQ(canvas.lines, 3u);
    EXPECT_GT(canvas.points - coarse, coarse) << "finer, and once instead of twice";
    host().drags().setDisplay(nullptr);
    EXPECT_EQ(drag({"1,1"}), AcEdJig::kNormal);
    EXPECT_EQ(canvas.lines, 3u);
}

TEST_F(JigDragTest, ARedrawTakesItOffTheScreen) {
    display.shows = true;
    const ads_name some = {1, 1};
    acedRedraw(some, 1);
    EXPECT_TRUE(display.shows);
    acedRedraw(nullptr, 0);
    EXPECT_FALSE(display.shows);
}

class AppendingJig : public AcEdJig {
  public:
    AcDbEntity* entity() const override { return entityToAppend; }
    AcDbEntity* entityToAppend = nullptr;
};

TEST_F(JigDragTest, AppendGivesTheEntityToTheCurrentSpace) {
    AppendingJig appending;
    EXPECT_TRUE(appending.append().isNull());
    appending.entityToAppend = new AcDbCircle(AcGePoint3d(), AcGeVector3d::kZAxis, 1);
    const AcDbObjectId id = appending.append();
    ASSERT_FALSE(id.isNull());
    EXPECT_EQ(eval("(cdr (assoc 0 (entget (entlast))))"), "\"CIRCLE\"");
    EXPECT_TRUE(appending.append().isNull()) << "it is in the drawing";
}

}  // namespace
}  // namespace sg
