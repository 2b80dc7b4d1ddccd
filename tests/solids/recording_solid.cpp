#include "solids/recording_solid.h"

#include <fmt/format.h>

#include <cmath>

#include "platform/rx/modules.h"

namespace sg::test {
namespace {

std::string text(double number) {
    const double rounded = std::round(number * 1e4) / 1e4;
    return fmt::format("{}", rounded == 0 ? 0.0 : rounded);
}

std::string text(const AcGePoint3d& p) {
    return fmt::format("({} {} {})", text(p.x), text(p.y), text(p.z));
}

std::string text(const AcGeVector3d& v) {
    const AcGeTol tolerance = [] {
        AcGeTol tol;
        tol.setEqualVector(1e-7);
        return tol;
    }();
    for (unsigned int axis = 0; axis < 3; ++axis) {
        AcGeVector3d unit;
        unit[axis] = 1;
        if (v.isEqualTo(unit, tolerance)) return std::string("+") + "XYZ"[axis];
        if (v.isEqualTo(-unit, tolerance)) return std::string("-") + "XYZ"[axis];
    }
    return fmt::format("<{} {} {}>", text(v.x), text(v.y), text(v.z));
}

std::string text(const AcGeVector3d* frame) {
    return fmt::format("[{}, {}, {}]", text(frame[0]), text(frame[1]), text(frame[2]));
}

std::string size(double width, double height, bool rectangular = true) {
    return fmt::format("{}{}x{}", rectangular ? "" : "o", text(width), text(height));
}

std::string frames(const AcGeVector3d* first, const AcGeVector3d* second) {
    const std::string a = text(first), b = text(second);
    return a == b ? a : a + " " + b;
}

class RecordingSolid final : public qn_hvacSolid {
  public:
    RecordingSolid() {
        ++solids.alive;
        ++solids.made;
    }
    ~RecordingSolid() override { --solids.alive; }

    bool addTransition(AcGePoint3d head, bool headRectangular, double headWidth, double headHeight,
                       AcGePoint3d tail, bool tailRectangular, double tailWidth, double tailHeight,
                       const AcGeVector3d* headFrame, const AcGeVector3d* tailFrame,
                       int bodyOption) override {
        return record("addTransition", "{} {} {} {} {} {}", text(head),
                      size(headWidth, headHeight, headRectangular), text(tail),
                      size(tailWidth, tailHeight, tailRectangular), frames(headFrame, tailFrame),
                      bodyOption);
    }
    bool subtractTransition(AcGePoint3d head, bool headRectangular, double headWidth,
                            double headHeight, AcGePoint3d tail, bool tailRectangular,
                            double tailWidth, double tailHeight, const AcGeVector3d* headFrame,
                            const AcGeVector3d* tailFrame, int bodyOption) override {
        return record("subtractTransition", "{} {} {} {} {} {}", text(head),
                      size(headWidth, headHeight, headRectangular), text(tail),
                      size(tailWidth, tailHeight, tailRectangular), frames(headFrame, tailFrame),
                      bodyOption);
    }
    bool addSkin(const AcGePoint3dArray& points, double amount) override {
        std::string all;
        for (const AcGePoint3d& point : points)
            all += text(point) + " ";
        return record("addSkin", "{}{}", all, text(amount));
    }
    bool doUnion(qn_hvacSolid* other) override {
        return record("doUnion", "{}", other == this ? "itself" : "another");
    }

    // The preparation leaves marks in the arrays' first and last points, for the building call.
    bool addSquareElbowPrep(AcGePoint3d& head, double headWidth, double headHeight,
                            AcGePoint3d& tail, double tailWidth, double tailHeight,
                            const AcGeVector3d* headFrame, const AcGeVector3d* tailFrame,
                            bool rectangular, AModeler::Point3d* a, AModeler::Point3d* b,
                            AcGePoint3d* c, bool withCollars, double collarLength) override {
        const bool fits = record("addSquareElbowPrep", "{} {} {} {} {} {} {}", text(head),
                                 size(headWidth, headHeight, rectangular), text(tail),
                                 size(tailWidth, tailHeight, rectangular),
                                 frames(headFrame, tailFrame), withCollars, text(collarLength));
        if (!fits) return false;
        a[0].x = a[7].x = 1;
        b[0].x = b[7].x = 2;
        c[0].x = c[7].x = 3;
        if (solids.moveElbow) solids.moveElbow(head, tail);
        return true;
    }
    bool addSquareElbow(AcGePoint3d head, double headWidth, double headHeight, AcGePoint3d tail,
                        double tailWidth, double tailHeight, const AcGeVector3d* headFrame,
                        const AcGeVector3d* tailFrame, bool rectangular, AModeler::Point3d* a,
                        AModeler::Point3d* b, AcGePoint3d* c, int bodyOption) override {
        return record("addSquareElbow", "{} {} {} {} {} arrays {}{}{}{}{}{} {}", text(head),
                      size(headWidth, headHeight, rectangular), text(tail),
                      size(tailWidth, tailHeight, rectangular), frames(headFrame, tailFrame),
                      text(a[0].x), text(a[7].x), text(b[0].x), text(b[7].x), text(c[0].x),
                      text(c[7].x), bodyOption);
    }
    bool addRadiusElbow(AcGePoint3d& head, double headWidth, double headHeight, double wallA,
                        double wallB, AcGePoint3d& tail, double tailWidth, double tailHeight,
                        const AcGeVector3d* headFrame, const AcGeVector3d* tailFrame,
                        bool rectangular, double radiusRatio, bool movesEnds, int bodyOption,
                        bool standsAlone) override {
        const bool built =
            record("addRadiusElbow", "{} {} walls {} {} {} {} {} ratio {} {} {} {}", text(head),
                   size(headWidth, headHeight, rectangular), text(wallA), text(wallB), text(tail),
                   size(tailWidth, tailHeight, rectangular), frames(headFrame, tailFrame),
                   text(radiusRatio), movesEnds, bodyOption, standsAlone);
        if (built && solids.moveElbow) solids.moveElbow(head, tail);
        return built;
    }
    bool addCableTraySquareRadiusElbow(AcGePoint3d& head, double width, double height,
                                       AcGePoint3d& tail, const AcGeVector3d* headFrame,
                                       const AcGeVector3d* tailFrame, double radiusRatio,
                                       int bodyOption) override {
        return record("addCableTraySquareRadiusElbow", "{} {} {} {} ratio {} {}", text(head),
                      size(width, height), text(tail), frames(headFrame, tailFrame),
                      text(radiusRatio), bodyOption);
    }

