#include "host/render/pdf_writer.h"

#include <fmt/format.h>
#include <zlib.h>

#include <map>
#include <optional>
#include <set>

#include "base/encoding.h"
#include "host/render/number_text.h"

namespace sg::render {
namespace {

std::string deflated(const std::string& bytes) {
    uLongf size = compressBound(bytes.size());
    std::string result(size, '\0');
    constexpr int kLevel = 3;  // drawings shrink little more at higher ones
    if (compress2(reinterpret_cast<Bytef*>(result.data()), &size,
                  reinterpret_cast<const Bytef*>(bytes.data()), bytes.size(), kLevel) != Z_OK) {
        return {};
    }
    result.resize(size);
    return result;
}

// A text as UTF-16 with its mark, in hexadecimal digits.
std::string hexText(const std::wstring& text) {
    std::string hex = "<FEFF";
    for (const char16_t unit : toUtf16(text))
        hex += fmt::format("{:04X}", static_cast<unsigned>(unit));
    return hex + ">";
}

// The pixels of a picture's images, each once, with the number it has.
using NumberedPixels = std::map<const Pixels*, size_t>;

NumberedPixels numberedPixels(const Picture& picture) {
    NumberedPixels numbers;
    for (const PicturePixels& image : picture.images)
        numbers.try_emplace(image.pixels.get(), numbers.size());
    return numbers;
}

// The operators that paint a picture, in its pixels.
class PageContent {
  public:
    PageContent(const Picture& picture, const NumberedPixels& pixels)
        : picture_(picture), pixels_(pixels) {}

    std::string write(double pointsPerPixel) {
        text_ = fmt::format("{0:.6f} 0 0 -{0:.6f} 0 {1:.4f} cm 1 J 1 j\n", pointsPerPixel,
                            picture_.height * pointsPerPixel);
        addColor(picture_.ground, "rg");
        text_ += fmt::format("0 0 {:g} {:g} re f\n", picture_.width, picture_.height);
        PictureWalk walk(picture_);
        while (walk.nextStretch()) {
            enter(walk.pen());
            if (walk.pen().kind == Pen::Kind::line) {
                addLines(walk);
            } else {
                addAreas(walk);
            }
        }
        leave();
        return std::move(text_);
    }

  private:
    void addPoint(const PicturePoint& p, const char* operation) {
        appendHundredths(text_, p.x);
        text_ += ' ';
        appendHundredths(text_, p.y);
        text_ += operation;
    }
    void addChain(const PicturePoint* points, size_t count) {
        addPoint(points[0], " m\n");
        for (size_t i = 1; i < count; ++i)
            addPoint(points[i], " l\n");
        if (count == 1) addPoint(points[0], " l\n");
    }
    void addColor(uint32_t color, const char* operation) {
        for (const int shift : {16, 8, 0}) {
            appendHundredths(text_, (color >> shift & 0xFF) / 255.0);
            text_ += ' ';
        }
        text_ += operation;
        text_ += '\n';
    }

    // Layers are marked, and areas clipped, around what they hold. Leaving a clipped area brings
    // back what was set before it.
    void enter(const Pen& pen) {
        if (pen_ && pen_->layer == pen.layer && pen_->clip == pen.clip) {
            set(pen);
            return;
        }
        leave();
        text_ += fmt::format("/OC /L{} BDC\n", pen.layer);
        text_ += "q\n";
        if (pen.clip != 0) {
            const std::vector<PicturePoint>& clip = picture_.clips[pen.clip - 1];
            if (!clip.empty()) addChain(clip.data(), clip.size());
            text_ += "h W n\n";
        }
        set(pen);
    }
    void leave() {
        if (pen_) text_ += "Q\nEMC\n";
        pen_.reset();
    }
    void set(const Pen& pen) {
        const bool isLine = pen.kind == Pen::Kind::line;
        if (!pen_ || pen_->alpha != pen.alpha) text_ += fmt::format("/A{} gs\n", pen.alpha);
        if (!pen_ || pen_->color != pen.color || isLine != (pen_->kind == Pen::Kind::line)) {
            addColor(pen.color, isLine ? "RG" : "rg");
        }
        if (isLine && (!pen_ || pen_->width != pen.width || pen_->kind != Pen::Kind::line)) {
            appendHundredths(text_, pen.width);
            text_ += " w\n";
        }
        pen_ = pen;
    }

    // Readers are slow at paths with very many parts.
    void addLines(PictureWalk& walk) {
        constexpr size_t kMostPoints = 2000;
        PictureWalk::Chain chain;
        size_t points = 0;
        while (walk.nextChain(chain)) {
            addChain(chain.points, chain.count);
            points += chain.count;
            if (points < kMostPoints) continue;
            text_ += "S\n";
            points = 0;
        }
        if (points > 0) text_ += "S\n";
    }
    void addAreas(PictureWalk& walk) {
        std::vector<PictureWalk::Chain> chains;
        while (walk.nextArea(chains)) {
            if (chains.empty()) continue;
            if (walk.pen().image != 0) text_ += "q\n";
            for (const PictureWalk::Chain& chain : chains) {
                addChain(chain.points, chain.count);
                text_ += "h\n";
            }
            if (walk.pen().image != 0) {
                addImage(picture_.images[walk.pen().image - 1]);
            } else {
                text_ += walk.pen().kind == Pen::Kind::evenOdd ? "f*\n" : "f\n";
            }
        }
    }
    // In the area that has just been outlined. Images stand upright on their lower left corner.
    void addImage(const PicturePixels& image) {
        text_ += fmt::format("W* n\n{:.4f} {:.4f} {:.4f} {:.4f} {:.4f} {:.4f} cm\n/I{} Do\nQ\n",
                             image.right.x, image.right.y, -image.down.x, -image.down.y,
                             image.corner.x + image.down.x, image.corner.y + image.down.y,
                             pixels_.at(image.pixels.get()));
    }

