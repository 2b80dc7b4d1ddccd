#include "host/model/curves/sequence_end.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbSequenceEnd, AcDbEntity, 0, 0, L"SEQEND", L"")

AcDbSequenceEnd::AcDbSequenceEnd() = default;
AcDbSequenceEnd::~AcDbSequenceEnd() = default;
