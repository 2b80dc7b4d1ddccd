#pragma once

#include <gtest/gtest.h>

#include <QImage>
#include <cmath>
#include <string>
#include <vector>

#include "host/render/painter.h"
#include "host/render/render.h"
#include "host/seam/host_fixture.h"
#include "platform/db/database.h"

namespace sg::test {

// Pictures of a drawing that a program makes. The window is 200 by 150 units and the picture has as
// many pixels, so that the pixel of a place is the place.
class RenderTest : public HostTest {
  protected:
    RenderTest() {
        start();
        options.width = 200;
        options.height = 150;
        options.window.emplace();
        options.window->add(0, 0);
        options.window->add(200, 150);
    }

    AcDbDatabase& database() { return *active().database(); }

    // Runs a program that makes the drawing; it must not fail.
    void draw(std::string_view program) {
        const std::string answer = eval(program);
        EXPECT_TRUE(answer.find("; error") == std::string::npos) << answer << " of " << program;
        EXPECT_NE(answer, "nil") << program;
    }
    // A drawing of a line from place to place, with more groups in LISP.
    void line(double x1, double y1, double x2, double y2, const std::string& groups = "") {
        draw("(entmake (append '((0 . \"LINE\")" + groups + ") '((10 " + std::to_string(x1) + " " +
             std::to_string(y1) + " 0.0) (11 " + std::to_string(x2) + " " + std::to_string(y2) +
             " 0.0))))");
    }
    void layer(const std::string& name, int color, int flags = 0) {
        draw(
            "(entmake '((0 . \"LAYER\") (100 . \"AcDbSymbolTableRecord\") (100 . "
            "\"AcDbLayerTableRecord\") (2 . \"" +
            name + "\") (70 . " + std::to_string(flags) + ") (62 . " + std::to_string(color) +
            ") (6 . \"Continuous\")))");
    }
    void linetype(const std::string& name, const std::vector<double>& dashes) {
        std::string program =
            "(entmake '((0 . \"LTYPE\") (100 . \"AcDbSymbolTableRecord\") (100 . "
            "\"AcDbLinetypeTableRecord\") (2 . \"" +
            name + "\") (70 . 0) (3 . \"\") (72 . 65) (73 . " + std::to_string(dashes.size()) + ")";
        double length = 0;
        std::string elements;
        for (const double dash : dashes) {
            length += std::abs(dash);
            elements += " (49 . " + std::to_string(dash) + ") (74 . 0)";
        }
        draw(program + " (40 . " + std::to_string(length) + ")" + elements + "))");
    }

    void paint() {
        rendering = render::render(database(), options);
        image = imageOf(rendering.picture);
    }
    static QImage imageOf(const render::Picture& picture) {
        render::Painter* const painter = render::painter();
        if (painter == nullptr) {
            ADD_FAILURE() << "the graphics library is not there";
            return {};
        }
        const std::string bytes = painter->png(picture);
        return QImage::fromData(reinterpret_cast<const uchar*>(bytes.data()),
                                static_cast<int>(bytes.size()), "PNG")
            .convertToFormat(QImage::Format_RGB32);
    }

    // 0xRRGGBB of the pixel, of those around a place, that differs most from the ground.
    uint32_t colorAt(double x, double y) const {
        const int column = static_cast<int>(x);
        const int row = image.height() - 1 - static_cast<int>(y);
        uint32_t found = options.ground;
        int most = 0;
        for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) {
                if (!image.valid(column + dx, row + dy)) continue;
                const uint32_t color = image.pixel(column + dx, row + dy) & 0xFFFFFF;
                if (distance(color, options.ground) <= most) continue;
                most = distance(color, options.ground);
                found = color;
            }
        }
        return found;
    }
    bool isInked(double x, double y) const { return colorAt(x, y) != options.ground; }
    // The number of pixels across that are more ink than ground, along the column of x.
    int thicknessAt(double x, double yFrom, double yTo) const {
        int count = 0;
        for (int y = static_cast<int>(yFrom); y < static_cast<int>(yTo); ++y) {
            const uint32_t color =
                image.pixel(static_cast<int>(x), image.height() - 1 - y) & 0xFFFFFF;
            if (distance(color, options.ground) > 3 * 128) ++count;
        }
        return count;
    }
    // How much of a horizontal line is drawn.
    double inkedShare(double x1, double x2, double y) const {
        int inked = 0;
        int all = 0;
        for (double x = x1; x < x2; ++x, ++all) {
            const int row = image.height() - 1 - static_cast<int>(y);
            const uint32_t on = image.pixel(static_cast<int>(x), row) & 0xFFFFFF;
            const uint32_t above = image.pixel(static_cast<int>(x), row - 1) & 0xFFFFFF;
            const uint32_t below = image.pixel(static_cast<int>(x), row + 1) & 0xFFFFFF;
            const int ink = distance(on, options.ground) + distance(above, options.ground) +
                            distance(below, options.ground);
            if (ink > 3 * 100) ++inked;
        }
        return static_cast<double>(inked) / all;
    }
    static int distance(uint32_t a, uint32_t b) {
        int sum = 0;
        for (const int shift : {0, 8, 16})
            sum +=
                std::abs(static_cast<int>(a >> shift & 0xFF) - static_cast<int>(b >> shift & 0xFF));
        return sum;
    }

    render::Options options;
    render::Rendering rendering;
    QImage image;
};

constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kRed = 0xFF0000;
constexpr uint32_t kGreen = 0x00FF00;
constexpr uint32_t kBlue = 0x0000FF;
constexpr uint32_t kBlack = 0x000000;

// Whether a colour is this one with some of the ground in it.
inline bool isTintOf(uint32_t color, uint32_t pure) {
    for (const int shift : {0, 8, 16}) {
        const int value = static_cast<int>(color >> shift & 0xFF);
        const int wanted = static_cast<int>(pure >> shift & 0xFF);
        if (wanted == 0xFF && value < 0xF0) return false;
        if (wanted == 0 && value > 0xA0) return false;
    }
    return true;
}

}  // namespace sg::test
