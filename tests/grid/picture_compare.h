#pragma once

#include <QImage>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace sg::grid {

// How much two pictures differ, from 0 to 255, once both are so small that the shapes of single
// letters do not count.
inline double difference(const QImage& a, const QImage& b) {
    const QSize small = a.size() / 6;
    const auto shrunk = [&](const QImage& image) {
        return image.scaled(small, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_RGB32);
    };
    const QImage first = shrunk(a), second = shrunk(b);
    double worst = 0;
    for (int y = 0; y < small.height(); ++y) {
        for (int x = 0; x < small.width(); ++x) {
            const QRgb p = first.pixel(x, y), q = second.pixel(x, y);
            const int apart = std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) +
                              std::abs(qBlue(p) - qBlue(q));
            worst += apart / 3.0;
        }
    }
    return worst / (small.width() * small.height());
}

// Compares with the picture of the documents that has this name. SWIFTGATE_WRITE_PICTURES=1 draws
// that anew.
inline void comparePicture(const QImage& drawn, const std::string& name) {
    const QString file = QString::fromStdString(SWIFTGATE_PICTURES "/" + name + ".png");
    if (std::getenv("SWIFTGATE_WRITE_PICTURES") != nullptr) {
        ASSERT_TRUE(drawn.save(file)) << name;
    }
    const QImage wanted(file);
    ASSERT_FALSE(wanted.isNull()) << name;
    ASSERT_EQ(drawn.size(), wanted.size()) << name;
    EXPECT_LT(difference(drawn, wanted), 6) << name;
}

}  // namespace sg::grid
