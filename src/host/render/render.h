#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/render/entity_draw.h"
#include "host/render/image_files.h"
#include "host/render/measuring_canvas.h"
#include "host/render/picture.h"

namespace sg::render {

// Where the model is seen from: above, the front (against y), or the south-west and above.
enum class View : uint8_t { top, front, isometric };

struct Options {
    View view = View::top;
    double width = 1600;  // the most, in pixels
    double height = 1200;
    uint32_t ground = 0xFFFFFF;  // 0xRRGGBB
    // Of the model: the part of the view that fills the picture; nothing: all that is drawn.
    std::optional<ViewBox> window;
    std::vector<std::wstring> layers;  // as LayerChoice has them
    ImageFiles::Find findImage;        // null: images show as their frames
    bool lineWeights = true;
    std::wstring layout;  // a sheet; empty, or "Model": the model
    // Of a sheet: pixels of paper to the millimetre, whatever the size; 0: as the size asks for.
    double pixelsPerMillimetre = 0;
};

struct Rendering {
    Picture picture;
    Undrawn undrawn;                       // what of the drawing is not in it
    std::vector<std::wstring> complaints;  // what of it shows otherwise than it should
};

// What was asked for is not in the drawing.
class NotInDrawing : public std::runtime_error {
  public:
    explicit NotInDrawing(std::wstring text)
        : std::runtime_error("not in the drawing"), text_(std::move(text)) {}
    const std::wstring& text() const { return text_; }

  private:
    std::wstring text_;
};

// A picture of the model as large as fits, or of a sheet with what its windows show. The drawing
// stays as it is; none of its objects may be open for write. Throws NotInDrawing for an unknown
// layout or layer.
SG_API Rendering render(const AcDbDatabase& database, const Options& options);

// The names of the sheets in the order of their tabs.
SG_API std::vector<std::wstring> sheetNames(const AcDbDatabase& database);

}  // namespace sg::render
