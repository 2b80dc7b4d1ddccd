#include "platform/db/annotative.h"

#include <array>

#include "host/model/entities/annotative.h"
#include "host/model/entities/dimension/dimension.h"
#include "host/model/entities/hatch.h"
#include "host/model/tables/dim_style_table.h"
#include "host/model/tables/references.h"
#include "platform/db/attribute.h"
#include "platform/db/block_reference.h"
#include "platform/db/database.h"
#include "platform/db/leader.h"
#include "platform/db/mtext.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbAnnotativeObjectPE, AcRxObject)

namespace sg::model {
namespace {

constexpr const wchar_t* kApplication = L"AcadAnnotative";
constexpr const wchar_t* kData = L"AnnotativeData";
constexpr const wchar_t* kOpen = L"{";
constexpr const wchar_t* kClose = L"}";
constexpr int kVersion = 1;

// The state is the second number of the application's data.
class AnnotativeExtension final : public AcDbAnnotativeObjectPE {
  public:
    bool annotative(AcDbObject* object) override {
        resbuf* const data = object->xData(kApplication);
        int numbers = 0;
        bool on = false;
        for (const resbuf* node = data; node != nullptr; node = node->rbnext) {
            if (node->restype == 1070 && ++numbers == 2) on = node->resval.rint != 0;
        }
        acutRelRb(data);
        return on;
    }

    Acad::ErrorStatus setAnnotative(AcDbObject* object, bool annotative) override {
        if (object->database() != nullptr) registerApplication(*object->database(), kApplication);
        resbuf* const data = acutBuildList(1001, kApplication, 1000, kData, 1002, kOpen, 1070,
                                           kVersion, 1070, annotative ? 1 : 0, 1002, kClose, 0);
        const Acad::ErrorStatus status = object->setXData(data);
        acutRelRb(data);
        return status;
    }
};

std::array<AcRxClass*, 10> annotativeClasses() {
    return {AcDbText::desc(),
            AcDbMText::desc(),
            AcDbAttributeDefinition::desc(),
            AcDbBlockReference::desc(),
            AcDbBlockTableRecord::desc(),
            AcDbLeader::desc(),
            AcDbDimension::desc(),
            AcDbHatch::desc(),
            AcDbTextStyleTableRecord::desc(),
            AcDbDimStyleTableRecord::desc()};
}

AnnotativeExtension& extension() {
    static AnnotativeExtension kExtension;
    return kExtension;
}

}  // namespace

void addAnnotativeExtensions() {
    for (AcRxClass* const each : annotativeClasses()) {
        each->addX(AcDbAnnotativeObjectPE::desc(), &extension());
    }
}

}  // namespace sg::model
