#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/render/measuring_canvas.h"
#include "platform/db/database.h"
#include "platform/db/viewport.h"

class AcDbLayout;

namespace sg::render {

// The layouts of a drawing in the order of their tabs, the model's too.
std::vector<const AcDbLayout*> layoutsOf(const AcDbDatabase& database);

// The paper of a layout in its own coordinates; nothing where the layout does not say.
struct Paper {
    ViewBox box;
    double millimetresPerUnit = 1;
};
std::optional<Paper> paperOf(const AcDbLayout& layout);

// The windows of a sheet onto the model that are on.
std::vector<const AcDbViewport*> windowsOf(AcDbObjectId sheet);
// The window, if any, that stands for the sheet itself.
AcDbObjectId ownWindowOf(AcDbObjectId sheet);

}  // namespace sg::render
