#include "host/model/curves/sequence_end.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbSequenceEnd, AcDbEntity, 0, 0, L"SEQEND", L"")

AcDbSequenceEnd::AcDbSequenceEnd() = default;
AcDbSequenceEnd::~AcDbSequenceEnd() = default;

// entget names what it ends.
Acad::ErrorStatus AcDbSequenceEnd::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    if (filer->filerType() == AcDb::kBagFiler && !ownerId().isNull()) {
        filer->writeObjectId(-2, ownerId());
    }
    return filer->filerStatus();
}
