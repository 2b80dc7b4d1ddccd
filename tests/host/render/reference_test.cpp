#include <cstdlib>

#include "host/render/render_fixture.h"

namespace sg::test {
namespace {

// Whole pictures beside those that were looked at. With SWIFTGATE_UPDATE_PICTURES set they are
// written anew instead.
class ReferenceTest : public RenderTest {
  protected:
    // Pixels that have nothing like them around their place in the other picture.
    static int strangers(const QImage& one, const QImage& other) {
        constexpr int kAlike = 90;
        int count = 0;
        for (int y = 0; y < one.height(); ++y) {
            for (int x = 0; x < one.width(); ++x) {
                const uint32_t color = one.pixel(x, y) & 0xFFFFFF;
                int least = 3 * 255;
                for (int dy = -1; dy <= 1; ++dy) {
                    for (int dx = -1; dx <= 1; ++dx) {
                        if (!other.valid(x + dx, y + dy)) continue;
                        const uint32_t there = other.pixel(x + dx, y + dy) & 0xFFFFFF;
                        least = std::min(least, distance(color, there));
                    }
                }
                if (least > kAlike) ++count;
            }
        }
        return count;
    }

    void expectLike(const std::string& name) {
        options.window.reset();
        options.width = 320;
        options.height = 240;
        paint();
        const QString file = QStringLiteral(SWIFTGATE_PICTURES "/") + QString::fromStdString(name) +
                             QStringLiteral(".png");
        if (std::getenv("SWIFTGATE_UPDATE_PICTURES") != nullptr) {
            EXPECT_TRUE(image.save(file));
            return;
        }
        const QImage reference = QImage(file).convertToFormat(QImage::Format_RGB32);
        ASSERT_EQ(reference.size(), image.size()) << name;
        const int most = image.width() * image.height() / 500;
        EXPECT_LE(strangers(image, reference), most) << name;
        EXPECT_LE(strangers(reference, image), most) << name;
    }
};

TEST_F(ReferenceTest, Dimensions) {
    line(0, 0, 4, 0);
    line(4, 0, 4, 2.5);
    draw(
        "(entmake '((0 . \"DIMENSION\") (100 . \"AcDbEntity\") (100 . \"AcDbDimension\") (10 0.0 "
        "-0.7 0.0) (70 . 0) (100 . \"AcDbAlignedDimension\") (13 0.0 0.0 0.0) (14 4.0 0.0 0.0) "
        "(50 . 0.0) (100 . \"AcDbRotatedDimension\")))");
    draw(
        "(entmake '((0 . \"DIMENSION\") (100 . \"AcDbEntity\") (62 . 1) (100 . \"AcDbDimension\") "
        "(10 5.0 2.5 0.0) (70 . 1) (100 . \"AcDbAlignedDimension\") (13 4.0 0.0 0.0) (14 "
        "4.0 2.5 0.0)))");
    expectLike("dimensions");
}

TEST_F(ReferenceTest, Hatches) {
    const auto hatch = [&](const std::string& pattern, double x, const std::string& color) {
        const auto at = [&](double dx, double y) {
            return "(10 " + std::to_string(x + dx) + " " + std::to_string(y) + ")";
        };
        draw("(entmake '((0 . \"HATCH\") (100 . \"AcDbEntity\") (62 . " + color +
             ") (100 . \"AcDbHatch\") (10 0.0 0.0 0.0) (210 0.0 0.0 1.0) (2 . \"" + pattern +
             "\") (70 . 0) (71 . 0) (91 . 2) (92 . 3) (72 . 1) (73 . 1) (93 . 3) " + at(0, 0) +
             "(42 . 0.0) " + at(40, 0) + "(42 . 0.6) " + at(20, 50) +
             "(42 . 0.0) (97 . 0) (92 . 16) (93 . 1) (72 . 2) " + at(22, 20) +
             "(40 . 8.0) (50 . 0.0) (51 . 6.283185307179586) (73 . 1) (97 . 0) (75 . 0) (76 . 1) "
             "(52 . 0.0) (41 . 10.0) (77 . 0) (98 . 0)))");
    };
    hatch("ANSI31", 0, "7");
    hatch("BRICK", 60, "1");
    hatch("DOTS", 120, "5");
    expectLike("hatches");
}

TEST_F(ReferenceTest, Texts) {
    draw(
        "(entmake '((0 . \"MTEXT\") (100 . \"AcDbEntity\") (100 . \"AcDbMText\") (10 0.0 90.0 "
        "0.0) (40 . 8.0) (41 . 100.0) (71 . 1) (1 . \"Some {\\\\C1;red} words that wrap\\\\Pand a "
        "{\\\\H2x;tall} one, {\\\\Lunder} and a half {\\\\S1/2;}\")))");
    draw(
        "(entmake '((0 . \"TEXT\") (10 0.0 0.0 0.0) (40 . 10.0) (1 . \"%%uUnder%%u %%c50 "
        "%%p0.1\")))");
    draw(
        "(entmake '((0 . \"TEXT\") (10 120.0 0.0 0.0) (40 . 10.0) (50 . 1.2) (51 . 0.3) (41 . 0.7) "
        "(1 . \"Leaning\")))");
    expectLike("texts");
}

TEST_F(ReferenceTest, CurvesFromTheSouthWest) {
    linetype("CENTER", {12, -3, 3, -3});
    draw("(entmake '((0 . \"CIRCLE\") (62 . 1) (39 . 20.0) (10 50.0 50.0 0.0) (40 . 40.0)))");
    draw(
        "(entmake '((0 . \"ELLIPSE\") (100 . \"AcDbEntity\") (62 . 3) (6 . \"CENTER\") (100 . "
        "\"AcDbEllipse\") (10 50.0 50.0 30.0) (11 60.0 0.0 0.0) (40 . 0.4) (41 . 0.0) (42 . "
        "6.283185307179586)))");
    draw(
        "(entmake '((0 . \"LWPOLYLINE\") (100 . \"AcDbEntity\") (62 . 5) (370 . 70) "
        "(100 . \"AcDbPolyline\") (90 . 3) (70 . 1) (39 . 15.0) (10 0.0 0.0) (42 . 0.5) (10 100.0 "
        "0.0) (42 . "
        "0.0) (10 100.0 100.0) (42 . 0.0)))");
    options.view = render::View::isometric;
    options.ground = kBlack;
    expectLike("curves");
}

}  // namespace
}  // namespace sg::test