    bool addWyePrep(AcGePoint3d& head, double headWidth, double headHeight, AcGePoint3d& tail1,
                    double tailWidth1, double tailHeight1, AcGePoint3d& tail2, double tailWidth2,
                    double tailHeight2, AcGeVector3d* headFrame, AcGeVector3d* tailFrame1,
                    AcGeVector3d* tailFrame2, bool rectangular, AModeler::Point3d* a1,
                    AModeler::Point3d* a2, AModeler::Point3d* a3, AcGePoint3d* c1, AcGePoint3d* c2,
                    AcGePoint3d* c3, bool withCollars, double collarLength) override {
        const bool fits = record("addWyePrep", "{} {} {} {} {} {} {} {} {} {} {}", text(head),
                                 size(headWidth, headHeight, rectangular), text(tail1),
                                 size(tailWidth1, tailHeight1), text(tail2),
                                 size(tailWidth2, tailHeight2), text(headFrame), text(tailFrame1),
                                 text(tailFrame2), withCollars, text(collarLength));
        if (!fits) return false;
        int mark = 0;
        for (AModeler::Point3d* array : {a1, a2, a3})
            array[0].x = array[7].x = ++mark;
        for (AcGePoint3d* array : {c1, c2, c3})
            array[0].x = array[7].x = ++mark;
        if (solids.moveWye) solids.moveWye(head, tail1, tail2);
        return true;
    }
    bool addWye(AcGePoint3d& head, double headWidth, double headHeight, AcGePoint3d& tail1,
                double tailWidth1, double tailHeight1, AcGePoint3d& tail2, double tailWidth2,
                double tailHeight2, AcGePoint3d& junction, const AcGeVector3d* headFrame,
                const AcGeVector3d* tailFrame1, const AcGeVector3d* tailFrame2, bool rectangular,
                AModeler::Point3d* a1, AModeler::Point3d* a2, AModeler::Point3d* a3,
                AcGePoint3d* c1, AcGePoint3d* c2, AcGePoint3d* c3, int bodyOption) override {
        std::string marks;
        for (const AModeler::Point3d* array : {a1, a2, a3})
            marks += text(array[7].x);
        for (const AcGePoint3d* array : {c1, c2, c3})
            marks += text(array[7].x);
        return record("addWye", "{} {} {} {} {} {} junction {} {} {} {} arrays {} {}", text(head),
                      size(headWidth, headHeight, rectangular), text(tail1),
                      size(tailWidth1, tailHeight1), text(tail2), size(tailWidth2, tailHeight2),
                      text(junction), text(headFrame), text(tailFrame1), text(tailFrame2), marks,
                      bodyOption);
    }

    void sliceLast(AcGePoint3d p1, AcGePoint3d p2, AcGePoint3d p3, AcGePoint3d keep) override {
        record("sliceLast", "{} {} {} keep {}", text(p1), text(p2), text(p3), text(keep));
    }
    void clearBodies() override { record("clearBodies", ""); }

  protected:
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& entities) const override {
        if (!solids.explode) return Acad::eCannotExplodeEntity;
        solids.explode(entities);
        return Acad::eOk;
    }

  private:
    template <class... Arguments>
    bool record(const std::string& operation, fmt::format_string<Arguments...> format,
                Arguments&&... arguments) {
        assertWriteEnabled();
        const std::string line = fmt::format(format, std::forward<Arguments>(arguments)...);
        solids.lines.push_back(line.empty() ? operation : operation + " " + line);
        std::deque<bool>& answers = solids.answers[operation];
        if (answers.empty()) return true;
        const bool answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

void registerSolid() {
    newAcRxClass(
        qn_hvacSolid::kClassName, L"AcDbEntity", 1, 1, 1,
        +[]() -> AcRxObject* { return new RecordingSolid; }, L"QN_HVACSOLID",
        L"\"Recording companion\"");
    acrxBuildClassHierarchy();
}

}  // namespace

AcRx::AppRetCode recordingCompanion(AcRx::AppMsgCode message, void* packet) {
    if (message == AcRx::kInitAppMsg) {
        acrxUnlockApplication(packet);
        registerSolid();
    }
    if (message == AcRx::kUnloadAppMsg) deleteAcRxClass(qn_hvacSolid::desc());
    return AcRx::kRetOK;
}

}  // namespace sg::test
