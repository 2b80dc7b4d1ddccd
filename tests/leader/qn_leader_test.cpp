#include "leader/qn_leader.h"

#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

#include "host/model/core/list_filers.h"
#include "leader/trace_filer.h"
#include "module/module_fixture.h"
#include "platform/ap/documents.h"
#include "platform/db/block_table.h"
#include "platform/db/circle.h"
#include "platform/db/database.h"
#include "platform/db/line.h"
#include "platform/db/plain_form.h"
#include "platform/gi/draw.h"
#include "platform/rx/modules.h"
#include "platform/rx/rxdictionary.h"

namespace sg {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr double kPi = std::numbers::pi;

class LeaderTest : public ModuleTest {
  protected:
    void SetUp() override {
        start();
        eval(R"((entmake '((0 . "BLOCK") (2 . "SYM") (70 . 0) (10 0.0 0.0 0.0)))
                (entmake '((0 . "CIRCLE") (10 0.0 0.0 0.0) (40 . 1.0)))
                (entmake '((0 . "ENDBLK")))
                (entmake '((0 . "LAYER") (100 . "AcDbSymbolTableRecord")
                           (100 . "AcDbLayerTableRecord") (2 . "NOTES") (70 . 0))))");
    }

    AcDbDatabase& database() { return *acDocManagerPtr()->curDocument()->database(); }
    AcDbObjectId block(const wchar_t* name = L"SYM") {
        AcDbBlockTable* table = nullptr;
        database().getBlockTable(table, AcDb::kForRead);
        AcDbObjectId id;
        table->getAt(name, id);
        table->close();
        return id;
    }
    AcDbObjectId layer(const wchar_t* name = L"NOTES") {
        AcDbLayerTable* table = nullptr;
        database().getLayerTable(table, AcDb::kForRead);
        AcDbObjectId id;
        table->getAt(name, id);
        table->close();
        return id;
    }
    // From (0,0) up to (10,10) and to the right, to (30,10).
    std::unique_ptr<QNLeader> leader(double offset = 2.5) {
        return std::make_unique<QNLeader>(AcGePoint3d(0, 0, 1), AcGePoint3d(10, 10, 2),
                                          AcGePoint3d(30, 10, 3), offset, block(), layer());
    }
    // What a leader writes behind what every entity writes.
    static std::vector<std::string> traceOf(const QNLeader& leader, AcDb::FilerType type) {
        TraceFiler base(type), whole(type);
        leader.AcDbEntity::dwgOutFields(&base);
        EXPECT_EQ(leader.dwgOutFields(&whole), Acad::eOk);
        return whole.text(base.items.size());
    }
    static void expectFollows(const QNLeader& leader) {
        AcGePoint3d start, middle, end;
        leader.getPoints(start, middle, end);
        EXPECT_EQ(leader.symbol().position(), end);
        const double scale = leader.offset();
        EXPECT_EQ(leader.symbol().scaleFactors(), AcGeScale3d(scale, scale, scale));
        EXPECT_NEAR(leader.symbol().rotation(),
                    AcGeVector2d(end.x - middle.x, end.y - middle.y).angle(), 1e-12);
    }
};

TEST_F(LeaderTest, TheSymbolFollowsEveryChange) {
    const auto made = leader();
    expectFollows(*made);
    EXPECT_EQ(made->layerId(), layer());
    EXPECT_EQ(made->symbol().layerId(), layer());
    EXPECT_EQ(made->symbol().blockTableRecord(), block());

    EXPECT_EQ(made->setPoints({1, 2, 0}, {3, 4, 0}, {3, 9, 5}), Acad::eOk);
    expectFollows(*made);
    EXPECT_DOUBLE_EQ(made->symbol().rotation(), kPi / 2);
    made->setMiddlePoint({9, 9, 0});
    EXPECT_DOUBLE_EQ(made->symbol().rotation(), kPi);
    made->setStartPoint({7, 7, 7});
    made->setEndPoint({9, 0, 0});
    expectFollows(*made);
    made->setOffset(-4);
    expectFollows(*made);
    AcGeMatrix3d mirrorAndDouble = AcGeMatrix3d::scaling(2);
    mirrorAndDouble.entry[0][0] = -2;
    EXPECT_EQ(made->transformBy(mirrorAndDouble), Acad::eOk);
    expectFollows(*made);
    EXPECT_EQ(made->offset(), -4);
    AcGePoint3d start, middle, end;
    made->getPoints(start, middle, end);
    EXPECT_EQ(start, AcGePoint3d(-14, 14, 14));
    EXPECT_EQ(end, AcGePoint3d(-18, 0, 0));
}

TEST_F(LeaderTest, ALayerGoesToTheSymbolWithSubentitiesOnly) {
    const auto made = leader();
    EXPECT_EQ(made->setLayer(layer(L"0"), false, false), Acad::eOk);
    EXPECT_EQ(made->symbol().layerId(), layer());
    EXPECT_EQ(made->setLayer(layer(L"0"), true, false), Acad::eOk);
    EXPECT_EQ(made->symbol().layerId(), layer(L"0"));
    EXPECT_NE(made->setLayer(AcDbObjectId(1), true, false), Acad::eOk);
    EXPECT_EQ(made->symbol().layerId(), layer(L"0"));
}

TEST_F(LeaderTest, TheSecondSegmentStopsAtTheSymbol) {
    struct Row {
        AcGePoint3d middle, end;
        double offset;
        AcGePoint3d stop;
    };
    for (const Row& row : {
             Row{{10, 10, 2}, {30, 10, 3}, 2.5, {27.5, 10, 3}},
             Row{{10, 10, 2}, {30, 10, 3}, 0, {30, 10, 3}},
             Row{{10, 10, 2}, {30, 10, 3}, 50, {-20, 10, 3}},  // past the middle point
             Row{{10, 10, 2}, {10, 10, 3}, 4, {14, 10, 3}},    // without a direction: along x
             Row{{0, 8, -7}, {0, 0, 0}, -3, {0, -3, 0}},
         }) {
        const QNLeader made({0, 0, 0}, row.middle, row.end, row.offset, block(), layer());
        EXPECT_TRUE(made.shortenedEndPoint().isEqualTo(row.stop)) << row.offset;
    }
}

TEST_F(LeaderTest, AsACurveItIsTheChord) {
    const QNLeader made({1, 1, 0}, {50, 9, 0}, {4, 5, 0}, 1, block(), layer());
    double value = -1;
    AcGePoint3d point;
    EXPECT_EQ(made.getStartParam(value), Acad::eOk);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(made.getEndParam(value), Acad::eOk);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(made.getPointAtParam(10, point), Acad::eOk);
    EXPECT_TRUE(point.isEqualTo({7, 9, 0}));
    EXPECT_EQ(made.getPointAtDist(-5, point), Acad::eOk);
    EXPECT_TRUE(point.isEqualTo({-2, -3, 0}));
    EXPECT_EQ(made.getParamAtPoint({1 + 4, 1 - 3, 7}, value), Acad::eOk);
    EXPECT_NEAR(value, 0, 1e-12);
    EXPECT_EQ(made.getDistAtPoint({1, 1, 9}, value), Acad::eOk);
    EXPECT_EQ(value, 9);
    EXPECT_EQ(made.getDistAtParam(-3, value), Acad::eOk);
    EXPECT_EQ(value, -3);
    EXPECT_EQ(made.getParamAtDist(77, value), Acad::eOk);
    EXPECT_EQ(value, 77);

    const QNLeader point0({2, 2, 2}, {5, 5, 5}, {2, 2, 2}, 1, block(), layer());
    EXPECT_EQ(point0.getEndParam(value), Acad::eOk);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(point0.getPointAtParam(3, point), Acad::eOk);
    EXPECT_EQ(point, AcGePoint3d(2, 2, 2));
    AcGePlane plane;
    AcDb::Planarity kind;
    EXPECT_FALSE(made.isPlanar());
    EXPECT_EQ(made.getPlane(plane, kind), Acad::eNotApplicable);
}

TEST_F(LeaderTest, GripsAndStretchPointsMoveOnceEach) {
    const auto made = leader();
    AcGePoint3dArray points;
    AcDbIntArray modes, ids;
    points.append({9, 9, 9});
    EXPECT_EQ(made->getGripPoints(points, modes, ids), Acad::eOk);
    ASSERT_EQ(points.length(), 4);
    EXPECT_EQ(points[1], AcGePoint3d(0, 0, 1));
    EXPECT_EQ(points[3], AcGePoint3d(30, 10, 3));

    AcDbIntArray indices;
    for (const int index : {2, 0, 2, 7, -1}) {
        indices.append(index);
    }
    EXPECT_EQ(made->moveGripPointsAt(indices, {1, 2, 3}), Acad::eOk);
    AcGePoint3d start, middle, end;
    made->getPoints(start, middle, end);
    EXPECT_EQ(start, AcGePoint3d(1, 2, 4));
    EXPECT_EQ(middle, AcGePoint3d(10, 10, 2));
    EXPECT_EQ(end, AcGePoint3d(31, 12, 6));
    expectFollows(*made);
}

TEST_F(LeaderTest, ItsPartsAnswerForIt) {
    const auto made = leader();
    AcGePoint3dArray points;
    AcDbIntArray ids;
    EXPECT_EQ(made->getOsnapPoints(AcDb::kOsModeEnd, 0, {0, 0, 0}, {0, 0, 0},
                                   AcGeMatrix3d::kIdentity, points, ids),
              Acad::eOk);
    ASSERT_GE(points.length(), 1);
    EXPECT_EQ(points[0], AcGePoint3d(0, 0, 1));

    // Through the first segment, the second one and the symbol's circle, in this order.
    const QNLeader flat({0, 0, 0}, {10, 10, 0}, {30, 10, 0}, 2.5, block(), layer());
    const AcDbLine across({5, 0, 0}, {5, 20, 0});
    const AcDbLine along({20, 0, 0}, {20, 20, 0});
    const AcDbLine through({30, 0, 0}, {30, 11, 0});
    for (const auto& [line, expected] :
         {std::pair(&across, AcGePoint3d(5, 5, 0)), std::pair(&along, AcGePoint3d(20, 10, 0)),
          std::pair(&through, AcGePoint3d(30, 7.5, 0))}) {
        AcGePoint3dArray hits;
        EXPECT_EQ(flat.intersectWith(line, AcDb::kOnBothOperands, hits), Acad::eOk);
        ASSERT_EQ(hits.length(), 1);
        EXPECT_TRUE(hits[0].isEqualTo(expected));
    }
    AcDbExtents extents;
    EXPECT_EQ(flat.getGeomExtents(extents), Acad::eOk);
    EXPECT_TRUE(extents.minPoint().isEqualTo({0, 0, 0}));
    EXPECT_TRUE(extents.maxPoint().isEqualTo({32.5, 12.5, 0}));

    AcDbVoidPtrArray entities;
    EXPECT_EQ(flat.explode(entities), Acad::eOk);
    ASSERT_EQ(entities.length(), 3);
    EXPECT_EQ(AcDbLine::cast(static_cast<AcDbEntity*>(entities[0]))->endPoint(),
              AcGePoint3d(10, 10, 0));
    EXPECT_TRUE(
        AcDbLine::cast(static_cast<AcDbEntity*>(entities[1]))->endPoint().isEqualTo({27.5, 10, 0}));
    EXPECT_NEAR(AcDbCircle::cast(static_cast<AcDbEntity*>(entities[2]))->radius(), 2.5, 1e-12);
    for (void* const entity : entities) {
        delete static_cast<AcDbEntity*>(entity);
    }
}

// What explodes into the block's entities is a reference for programs that lack the class.
TEST_F(LeaderTest, ThePlainFormKeepsTheSymbolAsAReference) {
    auto* const form = static_cast<sgPlainFormPE*>(QNLeader::desc()->queryX(sgPlainFormPE::desc()));
    ASSERT_NE(form, nullptr);
    const auto made = leader();
    AcDbVoidPtrArray entities;
    EXPECT_EQ(form->plainForm(made.get(), entities), Acad::eOk);
    ASSERT_EQ(entities.length(), 3);
    const auto* const symbol = AcDbBlockReference::cast(static_cast<AcDbEntity*>(entities[2]));
    ASSERT_NE(symbol, nullptr);
    EXPECT_EQ(symbol->blockTableRecord(), made->symbol().blockTableRecord());
    EXPECT_EQ(symbol->position(), made->symbol().position());
    for (void* const entity : entities) {
        EXPECT_EQ(static_cast<AcDbEntity*>(entity)->layerId(), made->layerId());
        delete static_cast<AcDbEntity*>(entity);
    }
    const AcDbLine line;
    entities.removeAll();
    EXPECT_EQ(form->plainForm(&line, entities), Acad::eNotApplicable);
}

// --- Filing

TEST_F(LeaderTest, TheRecordIsWrittenInItsOrder) {
    const auto made = leader();
    EXPECT_THAT(traceOf(*made, AcDb::kFileFiler),
                ElementsAre("int32 2", "point 0 0 1", "point 10 10 2", "point 30 10 3",
                            "double 2.5", "bool 1", "hard pointer"));
    const QNLeader bare({0, 0, 0}, {1, 0, 0}, {2, 0, 0}, 1, AcDbObjectId(), layer());
    EXPECT_THAT(
        traceOf(bare, AcDb::kFileFiler),
        ElementsAre("int32 2", "point 0 0 0", "point 1 0 0", "point 2 0 0", "double 1", "bool 0"));
    AcDbObject* record = nullptr;
    ASSERT_EQ(acdbOpenAcDbObject(record, block(), AcDb::kForWrite), Acad::eOk);
    const AcDbObjectId erased = record->objectId();
    ASSERT_EQ(record->erase(), Acad::eOk);
    record->close();
    EXPECT_EQ(traceOf(*made, AcDb::kFileFiler).back(), "bool 0");
    EXPECT_EQ(traceOf(*made, AcDb::kUndoFiler).back(), "hard pointer");
    EXPECT_EQ(made->symbol().blockTableRecord(), erased);
}

TEST_F(LeaderTest, AWriteThatFailsEndsTheRecordWithItsStatus) {
    const auto made = leader();
    TraceFiler base;
    made->AcDbEntity::dwgOutFields(&base);
    for (size_t i = 0; i < 7; ++i) {
        TraceFiler filer;
        filer.failAt = base.operations + i;
        filer.failureIsLasting = false;
        EXPECT_EQ(made->dwgOutFields(&filer), filer.failure) << i;
        EXPECT_EQ(filer.items.size(), base.items.size() + i);
    }
}

class LeaderRecordTest : public LeaderTest {
  protected:
    void SetUp() override {
        LeaderTest::SetUp();
        const auto made = leader();
        TraceFiler base;
        made->AcDbEntity::dwgOutFields(&base);
        baseItems_ = base.items.size();
        made->dwgOutFields(&record);
    }
    void setVersion(int version) { record.items[baseItems_].numbers[0] = version; }
    // Reads the record into a new leader.
    std::pair<std::unique_ptr<QNLeader>, Acad::ErrorStatus> read() {
        auto made = std::make_unique<QNLeader>();
        record.at = record.operations = 0;
        const Acad::ErrorStatus status = made->dwgInFields(&record);
        return {std::move(made), status};
    }
    size_t baseItems_ = 0;
    TraceFiler record;
};

TEST_F(LeaderRecordTest, AReadLeaderIsTheWrittenOne) {
    const auto [made, status] = read();
    EXPECT_EQ(status, Acad::eOk);
    EXPECT_EQ(record.at, record.items.size());
    expectFollows(*made);
    EXPECT_EQ(made->offset(), 2.5);
    EXPECT_EQ(made->symbol().blockTableRecord(), block());
    EXPECT_EQ(made->symbol().layerId(), layer());
}

TEST_F(LeaderRecordTest, Version1IsScaledByTheCurrentDrawingAndKeepsTheSymbolsLayer) {
    eval("(setvar \"DIMSCALE\" 48.0)");
    setVersion(1);
    const auto [made, status] = read();
    EXPECT_EQ(status, Acad::eOk);
    EXPECT_EQ(made->offset(), 120);
    expectFollows(*made);
    EXPECT_NE(made->symbol().layerId(), layer());
    EXPECT_THAT(traceOf(*made, AcDb::kFileFiler),
                ElementsAre("int32 2", "point 0 0 1", "point 10 10 2", "point 30 10 3",
                            "double 120", "bool 1", "hard pointer"));
}

TEST_F(LeaderRecordTest, OtherVersionsReadNoFurther) {
    for (const auto& [version, expected] :
         {std::pair(3, Acad::eMakeMeProxy), std::pair(0, Acad::eOk), std::pair(-1, Acad::eOk)}) {
        setVersion(version);
        const auto [made, status] = read();
        EXPECT_EQ(status, expected) << version;
        EXPECT_EQ(record.at, baseItems_ + 1);
        EXPECT_EQ(made->layerId(), layer());  // an entity's own fields come first
    }
}

TEST_F(LeaderRecordTest, AReadThatFailsEndsItUnlessTheBlockIsUnknown) {
    for (size_t i = 0; i < 7; ++i) {
        record.failAt = baseItems_ + i;
        record.failureIsLasting = false;
        record.failure = Acad::eInvalidInput;
        EXPECT_EQ(read().second, Acad::eInvalidInput) << i;
        record.failure = Acad::eUnknownHandle;
        const auto [made, status] = read();
        EXPECT_EQ(status, i < 6 ? Acad::eUnknownHandle : Acad::eOk) << i;
        if (i == 6) {
            expectFollows(*made);
            EXPECT_TRUE(made->symbol().blockTableRecord().isNull());
        }
    }
}

TEST_F(LeaderRecordTest, ALeaderWithoutABlockLosesTheOldOne) {
    record.items.pop_back();
    record.items.back().numbers[0] = 0;
    const auto made = leader();
    EXPECT_EQ(made->dwgInFields(&record), Acad::eOk);
    EXPECT_TRUE(made->symbol().blockTableRecord().isNull());
}

TEST_F(LeaderTest, GroupsHoldNoBlock) {
    const std::string listed = eval(
        R"((setvar "DIMSCALE" 2.0)
           (setq e (qn_qn-leader-insert (list '(0.0 0.0) '(1.0 0.0) '(5.0 0.0)) "NOTES" "SYM" 1.5))
           (cdr (member '(100 . "QNLeader") (entget e))))");
    EXPECT_EQ(listed, "((10 0.0 0.0 0.0) (11 1.0 0.0 0.0) (12 5.0 0.0 0.0) (40 . 3.0))");
    // The order of the groups does not matter, those of others are left aside.
    EXPECT_EQ(eval(R"((entmod (list (cons -1 e) '(0 . "QNLEADER") '(100 . "QNLeader") '(40 . 7.0)
                              '(62 . 3) '(12 5.0 5.0 0.0) '(1 . "x") '(11 5.0 1.0 0.0)))
                      (cdr (member '(100 . "QNLeader") (entget e))))"),
              "((10 0.0 0.0 0.0) (11 5.0 1.0 0.0) (12 5.0 5.0 0.0) (40 . 7.0))");
    EXPECT_EQ(eval(R"((setq n (entmakex '((0 . "QNLEADER") (100 . "AcDbEntity") (8 . "0")
                              (100 . "QNLeader") (10 1.0 1.0 0.0) (11 2.0 2.0 0.0)
                              (12 3.0 2.0 0.0) (40 . 0.5))))
                      (length (qn_qn-leader-explode n)))"),
              "3");
}

// --- Drawing

// Writes down the calls that a drawable makes.
class Calls final : public AcGiWorldDraw, public AcGiGeometry, public AcGiSubEntityTraits {
  public:
    explicit Calls(Log& log) : log_(log) {}
    bool drawAnswers = false;
    uint16_t currentColor = 5;

    AcGiRegenType regenType() const override { return kAcGiStandardDisplay; }
    bool regenAbort() const override { return false; }
    bool isDragging() const override { return false; }
    double deviation(const AcGePoint3d&) const override { return 0.1; }
    AcGiGeometry& geometry() const override { return const_cast<Calls&>(*this); }
    AcGiSubEntityTraits& subEntityTraits() const override { return const_cast<Calls&>(*this); }

    AcGeMatrix3d getModelToWorldTransform() const override { return {}; }
    bool pushModelTransform(const AcGeMatrix3d&) override { return note("push"); }
    bool popModelTransform() override { return note("pop"); }
    bool circle(const AcGePoint3d&, double, const AcGeVector3d&) override { return note("circle"); }
    bool circularArc(const AcGePoint3d&, double, const AcGeVector3d&, const AcGeVector3d&, double,
                     AcGiArcType) override {
        return note("arc");
    }
    bool polyline(uint32_t count, const AcGePoint3d* points, const AcGeVector3d* normal,
                  int64_t marker) override {
        char text[100];
        std::snprintf(text, sizeof text, "polyline %u (%g,%g)-(%g,%g) %s %lld", count, points[0].x,
                      points[0].y, points[1].x, points[1].y, normal == nullptr ? "null" : "normal",
                      static_cast<long long>(marker));
        note(text);
        return true;
    }
    bool polygon(uint32_t, const AcGePoint3d*) override { return note("polygon"); }
    bool polyPolygon(uint32_t, const uint32_t*, const AcGePoint3d*, const AcGeVector3d&) override {
        return note("polyPolygon");
    }
    bool shell(uint32_t, const AcGePoint3d*, uint32_t, const int32_t*) override {
        return note("shell");
    }
    bool text(const AcGePoint3d&, const AcGeVector3d&, const AcGeVector3d&, const std::wstring&,
              const AcGiTextStyle&) override {
        return note("text");
    }
    bool ray(const AcGePoint3d&, const AcGePoint3d&) override { return note("ray"); }
    bool xline(const AcGePoint3d&, const AcGePoint3d&) override { return note("xline"); }
    bool draw(AcGiDrawable* drawable) override {
        note(AcDbBlockReference::cast(drawable) != nullptr ? "draw symbol" : "draw other");
        currentColor = 99;
        return drawAnswers;
    }

    void setColor(uint16_t index) override { note("color " + std::to_string(index)); }
    void setTrueColor(const AcCmColor&) override { note("true color"); }
    void setLayer(AcDbObjectId id) override { layer = id, note("layer"); }
    void setLineType(AcDbObjectId) override { note("linetype"); }
    void setLineTypeScale(double) override { note("linetype scale"); }
    void setLineWeight(int) override { note("weight"); }
    void setFillType(AcGiFillType) override { note("fill"); }
    void setSelectionMarker(int64_t) override { note("marker"); }
    void setThickness(double) override { note("thickness"); }
    uint16_t color() const override { return log_.push_back("color?"), currentColor; }
    AcCmColor trueColor() const override { return {}; }
    AcDbObjectId layerId() const override { return layer; }
    AcDbObjectId lineTypeId() const override { return {}; }
    double lineTypeScale() const override { return 1; }
    int lineWeight() const override { return -1; }
    AcGiFillType fillType() const override { return kAcGiFillNever; }
    double thickness() const override { return 0; }

    AcDbObjectId layer;

  private:
    bool note(const std::string& call) {
        log_.push_back(call);
        return false;
    }
    Log& log_;
};

TEST_F(LeaderTest, ItDrawsItsLinesThenTheSymbolInItsLayer) {
    const auto made = leader();
    Calls calls(log);
    EXPECT_FALSE(made->worldDraw(&calls));
    EXPECT_THAT(
        log, ElementsAre("polyline 2 (0,0)-(10,10) null -1", "polyline 2 (10,10)-(27.5,10) null -1",
                         "color?", "layer", "draw symbol", "color 5"));
    EXPECT_EQ(calls.layer, layer());
    calls.drawAnswers = true;
    EXPECT_TRUE(made->worldDraw(&calls));
    EXPECT_EQ(made->viewportDrawLogicalFlags(nullptr), 0u);
}

TEST_F(LeaderTest, ItsListingEndsWithTheSymbols) {
    const auto made = leader();
    printed();
    made->list();
    const std::string listing = printed();
    EXPECT_THAT(listing,
                HasSubstr("                   Starting point = 0.000000, 0.000000, 1.000000\n"
                          "                   Middle point = 10.000000, 10.000000, 2.000000\n"
                          "                   End point = 30.000000, 10.000000, 3.000000\n"
                          "\n\n"));
    EXPECT_GT(listing.find("SYM"), listing.find("End point"));
}

// --- In a drawing

TEST_F(LeaderTest, ItLivesInDrawingsLikeAnyEntity) {
    eval(
        R"((setq e (qn_qn-leader-insert (list '(0.0 0.0) '(1.0 0.0) '(5.0 0.0)) "NOTES" "SYM" 1.5)))");
    AcDbObjectIdArray purgeable;
    purgeable.append(block());
    EXPECT_EQ(database().purge(purgeable), Acad::eOk);
    EXPECT_TRUE(purgeable.isEmpty()) << "a block that a leader shows is in use";

    AcDbDatabase other(true, true);
    AcDbObjectIdArray ids;
    resbuf* value = nullptr;
    acedGetSym(L"e", &value);
    AcDbObjectId id;
    acdbGetObjectId(id, value->resval.rlname);
    acutRelRb(value);
    ids.append(id);
    AcDbIdMapping mapping;
    ASSERT_EQ(other.wblockCloneObjects(ids, other.modelSpaceId(), mapping, AcDb::kDrcIgnore),
              Acad::eOk);
    ASSERT_NE(mapping.find(id), nullptr);
    QNLeader* copy = nullptr;
    ASSERT_EQ(acdbOpenObject(copy, mapping.find(id)->value, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(copy->symbol().blockTableRecord().database(), &other);
    EXPECT_EQ(copy->offset(), 1.5);
    expectFollows(*copy);
    copy->close();
}

TEST_F(LeaderTest, ItGoesWithTheModuleAndComesBack) {
    eval(
        R"((setq e (qn_qn-leader-insert (list '(0.0 0.0) '(1.0 0.0) '(5.0 0.0)) "NOTES" "SYM" 1.5)))");
    ASSERT_TRUE(acrxUnloadModule(kModule));
    EXPECT_EQ(acrxClassDictionary()->at(L"QNLeader"), nullptr);
    EXPECT_EQ(eval("(cdr (assoc 40 (entget e)))"), "1.5") << "what it was is kept";
    ASSERT_TRUE(acrxLoadModule(kModule, true));
    EXPECT_EQ(eval("(qn_qn-leader-setOffset e 3.0)"), "T");
    EXPECT_EQ(eval("(cdr (assoc 40 (entget e)))"), "3.0");
}

TEST_F(LeaderTest, TheClassIsRegisteredOnceAndItsNameIsItsOwn) {
    AcRxClass* const own = QNLeader::desc();
    EXPECT_EQ(acrxClassDictionary()->at(L"QNLeader"), own);
    int release = 0, maintenance = 0;
    own->getClassVersion(release, maintenance);
    EXPECT_EQ(std::pair(release, maintenance), std::pair(1, 1));
    EXPECT_EQ(own->proxyFlags(), 1);
    EXPECT_EQ(own->dxfName(), std::wstring(L"QNLEADER"));
    EXPECT_EQ(std::wstring(own->appName()).substr(0, 30), L"\"Leader|Quillon Software, Inc|");
    EXPECT_EQ(own->appName()[std::wcslen(own->appName()) - 1], L'"');
    QNLeader::rxInit();
    EXPECT_EQ(QNLeader::desc(), own);

    acrxClassDictionary()->atPut(L"QNLeader", AcDbLine::desc());
    EXPECT_THROW(QNLeader::rxInit(), AcRxAbort);
    EXPECT_THAT(errors(), HasSubstr("Class mismatch"));
    acrxClassDictionary()->atPut(L"QNLeader", own);
}

}  // namespace
}  // namespace sg
