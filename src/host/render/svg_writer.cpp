#include "host/render/svg_writer.h"

#include <fmt/format.h>

#include <unordered_map>

#include "base/encoding.h"
#include "host/render/base64.h"
#include "host/render/number_text.h"
#include "host/render/painter.h"

namespace sg::render {
namespace {

std::string escaped(const std::wstring& text) {
    std::string result;
    for (const char c : toUtf8(text)) {
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '"':
                result += "&quot;";
                break;
            default:
                result += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
        }
    }
    return result;
}

class SvgWriter {
  public:
    explicit SvgWriter(const Picture& picture) : picture_(picture) {}

    std::string write() {
        writeHead();
        PictureWalk walk(picture_);
        while (walk.nextStretch()) {
            openGroup(walk.pen());
            if (walk.pen().kind == Pen::Kind::line) {
                writeLines(walk);
            } else {
                writeAreas(walk);
            }
        }
        closeGroup();
        text_ += "</svg>\n";
        return std::move(text_);
    }

  private:
    void addNumber(double value) { appendHundredths(text_, value); }
    void addPoint(char command, const PicturePoint& p) {
        text_ += command;
        addNumber(p.x);
        text_ += ' ';
        addNumber(p.y);
    }
    void addChain(const PictureWalk::Chain& chain, bool isClosed) {
        addPoint('M', chain.points[0]);
        for (uint32_t i = 1; i < chain.count; ++i)
            addPoint('L', chain.points[i]);
        if (isClosed) text_ += 'Z';
        if (!isClosed && chain.count == 1) text_ += "h0";
    }

    void writeHead() {
        const double millimetre = picture_.pixelsPerMillimetre;
        text_ += fmt::format(
            "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{:.2f}mm\" height=\"{:.2f}mm\" "
            "viewBox=\"0 0 {:g} {:g}\" fill=\"none\" stroke-linecap=\"round\" "
            "stroke-linejoin=\"round\">\n",
            picture_.width / millimetre, picture_.height / millimetre, picture_.width,
            picture_.height);
        for (size_t i = 0; i < picture_.clips.size(); ++i) {
            text_ += fmt::format("<clipPath id=\"window{}\"><path d=\"", i + 1);
            const std::vector<PicturePoint>& clip = picture_.clips[i];
            if (!clip.empty()) addChain({clip.data(), static_cast<uint32_t>(clip.size())}, true);
            text_ += "\"/></clipPath>\n";
        }
        for (const PicturePixels& image : picture_.images)
            writePixels(image.pixels.get());
        text_ += fmt::format("<rect width=\"100%\" height=\"100%\" fill=\"#{:06x}\"/>\n",
                             picture_.ground);
    }

    // Pixels that several images show are written once. They have been read by the painter.
    void writePixels(const Pixels* pixels) {
        if (!pixels_.try_emplace(pixels, pixels_.size() + 1).second) return;
        Painter* const writer = painter();
        const std::string file = writer == nullptr ? "" : writer->png(*pixels);
        text_ += fmt::format(
            "<defs><image id=\"pixels{}\" width=\"1\" height=\"1\" preserveAspectRatio=\"none\" "
            "href=\"data:image/png;base64,{}\"/></defs>\n",
            pixels_.size(), base64(file));
    }

    void openGroup(const Pen& pen) {
        if (isOpen_ && pen.layer == layer_ && pen.clip == clip_) return;
        closeGroup();
        layer_ = pen.layer;
        clip_ = pen.clip;
        isOpen_ = true;
        text_ += fmt::format("<g data-layer=\"{}\"", escaped(picture_.layers[layer_]));
        if (clip_ != 0) text_ += fmt::format(" clip-path=\"url(#window{})\"", clip_);
        text_ += ">\n";
    }
    void closeGroup() {
        if (isOpen_) text_ += "</g>\n";
        isOpen_ = false;
    }

    void writeLines(PictureWalk& walk) {
        const Pen& pen = walk.pen();
        text_ += fmt::format("<path stroke=\"#{:06x}\" stroke-width=\"", pen.color);
        addNumber(pen.width);
        if (pen.alpha != 255) text_ += fmt::format("\" stroke-opacity=\"{:.3f}", pen.alpha / 255.0);
        text_ += "\" d=\"";
        PictureWalk::Chain chain;
        while (walk.nextChain(chain))
            addChain(chain, false);
        text_ += "\"/>\n";
    }

    void writeAreas(PictureWalk& walk) {
        const Pen& pen = walk.pen();
        std::vector<PictureWalk::Chain> chains;
        while (walk.nextArea(chains)) {
            if (chains.empty()) continue;
            if (pen.image != 0) {
                writeImage(pen, chains);
                continue;
            }
            text_ += fmt::format("<path fill=\"#{:06x}\"", pen.color);
            if (pen.alpha != 255)
                text_ += fmt::format(" fill-opacity=\"{:.3f}\"", pen.alpha / 255.0);
            if (pen.kind == Pen::Kind::evenOdd) text_ += " fill-rule=\"evenodd\"";
            text_ += " d=\"";
            for (const PictureWalk::Chain& chain : chains)
                addChain(chain, true);
            text_ += "\"/>\n";
        }
    }

    void writeImage(const Pen& pen, const std::vector<PictureWalk::Chain>& bounds) {
        const PicturePixels& image = picture_.images[pen.image - 1];
        text_ +=
            fmt::format("<clipPath id=\"image{}\"><path clip-rule=\"evenodd\" d=\"", pen.image);
        for (const PictureWalk::Chain& chain : bounds)
            addChain(chain, true);
        text_ += fmt::format(
            "\"/></clipPath>\n<g clip-path=\"url(#image{})\" opacity=\"{:.3f}\"><use "
            "href=\"#pixels{}\" transform=\"matrix({:g} {:g} {:g} {:g} {:g} {:g})\"/></g>\n",
            pen.image, pen.alpha / 255.0, pixels_.at(image.pixels.get()), image.right.x,
            image.right.y, image.down.x, image.down.y, image.corner.x, image.corner.y);
    }

    const Picture& picture_;
    std::unordered_map<const Pixels*, size_t> pixels_;  // their numbers
    std::string text_;
    bool isOpen_ = false;
    uint32_t layer_ = 0;
    uint32_t clip_ = 0;
};

}  // namespace

std::string toSvg(const Picture& picture) {
    return SvgWriter(picture).write();
}

}  // namespace sg::render
