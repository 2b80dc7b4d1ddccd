#include "host/render/image_files.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

#include "host/render/painter.h"
#include "host/system/paths.h"

namespace sg::render {
namespace {

constexpr double kMostPixels = 8192;  // that an image is read with, each way

uint32_t pixelsFor(double covered) {
    return std::bit_ceil(static_cast<uint32_t>(std::clamp(covered, 1.0, kMostPixels)));
}

uint32_t mixed(uint32_t color, uint32_t other, uint32_t share) {
    uint32_t result = color & 0xFF000000;
    for (const int shift : {16, 8, 0}) {
        const uint32_t part = color >> shift & 255;
        const uint32_t otherPart = other >> shift & 255;
        result |= (part * (255 - share) + otherPart * share + 127) / 255 << shift;
    }
    return result;
}

// What each level of a colour's part comes to. 50 leaves it as it is; no contrast is grey.
std::array<uint8_t, 256> levels(int brightness, int contrast) {
    std::array<uint8_t, 256> table{};
    const double steepness = contrast <= 50 ? contrast / 50.0 : 50.0 / std::max(100 - contrast, 1);
    const double rise = (brightness - 50) / 50.0 * 255;
    for (size_t i = 0; i < table.size(); ++i) {
        const double level = (static_cast<double>(i) - 127.5) * steepness + 127.5 + rise;
        table[i] = static_cast<uint8_t>(std::lround(std::clamp(level, 0.0, 255.0)));
    }
    return table;
}

}  // namespace

const std::wstring& ImageFiles::find(const std::wstring& name) {
    const auto [place, isNew] = found_.try_emplace(name);
    if (!isNew) return place->second;
    std::wstring path = find_(name);
    Painter* const reader = path.empty() ? nullptr : painter();
    if (path.empty()) {
        complaints_.push_back(name + L": no such image file; its frame is drawn");
    } else if (reader == nullptr || reader->read(path, 1, 1) == nullptr) {
        complaints_.push_back(path + L": not an image that can be read; its frame is drawn");
    } else {
        place->second = std::move(path);
    }
    return place->second;
}

void ImageFiles::adjust(Pixels& pixels, const ShownImage& image) const {
    const std::array<uint8_t, 256> table = levels(image.brightness, image.contrast);
    const auto fade = static_cast<uint32_t>(std::lround(image.fade * 2.55));
    constexpr uint32_t kPaper = 0xFFFFFF;
    for (uint32_t& pixel : pixels.argb) {
        if (!image.isTransparent) pixel = mixed(pixel | 0xFF000000, kPaper, 255 - (pixel >> 24));
        uint32_t adjusted = pixel & 0xFF000000;
        for (const int shift : {16, 8, 0})
            adjusted |= static_cast<uint32_t>(table[pixel >> shift & 255]) << shift;
        pixel = mixed(adjusted, ground_, fade);
    }
}

std::shared_ptr<const Pixels> ImageFiles::pixels(const ShownImage& image, double width,
                                                 double height) {
    const Key key{image.file,     pixelsFor(width), pixelsFor(height),  image.brightness,
                  image.contrast, image.fade,       image.isTransparent};
    const auto [place, isNew] = read_.try_emplace(key);
    Painter* const reader = isNew ? painter() : nullptr;
    if (reader == nullptr) return place->second;
    if (const auto made = reader->read(image.file, std::get<1>(key), std::get<2>(key))) {
        adjust(*made, image);
        place->second = made;
    }
    return place->second;
}

ImageFiles::Find findBesideDrawing(std::wstring drawing, ImageFiles::Find search) {
    return [folder = std::wstring(parentFolder(drawing)),
            search = std::move(search)](const std::wstring& name) -> std::wstring {
        for (std::wstring rest = withSlashes(name); !rest.empty();) {
            const ResolvedPath beside = resolvePath(absolutePath(joinPath(folder, rest)));
            if (beside.exists) return beside.path;
            const std::wstring found = search(rest);
            if (!found.empty()) return found;
            const size_t slash = rest.find(L'/');
            rest = slash == std::wstring::npos ? L"" : rest.substr(slash + 1);
        }
        return {};
    };
}

}  // namespace sg::render
