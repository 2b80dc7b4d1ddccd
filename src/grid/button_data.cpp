#include "grid/button_data.h"

#include "grid/grid_ctrl.h"

namespace sg::grid {

CBtnDataBase::~CBtnDataBase() = default;

void CBtnDataBase::SetFont(const QFont* font) {
    font_ = font == nullptr ? nullptr : std::make_unique<QFont>(*font);
}

const QFont& CBtnDataBase::GetFont() const {
    return font_ ? *font_ : grid_->GetDefaultCell(false, false).GetFont();
}

}  // namespace sg::grid
