#include "drawing/entity_list.h"

#include <new>

#include "bridge/marshal_builders.h"

namespace sg {

EntityList::EntityList() {
    beginResultList(head_, tail_);
}

void EntityList::add(const ads_name name) {
    resbuf* const node = acutNewRb(RTENAME);
    if (node == nullptr) throw std::bad_alloc();
    node->resval.rlname[0] = name[0];
    node->resval.rlname[1] = name[1];
    tail_->rbnext = node;
    tail_ = node;
}

void EntityList::add(AcDbObjectId id) {
    ads_name name;
    if (acdbGetAdsName(name, id) == Acad::eOk) add(name);
}

void EntityList::giveAsResult() {
    finishResultList(head_, tail_);
}

}  // namespace sg
