#include "host/render/painter.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <QPainterPath>
#include <vector>

#include "host/graphics/application.h"

namespace sg::graphics {
namespace {

using render::Painter;
using render::Pen;
using render::Picture;
using render::PicturePixels;
using render::PicturePoint;
using render::PictureWalk;
using render::Pixels;

constexpr int kMostMegabytes = 1024;  // that an image file may take unpacked

// The pixels stay where they are, and must outlive the image.
QImage imageOf(const Pixels& pixels) {
    return {reinterpret_cast<const uchar*>(pixels.argb.data()), static_cast<int>(pixels.width),
            static_cast<int>(pixels.height), static_cast<qsizetype>(pixels.width * sizeof(QRgb)),
            QImage::Format_ARGB32};
}

QPointF pointOf(const PicturePoint& p) {
    return {p.x, p.y};
}

// Paints the stretches of a picture, each with one pen. Lines of two points go out together.
class StretchPainter {
  public:
    StretchPainter(QPainter& painter, const Picture& picture)
        : painter_(painter), picture_(picture) {}

    void paint() {
        PictureWalk walk(picture_);
        while (walk.nextStretch()) {
            clipTo(walk.pen().clip);
            if (walk.pen().kind == Pen::Kind::line) {
                paintLines(walk);
            } else {
                paintAreas(walk);
            }
        }
    }

  private:
    static QColor colorOf(const Pen& pen) {
        QColor color = QColor::fromRgb(pen.color);
        color.setAlpha(pen.alpha);
        return color;
    }

    void clipTo(uint32_t clip) {
        if (clip == clip_) return;
        clip_ = clip;
        if (clip == 0) {
            painter_.setClipping(false);
            return;
        }
        QPolygonF polygon;
        for (const PicturePoint& p : picture_.clips[clip - 1])
            polygon << pointOf(p);
        QPainterPath path;
        path.addPolygon(polygon);
        path.closeSubpath();
        painter_.setClipPath(path);
    }

    // Thin lines are painted without outlining them, which is much faster.
    void paintLines(PictureWalk& walk) {
        const Pen& pen = walk.pen();
        QPen line(colorOf(pen), pen.width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        line.setCosmetic(pen.width <= 1);
        painter_.setPen(line);
        painter_.setBrush(Qt::NoBrush);
        PictureWalk::Chain chain;
        while (walk.nextChain(chain)) {
            if (chain.count == 1) {
                paintDot(pen, pointOf(chain.points[0]));
            } else if (chain.count == 2) {
                lines_.emplace_back(pointOf(chain.points[0]), pointOf(chain.points[1]));
            } else {
                points_.clear();
                for (uint32_t i = 0; i < chain.count; ++i)
                    points_.push_back(pointOf(chain.points[i]));
                painter_.drawPolyline(points_.data(), static_cast<int>(points_.size()));
            }
        }
        if (!lines_.empty()) painter_.drawLines(lines_.data(), static_cast<int>(lines_.size()));
        if (!dots_.empty()) {
            painter_.setPen(Qt::NoPen);
            painter_.setBrush(colorOf(pen));
            for (const QRectF& dot : dots_)
                painter_.drawEllipse(dot);
        }
        lines_.clear();
        dots_.clear();
    }

    void paintDot(const Pen& pen, const QPointF& at) {
        const double width = pen.width < 1 ? 1 : pen.width;
        dots_.emplace_back(at.x() - width / 2, at.y() - width / 2, width, width);
    }

    void paintAreas(PictureWalk& walk) {
        const Pen& pen = walk.pen();
        painter_.setPen(Qt::NoPen);
        painter_.setBrush(colorOf(pen));
        std::vector<PictureWalk::Chain> chains;
        while (walk.nextArea(chains)) {
            QPainterPath path;
            path.setFillRule(pen.kind == Pen::Kind::evenOdd ? Qt::OddEvenFill : Qt::WindingFill);
            for (const PictureWalk::Chain& chain : chains) {
                path.moveTo(pointOf(chain.points[0]));
                for (uint32_t i = 1; i < chain.count; ++i)
                    path.lineTo(pointOf(chain.points[i]));
                path.closeSubpath();
            }
            if (pen.image != 0) {
                paintImage(picture_.images[pen.image - 1], pen, path);
            } else {
                painter_.drawPath(path);
            }
        }
    }

    void paintImage(const PicturePixels& image, const Pen& pen, const QPainterPath& area) {
        const QImage pixels = imageOf(*image.pixels);
        painter_.save();
        painter_.setClipPath(area, clip_ == 0 ? Qt::ReplaceClip : Qt::IntersectClip);
        painter_.setRenderHint(QPainter::SmoothPixmapTransform);
        painter_.setOpacity(pen.alpha / 255.0);
        painter_.setTransform(QTransform(image.right.x, image.right.y, image.down.x, image.down.y,
                                         image.corner.x, image.corner.y),
                              true);
        painter_.drawImage(QRectF(0, 0, 1, 1), pixels);
        painter_.restore();
    }

    QPainter& painter_;
    const Picture& picture_;
    uint32_t clip_ = 0;
    std::vector<QPointF> points_;
    std::vector<QLineF> lines_;
    std::vector<QRectF> dots_;
};

std::string contentOf(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<size_t>(bytes.size())};
}

std::string pngOf(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return contentOf(bytes);
}

class PicturePainter final : public Painter {
  public:
    std::string png(const Picture& picture) override {
        needApplication();
        QImage image(static_cast<int>(picture.width), static_cast<int>(picture.height),
                     QImage::Format_RGB32);
        if (image.isNull()) return {};
        image.fill(QColor::fromRgb(picture.ground));
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        StretchPainter(painter, picture).paint();
        painter.end();
        const int perMetre = static_cast<int>(picture.pixelsPerMillimetre * 1000);
        image.setDotsPerMeterX(perMetre);
        image.setDotsPerMeterY(perMetre);
        return pngOf(image);
    }

    std::string png(const Pixels& pixels) override { return pngOf(imageOf(pixels)); }

    std::shared_ptr<Pixels> read(const std::wstring& file, uint32_t mostWidth,
                                 uint32_t mostHeight) override {
        needApplication();
        QImageReader reader(QString::fromStdWString(file));
        reader.setDecideFormatFromContent(true);
        reader.setAutoTransform(false);  // drawings have the pixels as they lie in the file
        QImageReader::setAllocationLimit(kMostMegabytes);
        if (const QSize size = reader.size(); size.isValid()) {
            reader.setScaledSize(
                size.boundedTo(QSize(static_cast<int>(mostWidth), static_cast<int>(mostHeight))));
        }
        const QImage image = reader.read().convertToFormat(QImage::Format_ARGB32);
        if (image.isNull()) return nullptr;
        auto pixels = std::make_shared<Pixels>();
        pixels->width = static_cast<uint32_t>(image.width());
        pixels->height = static_cast<uint32_t>(image.height());
        for (int row = 0; row < image.height(); ++row) {
            const auto* const line = reinterpret_cast<const QRgb*>(image.constScanLine(row));
            pixels->argb.insert(pixels->argb.end(), line, line + image.width());
        }
        return pixels;
    }
};

}  // namespace
}  // namespace sg::graphics

extern "C" SG_API sg::render::Painter* swiftgatePainter() {
    static sg::graphics::PicturePainter painter;
    return &painter;
}
