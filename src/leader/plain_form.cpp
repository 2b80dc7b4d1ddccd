#include "leader/plain_form.h"

#include <memory>

#include "platform/db/line.h"

namespace sg {
namespace {

class LeaderPlainForm final : public sgPlainFormPE {
  public:
    Acad::ErrorStatus plainForm(const AcDbEntity* entity, AcDbVoidPtrArray& entities) override {
        const QNLeader* const leader = QNLeader::cast(entity);
        if (leader == nullptr) return Acad::eNotApplicable;
        AcGePoint3d start, middle, end;
        leader->getPoints(start, middle, end);
        add(*leader, new AcDbLine(start, middle), entities);
        add(*leader, new AcDbLine(middle, leader->shortenedEndPoint()), entities);
        if (!leader->symbol().blockTableRecord().isNull()) {
            add(*leader, newLeaderSymbol(*leader), entities);
        }
        return Acad::eOk;
    }

  private:
    static void add(const QNLeader& leader, AcDbEntity* part, AcDbVoidPtrArray& entities) {
        part->setPropertiesFrom(&leader);
        entities.append(part);
    }
};

}  // namespace

AcDbBlockReference* newLeaderSymbol(const QNLeader& leader) {
    const AcDbBlockReference& symbol = leader.symbol();
    auto* const made = new AcDbBlockReference(symbol.position(), symbol.blockTableRecord());
    made->setRotation(symbol.rotation());
    made->setScaleFactors(symbol.scaleFactors());
    return made;
}

sgPlainFormPE* leaderPlainForm() {
    static LeaderPlainForm form;
    return &form;
}

}  // namespace sg
