#include "host/render/render_fixture.h"

namespace sg::test {
namespace {

class CrowdTest : public RenderTest {
  protected:
    void block(const std::string& name, const std::string& contents) {
        draw("(entmake '((0 . \"BLOCK\") (2 . \"" + name + "\") (70 . 0) (10 0.0 0.0 0.0)))");
        draw(contents);
        draw("(entmake '((0 . \"ENDBLK\")))");
    }
    static std::string insertion(const std::string& name, double x, const std::string& more = "") {
        return "(entmake '((0 . \"INSERT\") (2 . \"" + name + "\") (10 " + std::to_string(x) +
               " 0.0 0.0)" + more + "))";
    }
    // A block that holds two of another, again and again, each pair so far apart.
    void doublings(double apart) {
        block("B0", "(entmake '((0 . \"LINE\") (10 10.0 10.0 0.0) (11 60.0 60.0 0.0)))");
        for (int i = 1; i <= 31; ++i) {
            const std::string inner = "B" + std::to_string(i - 1);
            block("B" + std::to_string(i),
                  "(progn " + insertion(inner, 0) + insertion(inner, apart) + ")");
        }
        draw(insertion("B31", 0));
    }
};

TEST_F(CrowdTest, DoublingsInOnePlaceEnd) {
    doublings(0);
    paint();
    EXPECT_TRUE(isInked(30, 30));
    EXPECT_TRUE(rendering.complaints.empty());
}

TEST_F(CrowdTest, DoublingsSideBySideEnd) {
    doublings(3);
    options.window.reset();
    paint();
    EXPECT_TRUE(rendering.complaints.empty());
    EXPECT_LT(rendering.picture.points.size(), 3'000'000u);
}

TEST_F(CrowdTest, ArrayWithTooManyCopiesIsBox) {
    block("DOT", "(entmake '((0 . \"LINE\") (10 10.0 10.0 0.0) (11 11.0 11.0 0.0)))");
    draw(
        "(entmake '((0 . \"INSERT\") (100 . \"AcDbEntity\") (8 . \"0\") (100 . "
        "\"AcDbMInsertBlock\") (2 . \"DOT\") (10 0.0 0.0 0.0) (70 . 30000) (71 . 30000) "
        "(44 . 0.004) (45 . 0.003)))");
    paint();
    EXPECT_EQ(rendering.complaints.size(), 1u);
    EXPECT_TRUE(isInked(60, 10));
    EXPECT_TRUE(isInked(10, 50));
    EXPECT_FALSE(isInked(60, 50));
}

}  // namespace
}  // namespace sg::test
