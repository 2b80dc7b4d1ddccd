#pragma once

#include <chrono>

#include "host/editor/system_variables.h"

class AcDbDatabase;

namespace sg {

// What a drawing's header tells about the drawing as a whole: when it was made and last saved, for
// how long it has been open (TDCREATE, TDUPDATE, TDINDWG, TDUSRTIMER and, in universal time,
// TDUCREATE and TDUUPDATE), and how far it reaches (EXTMIN, EXTMAX; PEXTMIN, PEXTMAX of the current
// sheet). Lives with a document.
class HeaderUpkeep {
  public:
    // A drawing that is of no file, or whose file does not tell, is made now.
    explicit HeaderUpkeep(AcDbDatabase& database);

    // The system variables TDINDWG, TDUSRTIMER, EXTMIN and EXTMAX as they are at the moment.
    void join(SystemVariables& variables);

    // Brings the header up to date for a save. Undo does not know of it.
    void stamp();

  private:
    double inDrawing() const;  // days
    double userTimer() const;  // days

    AcDbDatabase& database_;
    std::chrono::steady_clock::time_point opened_;  // or last stamped
};

}  // namespace sg
