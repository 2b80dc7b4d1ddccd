#include "host/render/picture_builder.h"

namespace sg::render {

uint32_t PictureBuilder::layer(const std::wstring& name) {
    const auto [found, isNew] =
        layers_.try_emplace(name, static_cast<uint32_t>(picture_.layers.size()));
    if (isNew) picture_.layers.push_back(name);
    return found->second;
}

uint32_t PictureBuilder::clip(std::vector<PicturePoint> polygon) {
    picture_.clips.push_back(std::move(polygon));
    return static_cast<uint32_t>(picture_.clips.size());
}

uint32_t PictureBuilder::image(PicturePixels image) {
    picture_.images.push_back(std::move(image));
    return static_cast<uint32_t>(picture_.images.size());
}

Picture::Stretch& PictureBuilder::stretch(const Pen& pen) {
    if (picture_.stretches.empty() || picture_.stretches.back().pen != pen) {
        picture_.stretches.push_back({pen, static_cast<uint32_t>(picture_.chainEnds.size()),
                                      static_cast<uint32_t>(picture_.areaEnds.size())});
    }
    return picture_.stretches.back();
}

void PictureBuilder::addChain(std::span<const PicturePoint> points) {
    picture_.points.insert(picture_.points.end(), points.begin(), points.end());
    picture_.chainEnds.push_back(static_cast<uint32_t>(picture_.points.size()));
    picture_.stretches.back().chainsEnd = static_cast<uint32_t>(picture_.chainEnds.size());
}

void PictureBuilder::line(const Pen& pen, std::span<const PicturePoint> points) {
    if (points.empty()) return;
    stretch(pen);
    addChain(points);
}

void PictureBuilder::beginArea(const Pen& pen) {
    stretch(pen);
}

void PictureBuilder::boundary(std::span<const PicturePoint> points) {
    if (points.size() > 2) addChain(points);
}

void PictureBuilder::endArea() {
    picture_.areaEnds.push_back(static_cast<uint32_t>(picture_.chainEnds.size()));
    picture_.stretches.back().areasEnd = static_cast<uint32_t>(picture_.areaEnds.size());
}

}  // namespace sg::render
