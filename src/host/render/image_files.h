#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "host/render/canvas.h"
#include "host/render/picture.h"

namespace sg::render {

// The image files that a drawing refers to. Each is looked for, and read, once.
class SG_API ImageFiles {
  public:
    // Answers the path of the file that a drawing names so; empty when there is none.
    using Find = std::function<std::wstring(const std::wstring& name)>;

    // `ground` is 0xRRGGBB, what images fade into.
    ImageFiles(Find find, uint32_t ground) : find_(std::move(find)), ground_(ground) {}

    // The file's path; empty, with a complaint, when it is not there or no image.
    const std::wstring& find(const std::wstring& name);

    // The pixels of an image that covers so many pixels of a picture, with its brightness, contrast
    // and fading. Null when they cannot be read.
    std::shared_ptr<const Pixels> pixels(const ShownImage& image, double width, double height);

    // A line for each image that could not be shown.
    const std::vector<std::wstring>& complaints() const { return complaints_; }

  private:
    using Key = std::tuple<std::wstring, uint32_t, uint32_t, int, int, int, bool>;

    void adjust(Pixels& pixels, const ShownImage& image) const;

    const Find find_;
    const uint32_t ground_;
    std::map<std::wstring, std::wstring> found_;  // by name
    std::map<Key, std::shared_ptr<const Pixels>> read_;
    std::vector<std::wstring> complaints_;
};

// Looks for a name as it stands and then without its first folders, one by one, each time from the
// drawing's folder and with `search`: a drawing may have moved together with its images.
SG_API ImageFiles::Find findBesideDrawing(std::wstring drawing, ImageFiles::Find search);

}  // namespace sg::render
