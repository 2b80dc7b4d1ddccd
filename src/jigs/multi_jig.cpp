#include "jigs/multi_jig.h"

#include "platform/win/message_box.h"

namespace sg {

MultiJig::~MultiJig() {
    for (void* const each : list_.entities())
        delete static_cast<AcDbEntity*>(each);
}

AcDbEntity* MultiJig::entity() const {
    if (!list_.isSet()) {
        // One text for all the jigs.
        AfxMessageBox(L"Error - You must call setEntityList before calling multiBlockJig::drag()");
    }
    return &list_;
}

}  // namespace sg