    const Picture& picture_;
    const NumberedPixels& pixels_;
    std::string text_;
    std::optional<Pen> pen_;  // what is set
};

class PdfWriter {
  public:
    explicit PdfWriter(const Picture& picture)
        : picture_(picture),
          pixels_(numberedPixels(picture)),
          pointsPerPixel_(72 / 25.4 / picture.pixelsPerMillimetre) {}

    std::string write() {
        file_ = "%PDF-1.5\n%\xE2\xE3\xCF\xD3\n";
        addCatalog();
        addObject(kPages, fmt::format("<< /Type /Pages /Kids [{} 0 R] /Count 1 >>", kPage + 0));
        addPage();
        const std::string content = deflated(PageContent(picture_, pixels_).write(pointsPerPixel_));
        addObject(kContent,
                  fmt::format("<< /Length {} /Filter /FlateDecode >>\nstream\n", content.size()) +
                      content + "\nendstream");
        for (size_t i = 0; i < picture_.layers.size(); ++i) {
            addObject(kFirstLayer + i,
                      fmt::format("<< /Type /OCG /Name {} >>", hexText(picture_.layers[i])));
        }
        for (const auto& [pixels, number] : pixels_)
            addPixels(*pixels, number);
        addEnd();
        return std::move(file_);
    }

  private:
    // Numbers of objects.
    enum : size_t { kCatalog = 1, kPages, kPage, kContent, kFirstLayer };

    void addObject(size_t number, const std::string& body) {
        if (offsets_.size() <= number) offsets_.resize(number + 1);
        offsets_[number] = file_.size();
        file_ += fmt::format("{} 0 obj\n", number) + body + "\nendobj\n";
    }

    std::string layerReferences() const {
        std::string text;
        for (size_t i = 0; i < picture_.layers.size(); ++i)
            text += fmt::format("{} 0 R ", kFirstLayer + i);
        return text;
    }

    void addCatalog() {
        const std::string layers = layerReferences();
        addObject(kCatalog, fmt::format("<< /Type /Catalog /Pages {} 0 R /OCProperties << /OCGs "
                                        "[{}] /D << /ON [{}] /Order [{}] >> >> >>",
                                        kPages + 0, layers, layers, layers));
    }

    void addPage() {
        std::set<int> alphas;
        for (const Picture::Stretch& stretch : picture_.stretches)
            alphas.insert(stretch.pen.alpha);
        std::string states;
        for (const int alpha : alphas)
            states += fmt::format("/A{} << /CA {:.3f} /ca {:.3f} >> ", alpha, alpha / 255.0,
                                  alpha / 255.0);
        std::string layers;
        for (size_t i = 0; i < picture_.layers.size(); ++i)
            layers += fmt::format("/L{} {} 0 R ", i, kFirstLayer + i);
        std::string images;
        for (size_t i = 0; i < pixels_.size(); ++i)
            images += fmt::format("/I{} {} 0 R ", i, objectOfPixels(i));
        addObject(
            kPage,
            fmt::format("<< /Type /Page /Parent {} 0 R /MediaBox [0 0 {:.4f} {:.4f}] "
                        "/Contents {} 0 R /Resources << /ExtGState << {}>> /Properties << "
                        "{}>> /XObject << {}>> >> >>",
                        kPages + 0, picture_.width * pointsPerPixel_,
                        picture_.height * pointsPerPixel_, kContent + 0, states, layers, images));
    }

    // Images are two objects: the colours, and the alpha as a mask.
    size_t objectOfPixels(size_t number) const {
        return kFirstLayer + picture_.layers.size() + 2 * number;
    }
    void addPixels(const Pixels& pixels, size_t number) {
        std::string colors, alphas;
        for (const uint32_t pixel : pixels.argb) {
            for (const int shift : {16, 8, 0})
                colors += static_cast<char>(pixel >> shift & 255);
            alphas += static_cast<char>(pixel >> 24);
        }
        const size_t object = objectOfPixels(number);
        const auto add = [&](size_t place, const char* space, const std::string& more,
                             const std::string& bytes) {
            const std::string packed = deflated(bytes);
            addObject(place, fmt::format("<< /Type /XObject /Subtype /Image /Width {} /Height {} "
                                         "/ColorSpace /{} /BitsPerComponent 8 {}/Length {} /Filter "
                                         "/FlateDecode >>\nstream\n",
                                         pixels.width, pixels.height, space, more, packed.size()) +
                                 packed + "\nendstream");
        };
        add(object, "DeviceRGB", fmt::format("/SMask {} 0 R ", object + 1), colors);
        add(object + 1, "DeviceGray", "", alphas);
    }

    void addEnd() {
        const size_t table = file_.size();
        file_ += fmt::format("xref\n0 {}\n0000000000 65535 f \n", offsets_.size());
        for (size_t number = 1; number < offsets_.size(); ++number)
            file_ += fmt::format("{:010} 00000 n \n", offsets_[number]);
        file_ += fmt::format("trailer\n<< /Size {} /Root {} 0 R >>\nstartxref\n{}\n%%EOF\n",
                             offsets_.size(), kCatalog + 0, table);
    }

    const Picture& picture_;
    const NumberedPixels pixels_;
    const double pointsPerPixel_;
    std::string file_;
    std::vector<size_t> offsets_;  // by number
};

}  // namespace

std::string toPdf(const Picture& picture) {
    return PdfWriter(picture).write();
}

}  // namespace sg::render
