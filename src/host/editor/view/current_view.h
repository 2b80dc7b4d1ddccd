#pragma once

#include "base/export.h"
#include "host/editor/system_variables.h"
#include "platform/db/database.h"
#include "platform/ge/point2d.h"

namespace sg {

// What of a drawing its display shows: the middle and the height, in coordinates of the display
// plane.
struct CurrentView {
    AcGePoint2d center;
    double height = 1;
    double aspect = 1;  // width through height
};

SG_API CurrentView currentView(const AcDbDatabase& database);
// Of the view only centre and height are taken. The change can be undone.
SG_API void setCurrentView(AcDbDatabase& database, const CurrentView& view);

// Makes "VIEWCTR", "VIEWSIZE", "VIEWDIR", "TARGET" and "VIEWTWIST" tell of the current view. The
// database must live as long as the set.
void joinView(SystemVariables& variables, AcDbDatabase& database);

}  // namespace sg
